// The buffered output file.
#include "util/output.h"

#include "tests/unit/support.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

class OutputFileBuffer : public RunTest {
  protected:
    OutputBuffer buffer_{};

    // What write puts into a file.
    template <typename Write> std::string written(Write write) {
        const auto file = std::make_unique<OutputFile>(buffer_);
        EXPECT_TRUE(file->create("out"));
        write(*file);
        file->close();
        EXPECT_FALSE(file->has_failed());
        return read_text("out");
    }
};

TEST_F(OutputFileBuffer, CreatesAFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    EXPECT_FALSE(file->is_open());
    EXPECT_TRUE(file->create("out"));
    EXPECT_TRUE(file->is_open());
    EXPECT_TRUE(file_exists("out"));
    EXPECT_FALSE(file->has_failed());
}

TEST_F(OutputFileBuffer, EmptiesAnExistingFile) {
    write_file("out", "old text");
    EXPECT_EQ(written([](OutputFile &) {}), "");
}

TEST_F(OutputFileBuffer, IsClosedWhenItCannotBeCreated) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    EXPECT_FALSE(file->create("missing/out"));
    EXPECT_FALSE(file->is_open());
    EXPECT_FALSE(file->create("."));
    EXPECT_FALSE(file->is_open());
}

TEST_F(OutputFileBuffer, WritesCharactersAndTexts) {
    EXPECT_EQ(written([](OutputFile &file) {
                  file.put('a');
                  file.put(std::string_view("b\0c", 3));
                  file.put("");
                  file.put("\xFF\n");
              }),
              std::string("ab\0c\xFF\n", 6));
}

TEST_F(OutputFileBuffer, WritesHexadecimalBytes) {
    EXPECT_EQ(written([](OutputFile &file) {
                  for (const unsigned value : {0U, 5U, 0xA0U, 0xFFU}) {
                      file.put_hex_byte(value);
                  }
              }),
              "0005A0FF");
}

TEST_F(OutputFileBuffer, WritesTheLowByteOfALargerNumber) {
    EXPECT_EQ(written([](OutputFile &file) { file.put_hex_byte(0x1234); }), "34");
}

TEST_F(OutputFileBuffer, WritesHexadecimalNumbers) {
    EXPECT_EQ(written([](OutputFile &file) {
                  file.put_hex(0x1F, 4);
                  file.put(' ');
                  file.put_hex(0x12345, 4);
                  file.put(' ');
                  file.put_hex(0, 1);
              }),
              "001F 12345 0");
}

TEST_F(OutputFileBuffer, WritesDecimalNumbersPaddedOnTheLeft) {
    EXPECT_EQ(written([](OutputFile &file) {
                  file.put_decimal(0);
                  file.put('|');
                  file.put_decimal(42, 5);
                  file.put('|');
                  file.put_decimal(-42, 5);
                  file.put('|');
                  file.put_decimal(12345, 5);
                  file.put('|');
                  file.put_decimal(123456, 5);
                  file.put('|');
                  file.put_decimal(std::numeric_limits<std::int64_t>::min());
              }),
              "0|   42|  -42|12345|123456|-9223372036854775808");
}

TEST_F(OutputFileBuffer, KeepsEveryByteAroundTheBuffersSize) {
    for (const std::size_t size :
         {kOutputBufferSize - 1, kOutputBufferSize, kOutputBufferSize + 1, 3 * kOutputBufferSize}) {
        std::string text(size, 'x');
        text.front() = '<';
        text.back() = '>';
        EXPECT_EQ(written([&](OutputFile &file) { file.put(text); }), text);
        EXPECT_EQ(written([&](OutputFile &file) {
                      for (const char ch : text) {
                          file.put(ch);
                      }
                  }),
                  text);
        EXPECT_EQ(written([&](OutputFile &file) {
                      file.put('!');
                      file.put(text);
                  }),
                  "!" + text);
    }
}

TEST_F(OutputFileBuffer, HandsItsBufferOverWhenFlushed) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("out"));
    file->put("abc");
    file->flush();
    EXPECT_EQ(read_text("out"), "abc");
    file->put("d");
    file->flush();
    file->flush();
    EXPECT_EQ(read_text("out"), "abcd");
}

TEST_F(OutputFileBuffer, StaysClosedWhenClosedAgain) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("out"));
    file->close();
    file->close();
    EXPECT_FALSE(file->is_open());
    EXPECT_FALSE(file->has_failed());
}

TEST_F(OutputFileBuffer, SwallowsEverythingWhileClosed) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    file->put("lost");
    file->put(std::string(2 * kOutputBufferSize, 'x'));
    file->put('x');
    file->flush();
    EXPECT_FALSE(file->has_failed());
    ASSERT_TRUE(file->create("out"));
    file->put("kept");
    file->close();
    EXPECT_EQ(read_text("out"), "kept");
}

TEST_F(OutputFileBuffer, CanBeUsedForAnotherFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("first"));
    file->put("1");
    file->close();
    ASSERT_TRUE(file->create("second"));
    file->put("2");
    file->close();
    EXPECT_EQ(read_text("first"), "1");
    EXPECT_EQ(read_text("second"), "2");
}

// A new descriptor is always the lowest one that is free.
TEST_F(OutputFileBuffer, GivesItsDescriptorBackWhenClosed) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    const int before = ::dup(STDOUT_FILENO);
    ASSERT_GE(before, 0);
    ::close(before);
    ASSERT_TRUE(file->create("out"));
    file->close();
    const int after = ::dup(STDOUT_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST_F(OutputFileBuffer, LeavesAnAttachedDescriptorOpen) {
    const int descriptor = ::open("out", O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_GE(descriptor, 0);
    const auto file = std::make_unique<OutputFile>(buffer_);
    file->attach(descriptor);
    EXPECT_TRUE(file->is_open());
    file->put("abc");
    file->close();
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(::write(descriptor, "d", 1), 1);
    ::close(descriptor);
    EXPECT_EQ(read_text("out"), "abcd");
}

TEST_F(OutputFileBuffer, RemembersAFailedWrite) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("/dev/full"));
    file->put("abc");
    EXPECT_FALSE(file->has_failed());
    file->flush();
    EXPECT_TRUE(file->has_failed());
    file->put("def");
    file->close();
    EXPECT_TRUE(file->has_failed());
}

TEST_F(OutputFileBuffer, NoticesAWriteThatFailsOnClosing) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("/dev/full"));
    file->put("abc");
    file->close();
    EXPECT_TRUE(file->has_failed());
}

TEST_F(OutputFileBuffer, ForgetsAFailureWithTheNextFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(file->create("/dev/full"));
    file->put("abc");
    file->close();
    ASSERT_TRUE(file->create("out"));
    EXPECT_FALSE(file->has_failed());
    file->put("def");
    file->close();
    EXPECT_EQ(read_text("out"), "def");
}

TEST_F(OutputFileBuffer, IsDeletedWhenItIsAFile) {
    write_file("old.s19", "S9030000FC\n");
    delete_output("old.s19");
    EXPECT_FALSE(file_exists("old.s19"));
}

TEST_F(OutputFileBuffer, MayBeMissingWhenItIsDeleted) {
    delete_output("missing.s19");
    EXPECT_FALSE(file_exists("missing.s19"));
}

// Another user may write to the file, but not delete it from this directory.
TEST_F(OutputFileBuffer, IsEmptiedWhenItCannotBeDeleted) {
    constexpr uid_t kNobody = 65534;
    std::filesystem::create_directory("locked");
    write_file("locked/out", "old text");
    ASSERT_EQ(::chmod("locked/out", 0666), 0);
    ASSERT_EQ(::chmod("locked", 0555), 0);
    ASSERT_EQ(::chmod(".", 0755), 0);
    const uid_t user = ::geteuid();
    ASSERT_EQ(::seteuid(user == 0 ? kNobody : user), 0);
    delete_output("locked/out");
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod("locked", 0755), 0);
    EXPECT_TRUE(file_exists("locked/out"));
    EXPECT_EQ(read_text("locked/out"), "");
}

TEST_F(OutputFileBuffer, IsLeftAloneWhenItIsADevice) {
    // A null device of the test's own, so that a fault cannot cost the machine its real one.
    if (::mknod("null", S_IFCHR | 0666, makedev(1, 3)) != 0) {
        GTEST_SKIP() << "Devices can be made by root only.";
    }
    delete_output("null");
    EXPECT_TRUE(file_exists("null"));
}

} // namespace
