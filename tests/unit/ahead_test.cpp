// Looking at sixteen characters at once.
#include "util/ahead.h"

#include "util/text.h"

#include "tests/unit/support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

std::string byte(int code) { return std::string(1, static_cast<char>(code)); }

// A code in each of the sixteen places in turn, among characters that are not of its kind.
template <typename Mask, typename Test> void expect_masks(Mask mask, Test test, char other) {
    for (int code = 0; code < 256; ++code) {
        for (std::size_t place = 0; place < kLookAhead; ++place) {
            std::string text(kLookAhead, other);
            text[place] = static_cast<char>(code);
            EXPECT_EQ(mask(text.data()), mask_of(text.data(), test)) << code << " at " << place;
            const unsigned others = test(other) ? 0xFFFFU : 0U;
            const unsigned bit = 1U << place;
            const bool is_member = test(static_cast<char>(code));
            EXPECT_EQ(mask(text.data()), is_member ? others | bit : others & ~bit) << code;
        }
    }
}

TEST(Masks, HaveABitForEachCharacterOfTheirClass) {
    const auto is_blank_or_tab = [](char ch) { return ch == ' ' || ch == '\t'; };
    expect_masks(blank_or_tab_mask, is_blank_or_tab, 'x');
    expect_masks(blank_or_tab_mask, is_blank_or_tab, ' ');
    expect_masks(symbol_char_mask, is_symbol_char, ' ');
    expect_masks(symbol_char_mask, is_symbol_char, 'x');
    const auto is_word_char = [](char ch) { return !isblanc(ch); };
    expect_masks(word_char_mask, is_word_char, ' ');
    expect_masks(word_char_mask, is_word_char, 'x');
    const auto is_blank = [](char ch) { return ch != '\0' && isblanc(ch); };
    expect_masks(blank_mask, is_blank, 'x');
    expect_masks(blank_mask, is_blank, ' ');
    expect_masks(
        nul_mask, [](char ch) { return ch == '\0'; }, 'x');
}

TEST(RunLength, IsTheNumberOfLowestBitsThatAreSet) {
    for (std::size_t length = 0; length <= kLookAhead; ++length) {
        const unsigned run = (1U << length) - 1U;
        EXPECT_EQ(run_length(static_cast<AheadMask>(run)), length);
        // Bits above the first that is not set do not count.
        EXPECT_EQ(run_length(static_cast<AheadMask>(run | ~1U << length)), length);
    }
}

TEST(SkipBlanksAndTabs, StopsAtEveryOtherByte) {
    for (int code = 0; code < 256; ++code) {
        const std::string text = with_room(std::string(" \t ") + byte(code) + "x");
        const std::size_t expected = code == ' ' || code == '\t' ? 4 : 3;
        EXPECT_EQ(skip_blanks_and_tabs(text.c_str()), text.c_str() + expected) << code;
    }
}

TEST(Skips, GoOnAfterSixteenCharacters) {
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 31U, 32U, 33U, 100U}) {
        const std::string blanks = with_room(std::string(size, '\t') + ";");
        EXPECT_EQ(skip_blanks_and_tabs(blanks.c_str()), blanks.c_str() + size);
        EXPECT_EQ(skip_blanks(blanks.c_str()), blanks.c_str() + size);
        const std::string name = with_room(std::string(size, '$'));
        EXPECT_EQ(skip_symbol_chars(name.c_str()), name.c_str() + size);
        EXPECT_EQ(skip_word(name.c_str()), name.c_str() + size);
    }
}

TEST(SkipBlanks, PassesControlCharactersAndHighBytesUpToTheEnd) {
    const std::string text = with_room(" \t\n\r\x01\x80\xFFx");
    EXPECT_EQ(*skip_blanks(text.c_str()), 'x');
    const std::string end = with_room(" \n");
    EXPECT_EQ(skip_blanks(end.c_str()), end.c_str() + 2);
}

} // namespace
