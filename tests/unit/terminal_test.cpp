// What a terminal is shown of the bytes in messages.
#include "util/terminal.h"

#include "tests/unit/support.h"

#include <array>
#include <string>
#include <vector>

#include <fcntl.h>
#include <stdlib.h> // posix_openpt
#include <termios.h>
#include <unistd.h>

namespace {

class Terminal : public RunTest {
  protected:
    // What arrives at the terminal of what is written to it.
    static std::string shown(const std::string &text) {
        const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(master, 0);
        EXPECT_EQ(::grantpt(master), 0);
        EXPECT_EQ(::unlockpt(master), 0);
        const int terminal = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(terminal, 0);
        termios settings{};
        EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
        settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        EXPECT_EQ(::tcsetattr(terminal, TCSANOW, &settings), 0);
        TerminalGuard guard;
        EXPECT_TRUE(guard.write(terminal, text));
        // It may arrive in pieces, so a mark tells the end.
        constexpr char kEnd = '\x1C';
        EXPECT_EQ(::write(terminal, &kEnd, 1), 1);
        std::string arrived;
        std::array<char, 256> piece{};
        while (!arrived.ends_with(kEnd)) {
            const ssize_t size = ::read(master, piece.data(), piece.size());
            if (size <= 0) {
                ADD_FAILURE() << "the terminal is closed";
                break;
            }
            arrived.append(piece.data(), static_cast<std::size_t>(size));
        }
        arrived.pop_back();
        ::close(terminal);
        ::close(master);
        return arrived;
    }

    void SetUp() override {
        RunTest::SetUp();
        const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master < 0) {
            GTEST_SKIP() << "There are no pseudo-terminals here.";
        }
        ::close(master);
    }

    std::string in_a_file(const std::string &text) {
        TerminalGuard guard;
        const int descriptor = ::open("out", O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
        EXPECT_TRUE(guard.write(descriptor, text));
        ::close(descriptor);
        return read_text("out");
    }
};

TEST_F(Terminal, ShowsPlainTextTabsAndLineFeedsAsTheyAre) {
    std::string text = "\t\n";
    for (char ch = ' '; ch <= '~'; ++ch) {
        text += ch;
    }
    EXPECT_EQ(shown(text), text);
    EXPECT_EQ(shown(""), "");
}

TEST_F(Terminal, ShowsEveryOtherControlByteInHexadecimal) {
    EXPECT_EQ(shown(std::string("\0\x01\x07\x08\x0B\x0D\x1B[2J\x1F\x7F.", 13)),
              R"(\x00\x01\x07\x08\x0B\x0D\x1B[2J\x1F\x7F.)");
}

TEST_F(Terminal, ShowsVisibleCharactersOfEverySizeAsTheyAre) {
    // The first and last of each size and around the surrogates.
    const std::string text = "\xC2\xA0\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
                             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(shown(text), text);
}

TEST_F(Terminal, ShowsWhatIsNoCharacterInHexadecimal) {
    const struct {
        std::string text;
        std::string expected;
    } kCases[] = {
        {"\x80.", R"(\x80.)"}, // no first byte
        {"\xBF.", R"(\xBF.)"},
        {"\xC0\x80.", R"(\xC0\x80.)"}, // overlong
        {"\xC1\xBF.", R"(\xC1\xBF.)"},
        {"\xE0\x9F\xBF.", R"(\xE0\x9F\xBF.)"},
        {"\xF0\x8F\xBF\xBF.", R"(\xF0\x8F\xBF\xBF.)"},
        {"\xED\xA0\x80.", R"(\xED\xA0\x80.)"}, // surrogate
        {"\xED\xBF\xBF.", R"(\xED\xBF\xBF.)"},
        {"\xF4\x90\x80\x80.", R"(\xF4\x90\x80\x80.)"}, // above 10FFFF
        {"\xF5\x80\x80\x80.", R"(\xF5\x80\x80\x80.)"},
        {"\xFE\xFF.", R"(\xFE\xFF.)"},
        {"\xC3.", R"(\xC3.)"}, // begun and not ended
        {"\xE2\x82.", R"(\xE2\x82.)"},
        {"\xF0\x9F\x98.", R"(\xF0\x9F\x98.)"},
        {"\xE2\x82\xC3\xA9", "\\xE2\\x82\xC3\xA9"},
        {"\xC3", R"(\xC3)"},
    };
    for (const auto &given : kCases) {
        EXPECT_EQ(shown(given.text), given.expected);
    }
}

// A terminal obeys U+009B like ESC [.
TEST_F(Terminal, ShowsControlCharactersBeyondAsciiInHexadecimal) {
    EXPECT_EQ(shown("\xC2\x80\xC2\x9B\xC2\x9F"), R"(\xC2\x80\xC2\x9B\xC2\x9F)");
}

TEST_F(Terminal, GuardsNeitherFilesNorPipes) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(in_a_file(text), text);
}

TEST_F(Terminal, SaysWhenAWriteFails) {
    TerminalGuard guard;
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_FALSE(guard.write(full, "text"));
    EXPECT_FALSE(guard.write(full, "\x1B"));
    ::close(full);
}

TEST(BegunCharacter, IsWhatMayGoOn) {
    EXPECT_EQ(begun_character_size(""), 0U);
    EXPECT_EQ(begun_character_size("text"), 0U);
    EXPECT_EQ(begun_character_size("x\xC3"), 1U);
    EXPECT_EQ(begun_character_size("x\xC3\xA9"), 0U);
    EXPECT_EQ(begun_character_size("x\xE2"), 1U);
    EXPECT_EQ(begun_character_size("x\xE2\x82"), 2U);
    EXPECT_EQ(begun_character_size("\xE2\x82\xAC"), 0U);
    EXPECT_EQ(begun_character_size("\xF0\x9F\x98"), 3U);
    EXPECT_EQ(begun_character_size("\xF0\x9F\x98\x80"), 0U);
}

TEST(BegunCharacter, IsNotWhatCannotBecomeOne) {
    EXPECT_EQ(begun_character_size("\xC0"), 0U);
    EXPECT_EQ(begun_character_size("\xE0\x80"), 0U);
    EXPECT_EQ(begun_character_size("\xFF"), 0U);
    EXPECT_EQ(begun_character_size("\x80\x80\x80"), 0U);
    EXPECT_EQ(begun_character_size("\x1B"), 0U);
}

} // namespace
