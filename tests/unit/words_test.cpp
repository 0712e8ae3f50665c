// Words known when the program is compiled.
#include "util/words.h"

#include "tests/unit/support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

WordKey key_at(const std::string &text) { return word_at(with_room(text).c_str()).key; }

struct Row {
    const char *name;
};
constexpr Row kRows[] = {{"one"}, {"two"}, {"eleventh"}, {"o"}, {"on"}};
constexpr WordTable<5, 5> kTable(kRows, &Row::name);

TEST(WordAt, EndsAtABlankOrTheEnd) {
    for (const char *end : {"", " ", "\t", "\n", "\x01", "\x80", "\xFF", " x"}) {
        EXPECT_EQ(key_at(std::string("two") + end), key_of_word("two")) << end;
    }
    const std::string text = with_room("two three");
    EXPECT_EQ(word_at(text.c_str()).end, text.c_str() + 3);
}

TEST(WordAt, TakesLettersOfEitherCaseForEqual) {
    EXPECT_EQ(key_at("TwO"), key_of_word("two"));
    EXPECT_EQ(key_at("two"), key_of_word("TWO"));
}

TEST(WordAt, IsNoneWhereNothingOrMoreThanEightCharactersStand) {
    EXPECT_EQ(key_at(""), 0U);
    EXPECT_EQ(key_at(" two"), 0U);
    EXPECT_EQ(key_at("eleventhx"), 0U);
    EXPECT_EQ(key_at("a_very_long_word_without_an_end_in_sight"), 0U);
}

TEST(WordTableTest, FindsEachWordInItsRow) {
    for (std::size_t row = 0; row < std::size(kRows); ++row) {
        EXPECT_EQ(kTable.find(key_at(kRows[row].name)), row);
    }
}

TEST(WordTableTest, FindsNothingElse) {
    for (const char *text : {"", "ones", "tw", "t", "eleventhx", "three", "one,", "1ne"}) {
        EXPECT_EQ(kTable.find(key_at(text)), std::size(kRows)) << text;
    }
    // Every other character in the place of a letter.
    for (int code = 0; code < 256; ++code) {
        const auto ch = static_cast<char>(code);
        const bool is_letter = ch == 'n' || ch == 'N';
        const bool ends_the_word = code <= 32 || code >= 128;
        const std::size_t expected = is_letter ? 0 : ends_the_word ? 3 : std::size(kRows);
        EXPECT_EQ(kTable.find(key_at(std::string("o") + ch + "e")), expected) << code;
    }
}

} // namespace
