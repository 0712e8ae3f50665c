// Text scanning: character classes and the copy and skip functions.
#include "util/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char *kDelimiterMarks = "!%&()*+,-./:;<=>[]^{|}~";

char byte(int code) { return static_cast<char>(static_cast<unsigned char>(code)); }

bool is_letter_code(int code) {
    return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
}

bool is_digit_code(int code) { return code >= '0' && code <= '9'; }

bool is_mark(int code) {
    return code != 0 && std::string(kDelimiterMarks).find(byte(code)) != std::string::npos;
}

// ---- Character classes ----

TEST(CharacterClass, BlanksAreTheCodesBelow33AndThoseFrom128Up) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(isblanc(byte(code)), code < 33 || code > 127) << code;
    }
}

TEST(CharacterClass, NameCharactersAreAsciiLettersDigitsAndUnderscore) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_name_char(byte(code)),
                  is_letter_code(code) || is_digit_code(code) || code == '_')
            << code;
    }
}

TEST(CharacterClass, SymbolCharactersAreNameCharactersAndDollarAndPoint) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_symbol_char(byte(code)), is_letter_code(code) || is_digit_code(code) ||
                                                  code == '_' || code == '$' || code == '.')
            << code;
    }
}

TEST(CharacterClass, ExpressionDelimitersAreBlanksOperatorsAndBrackets) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_expression_delimiter(byte(code)), code < 33 || code > 127 || is_mark(code))
            << code;
    }
}

TEST(CharacterClass, DigitsAreTheTenAsciiDigits) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_digit(byte(code)), is_digit_code(code)) << code;
    }
}

TEST(CharacterClass, LineEndsAreTheTerminatorLineFeedAndCarriageReturn) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_line_end(byte(code)), code == 0 || code == '\n' || code == '\r') << code;
    }
}

TEST(CharacterClass, OnlyAsciiLettersHaveAnUpperCase) {
    for (int code = 0; code < 256; ++code) {
        const int expected = code >= 'a' && code <= 'z' ? code - 32 : code;
        EXPECT_EQ(to_upper(byte(code)), byte(expected)) << code;
    }
}

TEST(CharacterClass, HexadecimalDigitsHaveValuesInEitherCase) {
    const std::string lower = "0123456789abcdef";
    const std::string upper = "0123456789ABCDEF";
    for (int code = 0; code < 256; ++code) {
        std::size_t value = lower.find(byte(code));
        if (value == std::string::npos) {
            value = upper.find(byte(code));
        }
        EXPECT_EQ(digit_value(byte(code)), value == std::string::npos ? kNoDigit : value) << code;
    }
}

// ---- Skips ----

TEST(Skipblanc, SkipsControlCharactersBlanksAndBytesFrom128Up) {
    const char *text = " \t\n\r\x01\x80\xFFX";
    EXPECT_EQ(skipblanc(text), text + 7);
}

TEST(Skipblanc, StopsAtTheTerminatorAndAtVisibleText) {
    const char *blanks = "  ";
    EXPECT_EQ(skipblanc(blanks), blanks + 2);
    const char *visible = "! ";
    EXPECT_EQ(skipblanc(visible), visible);
}

TEST(Skipblanc, GivesNullForNull) { EXPECT_EQ(skipblanc(nullptr), nullptr); }

// ---- Tests of line ends ----

TEST(LineDivided, NeedsAPlusAndALineFeed) {
    EXPECT_TRUE(line_divided("+\n"));
    EXPECT_TRUE(line_divided(".stabs +\n"));
    EXPECT_FALSE(line_divided(".stabs \\\n"));
    EXPECT_FALSE(line_divided(".stabs \n"));
    EXPECT_FALSE(line_divided(".stabs +\r\n"));
}

TEST(LineDivided, LooksAtNothingAheadOfTheText) { EXPECT_FALSE(line_divided(&"+\n"[1])); }

TEST(LineDivided, IsFalseForALastLineWithoutALineFeed) { EXPECT_FALSE(line_divided(".stabs +")); }

TEST(LineDivided, NeedsTwoCharacters) {
    EXPECT_FALSE(line_divided("\n"));
    EXPECT_FALSE(line_divided("+"));
    EXPECT_FALSE(line_divided(""));
}

// ---- Comparisons ----

// ---- Copies of lines ----

TEST(Nlstrcpy, CopiesUpToEachKindOfLineEnd) {
    for (const char *end : {"", "\n", "\r", "\r\nmore"}) {
        std::string copy = "old";
        const std::string text = std::string("a b\\") + end;
        EXPECT_EQ(nlstrcpy(copy, text.c_str()), text.c_str() + 4);
        EXPECT_EQ(copy, "a b\\");
    }
}

TEST(Nlstrcpy, NoSourceGivesAnEmptyDestination) {
    std::string copy = "old";
    nlstrcpy(copy, nullptr);
    EXPECT_EQ(copy, "");
}

// ---- Copies of names and fields ----

TEST(Extractsizedname, CopiesNoMoreThanTheLimit) {
    std::string name = "old";
    const char *text = "ABCDEF";
    EXPECT_EQ(extractsizedname(name, text, 3), text + 3);
    EXPECT_EQ(name, "ABC");
}

TEST(Extractsizedname, OneBelowAtAndOneAboveTheNamesLength) {
    std::string name;
    const char *text = "AB9,C";
    EXPECT_EQ(extractsizedname(name, text, 2), text + 2);
    EXPECT_EQ(name, "AB");
    EXPECT_EQ(extractsizedname(name, text, 3), text + 3);
    EXPECT_EQ(name, "AB9");
    EXPECT_EQ(extractsizedname(name, text, 4), text + 3);
    EXPECT_EQ(name, "AB9");
}

TEST(Extractsizedname, StopsAtSymbolMarks) {
    std::string name;
    const char *text = "A.B";
    EXPECT_EQ(extractsizedname(name, text, 63), text + 1);
    EXPECT_EQ(name, "A");
}

TEST(Extractsizedname, ALimitOf0LeavesTheDestinationAndReturnsItsText) {
    std::string name = "old";
    EXPECT_EQ(extractsizedname(name, "ABC", 0), name.c_str());
    EXPECT_EQ(name, "old");
}

TEST(Extracttoskip, CopiesUpToTheFirstOccurrence) {
    std::string text = "old";
    const char *source = "a b\n:c:d";
    EXPECT_EQ(extracttoskip(text, source, ':'), source + 4);
    EXPECT_EQ(text, "a b\n");
    EXPECT_EQ(extracttoskip(text, source, 'a'), source);
    EXPECT_EQ(text, "");
}

TEST(Extracttoskip, CopiesToTheEndWithoutAnOccurrence) {
    std::string text = "old";
    const char *source = "a b";
    EXPECT_EQ(extracttoskip(text, source, ':'), source + 3);
    EXPECT_EQ(text, "a b");
}

// ---- Copies of quoted texts ----

TEST(Copyquotedopt, KeepsBlanksBetweenQuotes) {
    std::string text = "old";
    const char *source = "\"my dir\" x";
    EXPECT_EQ(copyquotedopt(text, source), source + 8);
    EXPECT_EQ(text, "my dir");
}

TEST(Copyquotedopt, WithoutQuotesEndsAtTheFirstBlank) {
    std::string text = "old";
    const char *source = "my dir";
    EXPECT_EQ(copyquotedopt(text, source), source + 2);
    EXPECT_EQ(text, "my");
}

TEST(Copyquotedopt, WithoutAClosingQuoteTakesTheRest) {
    std::string text;
    const char *source = "\"my dir";
    EXPECT_EQ(copyquotedopt(text, source), source + 7);
    EXPECT_EQ(text, "my dir");
}

TEST(Copyquotedopt, AQuoteInsideAWordIsACharacterLikeAnyOther) {
    std::string text;
    const char *source = "a\"b c";
    EXPECT_EQ(copyquotedopt(text, source), source + 3);
    EXPECT_EQ(text, "a\"b");
}

TEST(Copyquotedopt, EmptyQuotesAndABlankGiveAnEmptyText) {
    std::string text = "old";
    const char *quotes = "\"\"x";
    EXPECT_EQ(copyquotedopt(text, quotes), quotes + 2);
    EXPECT_EQ(text, "");
    text = "old";
    const char *blank = " x";
    EXPECT_EQ(copyquotedopt(text, blank), blank);
    EXPECT_EQ(text, "");
}

TEST(Copyquotedopt, BytesFrom128UpEndAnUnquotedTextOnly) {
    std::string text;
    const char *unquoted = "a\xE9"
                           "b";
    EXPECT_EQ(copyquotedopt(text, unquoted), unquoted + 1);
    EXPECT_EQ(text, "a");
    copyquotedopt(text, "\"a\xE9"
                        "b\"");
    EXPECT_EQ(text, "a\xE9"
                    "b");
}

TEST(Copyquoted, DropsAnOpeningQuoteAndEndsAtTheNext) {
    std::string text = "old";
    const char *quoted = "\"a b\"c";
    EXPECT_EQ(copyquoted(text, quoted), quoted + 5);
    EXPECT_EQ(text, "a b");
    const char *bare = "a b\"c";
    EXPECT_EQ(copyquoted(text, bare), bare + 4);
    EXPECT_EQ(text, "a b");
}

TEST(Copyquoted, EmptyQuotesGiveAnEmptyText) {
    std::string text = "old";
    const char *source = "\"\"c";
    EXPECT_EQ(copyquoted(text, source), source + 2);
    EXPECT_EQ(text, "");
}

TEST(Copyquoted, WithoutAClosingQuoteTakesTheRest) {
    std::string text;
    const char *source = "\"a b";
    EXPECT_EQ(copyquoted(text, source), source + 4);
    EXPECT_EQ(text, "a b");
}

} // namespace
