// The buffered output file.
#include "util/output.h"

#include "tests/unit/support.h"

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

class OutputFileBuffer : public RunTest {
  protected:
    OutputBuffer buffer_{};

    static bool create(OutputFile &file, const std::string &name) {
        return create_output(file, name, OldFile::kRewritten);
    }

    // What write puts into a file.
    template <typename Write> std::string written(Write write) {
        const auto file = std::make_unique<OutputFile>(buffer_);
        EXPECT_TRUE(create(*file, "out"));
        write(*file);
        file->close();
        EXPECT_FALSE(file->has_failed());
        return read_text("out");
    }
};

TEST_F(OutputFileBuffer, CreatesAFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    EXPECT_FALSE(file->is_open());
    EXPECT_TRUE(create(*file, "out"));
    EXPECT_TRUE(file->is_open());
    EXPECT_FALSE(file_exists("out"));
    file->close();
    EXPECT_TRUE(file_exists("out"));
    EXPECT_FALSE(file->has_failed());
}

TEST_F(OutputFileBuffer, EmptiesAnExistingFile) {
    write_file("out", "old text");
    EXPECT_EQ(written([](OutputFile &) {}), "");
}

TEST_F(OutputFileBuffer, IsClosedWhenItCannotBeCreated) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    EXPECT_FALSE(create(*file, "missing/out"));
    EXPECT_FALSE(file->is_open());
    EXPECT_FALSE(create(*file, "."));
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
    open_output(*file, "out");
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
    ASSERT_TRUE(create(*file, "out"));
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
    ASSERT_TRUE(create(*file, "out"));
    file->put("kept");
    file->close();
    EXPECT_EQ(read_text("out"), "kept");
}

TEST_F(OutputFileBuffer, CanBeUsedForAnotherFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(create(*file, "first"));
    file->put("1");
    file->close();
    ASSERT_TRUE(create(*file, "second"));
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
    ASSERT_TRUE(create(*file, "out"));
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
    ASSERT_TRUE(create(*file, "/dev/full"));
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
    ASSERT_TRUE(create(*file, "/dev/full"));
    file->put("abc");
    file->close();
    EXPECT_TRUE(file->has_failed());
}

TEST_F(OutputFileBuffer, ForgetsAFailureWithTheNextFile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(create(*file, "/dev/full"));
    file->put("abc");
    file->close();
    ASSERT_TRUE(create(*file, "out"));
    EXPECT_FALSE(file->has_failed());
    file->put("def");
    file->close();
    EXPECT_EQ(read_text("out"), "def");
}

TEST_F(OutputFileBuffer, LeavesNothingWhenWithdrawn) {
    write_file("out", "old text");
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(create(*file, "out"));
    file->put("abc");
    file->withdraw();
    EXPECT_FALSE(file->is_open());
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(OutputFileBuffer, KeepsTheOldFileUntilItIsClosed) {
    write_file("out", "old text");
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(create(*file, "out"));
    file->put("abc");
    file->flush();
    EXPECT_EQ(read_text("out"), "old text");
    file->close();
    EXPECT_EQ(read_text("out"), "abc");
}

TEST_F(OutputFileBuffer, FailsWhenItsPlaceIsTakenMeanwhile) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    ASSERT_TRUE(create(*file, "out"));
    std::filesystem::create_directory("out");
    file->close();
    EXPECT_TRUE(file->has_failed());
    file->forget_failure();
    EXPECT_FALSE(file->has_failed());
}

// Bytes put into a closed file are not the next file's.
TEST_F(OutputFileBuffer, BeginsEmptyAfterHavingSwallowedBytes) {
    const auto file = std::make_unique<OutputFile>(buffer_);
    file->put("lost");
    ASSERT_TRUE(create(*file, "out"));
    file->close();
    EXPECT_EQ(read_text("out"), "");
}

// The guard must see whole characters, wherever the buffer ends.
TEST_F(OutputFileBuffer, GivesTheGuardWholeCharacters) {
    for (const std::string &character :
         {std::string("\xC3\xA9"), std::string("\xE2\x82\xAC"), std::string("\xF0\x9F\x98\x80")}) {
        for (std::size_t i = 1; i <= character.size(); ++i) {
            TerminalGuard guard;
            const auto file = std::make_unique<OutputFile>(buffer_);
            const int descriptor = ::open("out", O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
            ASSERT_GE(descriptor, 0);
            file->attach(descriptor, &guard);
            const std::string text(kOutputBufferSize - i, 'x');
            file->put(text);
            file->put(character);
            file->put('!');
            EXPECT_EQ(read_text("out"), i == character.size() ? text + character : text);
            file->close();
            ::close(descriptor);
            EXPECT_EQ(read_text("out"), text + character + "!");
        }
    }
}

} // namespace
