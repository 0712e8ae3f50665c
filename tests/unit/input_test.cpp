// Reading whole files.
#include "util/input.h"

#include "tests/unit/support.h"
#include "util/memory.h"

#include <cstring>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class FileReading : public RunTest {
  protected:
    static std::string text_of(const FileText &text) { return {text.data.get(), text.size}; }
};

TEST_F(FileReading, ReadsEveryByteOfAFile) {
    const std::string bytes("a\0b\r\n\xFF\x1A", 7);
    write_file("in", bytes);
    FileText text;
    ASSERT_TRUE(read_file("in", text));
    EXPECT_EQ(text_of(text), bytes);
}

TEST_F(FileReading, ReadsAnEmptyFile) {
    write_file("in", "");
    FileText text;
    ASSERT_TRUE(read_file("in", text));
    EXPECT_EQ(text.size, 0U);
}

TEST_F(FileReading, LetsNulsFollowTheTextWhateverTheMemoryHeld) {
    const std::string bytes(100, 'a');
    write_file("in", bytes);
    // What is given back is likely to be handed out again.
    std::memset(make_room(bytes.size() + 1 + kFileGuard).get(), 'x', bytes.size() + 1 + kFileGuard);
    FileText text;
    ASSERT_TRUE(read_file("in", text));
    EXPECT_EQ(std::string(&text.data[text.size], kFileGuard), std::string(kFileGuard, '\0'));
}

TEST_F(FileReading, ReadsALargeFile) {
    std::string bytes;
    while (bytes.size() < 3000000) {
        bytes += std::to_string(bytes.size()) + "\n";
    }
    write_file("in", bytes);
    FileText text;
    ASSERT_TRUE(read_file("in", text));
    EXPECT_TRUE(text_of(text) == bytes);
}

// The kernel's files tell the size 0, whatever they hold.
TEST_F(FileReading, ReadsARegularFileThatHidesItsSize) {
    struct ::stat status = {};
    ASSERT_EQ(::stat("/proc/version", &status), 0);
    ASSERT_EQ(status.st_size, 0);
    FileText text;
    ASSERT_TRUE(read_file("/proc/version", text));
    EXPECT_TRUE(text.is_regular);
    EXPECT_EQ(text_of(text), read_text("/proc/version"));
}

TEST_F(FileReading, TellsTheFilesIdentity) {
    write_file("in", "x");
    std::filesystem::create_hard_link("in", "link");
    struct ::stat expected = {};
    ASSERT_EQ(::stat("in", &expected), 0);
    for (const char *name : {"in", "link"}) {
        FileText text;
        ASSERT_TRUE(read_file(name, text));
        EXPECT_TRUE(text.is_regular);
        EXPECT_EQ(text.identity, identity_of(expected));
    }
}

TEST_F(FileReading, ReadsAPipeWhichIsNoRegularFile) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], " NOP\n", 5), 5);
    ::close(ends[1]);
    FileText text;
    EXPECT_TRUE(read_file(("/dev/fd/" + std::to_string(ends[0])).c_str(), text));
    EXPECT_EQ(text_of(text), " NOP\n");
    EXPECT_FALSE(text.is_regular);
    ::close(ends[0]);
}

TEST_F(FileReading, FailsForAMissingFile) {
    FileText text;
    EXPECT_FALSE(read_file("missing", text));
    EXPECT_FALSE(read_file("", text));
}

TEST_F(FileReading, FailsForADirectory) {
    FileText text;
    EXPECT_FALSE(read_file(".", text));
}

TEST_F(FileReading, TellsWhetherAFileCanBeOpened) {
    write_file("in", "x");
    EXPECT_TRUE(can_open("in"));
    EXPECT_FALSE(can_open("missing"));
    EXPECT_FALSE(can_open("in/x"));
}

// A line feed behind the piece does not count, and neither does a byte that is one but for a bit.
TEST(SizeWithLineFeed, IsThatOfThePieceUpToTheFirstLineFeed) {
    constexpr std::size_t kMost = 200;
    for (std::size_t size = 0; size <= kMost; ++size) {
        for (std::size_t feed = 0; feed <= kMost; ++feed) {
            std::string text(kMost + kFileGuard, '\x8A');
            text[feed] = '\n';
            text[feed + 3] = '\n';
            EXPECT_EQ(size_with_line_feed(text.data(), size), std::min(size, feed + 1))
                << size << ' ' << feed;
        }
    }
}

TEST(SizeWithLineFeed, IsAllOfAPieceWithoutOne) {
    for (std::size_t size = 0; size <= 200; ++size) {
        const std::string text(size + kFileGuard, '\v');
        EXPECT_EQ(size_with_line_feed(text.data(), size), size);
    }
}

// What is copied goes up to the end of the 64 bytes that hold the piece's end, and no farther.
TEST(CopyWithLineFeed, CopiesThePieceAndTellsItsSize) {
    constexpr std::size_t kMost = 200;
    for (std::size_t size = 0; size <= kMost; ++size) {
        for (std::size_t feed = 0; feed <= kMost; ++feed) {
            std::string text(kMost + 2 * kFileGuard, 'a');
            text[feed] = '\n';
            std::string copy(text.size(), '?');
            const std::size_t copied = copy_with_line_feed(copy.data(), text.data(), size);
            ASSERT_EQ(copied, std::min(size, feed + 1)) << size << ' ' << feed;
            EXPECT_EQ(copy.substr(0, copied), text.substr(0, copied));
            const std::size_t pieces = (copied + kFileGuard - 1) / kFileGuard;
            EXPECT_EQ(copy.find_last_not_of('?') + 1, pieces * kFileGuard);
        }
    }
}

} // namespace
