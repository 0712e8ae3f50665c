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

TEST(NonblanksAhead, EndAtTheFirstByteThatCountsAsABlank) {
    for (int code = 0; code < 256; ++code) {
        // Bytes on either side of the limits stand next to it.
        for (const int neighbour : {0x21, 0x7F}) {
            for (unsigned i = 0; i < 8; ++i) {
                std::string text(8, byte(neighbour));
                text[i] = byte(code);
                const bool is_blank = code < 33 || code > 127;
                EXPECT_EQ(nonblanks_ahead(eight_characters(text.data())), is_blank ? i : 8U)
                    << code << ' ' << neighbour;
            }
        }
    }
}

TEST(NonblanksAhead, TheFirstOfSeveralBlanksCounts) {
    EXPECT_EQ(nonblanks_ahead(eight_characters("ab  cd e")), 2U);
    EXPECT_EQ(nonblanks_ahead(eight_characters("abc\xFF\x80 \0")), 3U);
    EXPECT_EQ(nonblanks_ahead(eight_characters("\0\0\0\0\0\0\0\0")), 0U);
}

TEST(SkipBlanksAndTabs, StopsAtEveryOtherByte) {
    for (int code = 0; code < 256; ++code) {
        const std::string text = std::string(" \t ") + byte(code) + "x";
        const std::size_t expected = code == ' ' || code == '\t' ? 4 : 3;
        EXPECT_EQ(skip_blanks_and_tabs(text.c_str()), text.c_str() + expected) << code;
    }
}

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

TEST(Skipblanc, GivesNoneForNone) { EXPECT_EQ(skipblanc(nullptr), nullptr); }

TEST(Skipnonblanc, StopsAtTheFirstBlank) {
    const char *text = "a;,!~ b";
    EXPECT_EQ(skipnonblanc(text), text + 5);
}

TEST(Skipnonblanc, TakesBytesFrom128UpForBlanks) {
    const char *lowest = "ab\x80"
                         "c";
    EXPECT_EQ(skipnonblanc(lowest), lowest + 2);
    const char *highest = "ab\xFF"
                          "c";
    EXPECT_EQ(skipnonblanc(highest), highest + 2);
    const char *below = "ab\x7F"
                        "c";
    EXPECT_EQ(skipnonblanc(below), below + 4);
}

TEST(Skipnonblanc, StopsAtTheTerminatorAndGivesNoneForNone) {
    const char *text = "abc";
    EXPECT_EQ(skipnonblanc(text), text + 3);
    EXPECT_EQ(skipnonblanc(nullptr), nullptr);
}

TEST(SkipTo, AdvancesToTheFirstOccurrence) {
    const char *text = "a,b,c";
    EXPECT_EQ(skip_to(text, ','), text + 1);
    EXPECT_EQ(skip_to(text, 'a'), text);
}

TEST(SkipTo, AdvancesToTheEndWithoutAnOccurrence) {
    const char *text = "a,b,c";
    EXPECT_EQ(skip_to(text, ';'), text + 5);
    EXPECT_EQ(skip_to(text, '\0'), text + 5);
}

TEST(SkipNameDelimiter, AdvancesToTheFirstNameCharacter) {
    const char *letter = " ,$.\xE9z";
    EXPECT_EQ(skipNameDelimiter(letter), letter + 5);
    const char *underscore = "(_a";
    EXPECT_EQ(skipNameDelimiter(underscore), underscore + 1);
    const char *digit = "7";
    EXPECT_EQ(skipNameDelimiter(digit), digit);
}

TEST(SkipNameDelimiter, GivesNoneIfTheTextEndsFirst) {
    EXPECT_EQ(skipNameDelimiter(" ,."), nullptr);
    EXPECT_EQ(skipNameDelimiter(""), nullptr);
}

TEST(SkipFNameDelimiter, AdvancesPastBlanksCommasAndSemicolons) {
    const char *text = " ,;\t\n\"f\"";
    EXPECT_EQ(skipFNameDelimiter(text), text + 5);
    const char *other = "./f";
    EXPECT_EQ(skipFNameDelimiter(other), other);
}

TEST(SkipFNameDelimiter, TakesBytesFrom128UpForBlanks) {
    const char *text = ",\x80\xFF"
                       "f";
    EXPECT_EQ(skipFNameDelimiter(text), text + 3);
}

TEST(SkipFNameDelimiter, GivesNoneIfTheTextEndsFirst) {
    EXPECT_EQ(skipFNameDelimiter(" ,;"), nullptr);
    EXPECT_EQ(skipFNameDelimiter(""), nullptr);
}

// ---- Tests of line ends ----

TEST(LineContinued, NeedsABackslashAndALineFeed) {
    EXPECT_TRUE(line_continued("\\\n"));
    EXPECT_TRUE(line_continued("abc\\\n"));
    EXPECT_FALSE(line_continued("abc\\"));
    EXPECT_FALSE(line_continued("abc\n"));
    EXPECT_FALSE(line_continued("abc+\n"));
    EXPECT_FALSE(line_continued("abc\\\r\n"));
    EXPECT_FALSE(line_continued("a\\\nb"));
}

TEST(LineContinued, NeedsTwoCharacters) {
    EXPECT_FALSE(line_continued("\n"));
    EXPECT_FALSE(line_continued("\\"));
    EXPECT_FALSE(line_continued(""));
}

TEST(LineDivided, NeedsAPlusAndALineFeed) {
    EXPECT_TRUE(line_divided("+\n"));
    EXPECT_TRUE(line_divided(".stabs +\n"));
    EXPECT_FALSE(line_divided(".stabs \\\n"));
    EXPECT_FALSE(line_divided(".stabs \n"));
    EXPECT_FALSE(line_divided(".stabs +\r\n"));
}

TEST(LineDivided, LooksAtNothingAheadOfTheText) {
    EXPECT_FALSE(line_divided(&"+\n"[1]));
    EXPECT_FALSE(line_continued(&"\\\n"[1]));
}

TEST(LineDivided, IsFalseForALastLineWithoutALineFeed) { EXPECT_FALSE(line_divided(".stabs +")); }

TEST(LineDivided, NeedsTwoCharacters) {
    EXPECT_FALSE(line_divided("\n"));
    EXPECT_FALSE(line_divided("+"));
    EXPECT_FALSE(line_divided(""));
}

// ---- Comparisons ----

TEST(Nlstrcmp, ComparesUpToALineEndOfEither) {
    EXPECT_TRUE(nlstrcmp("ABC", "ABC"));
    EXPECT_TRUE(nlstrcmp("ABC\n", "ABC"));
    EXPECT_TRUE(nlstrcmp("ABC\n", "ABC\r\n"));
    EXPECT_TRUE(nlstrcmp("ABC", "ABC\n"));
    EXPECT_TRUE(nlstrcmp("ABC\nX", "ABC\nY"));
    EXPECT_TRUE(nlstrcmp("ABCD", "ABC\n"));
    EXPECT_TRUE(nlstrcmp("ABCD", "ABC\r"));
}

TEST(Nlstrcmp, IsFalseForDifferentTexts) {
    EXPECT_FALSE(nlstrcmp("ABC", "ABD"));
    EXPECT_FALSE(nlstrcmp("ABC", "XBC"));
    EXPECT_FALSE(nlstrcmp("ABC", "abc"));
}

TEST(Nlstrcmp, ACarriageReturnInTheFirstTextMatchesAnything) {
    EXPECT_TRUE(nlstrcmp("ABC\r", "ABCD"));
    EXPECT_TRUE(nlstrcmp("ABC\r", "ABC"));
    EXPECT_TRUE(nlstrcmp("\r", "X"));
}

TEST(Nlstrcmp, ALineFeedInTheFirstTextIsACharacterLikeAnyOther) {
    EXPECT_FALSE(nlstrcmp("ABC\n", "ABCD"));
    EXPECT_FALSE(nlstrcmp("\n", "X"));
}

TEST(Nlstrcmp, ACarriageReturnBehindTheDifferingCharacterMatchesALineFeedDoesNot) {
    EXPECT_TRUE(nlstrcmp("ABC\r", "ABD"));
    EXPECT_FALSE(nlstrcmp("ABC\n", "ABD"));
}

TEST(Namecomparei, LettersOfEitherCaseAreEqual) {
    EXPECT_TRUE(namecomparei("org", "ORG"));
    EXPECT_TRUE(namecomparei("OrG 5", "oRg"));
    EXPECT_FALSE(namecomparei("ora", "org"));
    EXPECT_FALSE(namecomparei("or g", "or g"));
    EXPECT_FALSE(namecomparei("@", "`"));
    EXPECT_FALSE(namecomparei("[", "{"));
}

TEST(Namecomparei, SlashAndBackslashAreEqual) {
    EXPECT_TRUE(namecomparei("a/b", "a\\b"));
    EXPECT_TRUE(namecomparei("a\\b", "a/b"));
    EXPECT_FALSE(namecomparei("a|b", "a/b"));
}

TEST(Namecomparei, TheWordEndsAtAnyBlankIncludingBytesFrom128Up) {
    for (int code = 1; code < 256; ++code) {
        const std::string text = std::string("org") + byte(code) + "x";
        EXPECT_EQ(namecomparei(text.c_str(), "org"), code < 33 || code > 127) << code;
    }
}

TEST(Namecomparei, WordAndNameMustEndTogether) {
    EXPECT_FALSE(namecomparei("or", "org"));
    EXPECT_FALSE(namecomparei("or ", "org"));
    EXPECT_FALSE(namecomparei("orgs", "org"));
    EXPECT_FALSE(namecomparei("org,", "org"));
    EXPECT_FALSE(namecomparei("org;x", "org"));
    EXPECT_TRUE(namecomparei("", ""));
    EXPECT_FALSE(namecomparei("", "org"));
}

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

TEST(Clstrcpy, RemovesABackslashThatWasCopiedLast) {
    std::string copy = "old";
    const char *text = "a\\b\\\nc";
    EXPECT_EQ(clstrcpy(copy, text), text + 4);
    EXPECT_EQ(copy, "a\\b");
}

TEST(Clstrcpy, RemovesOneBackslashOnlyAndNoPlus) {
    std::string copy;
    clstrcpy(copy, "a\\\\");
    EXPECT_EQ(copy, "a\\");
    clstrcpy(copy, "a+\n");
    EXPECT_EQ(copy, "a+");
    clstrcpy(copy, "\\");
    EXPECT_EQ(copy, "");
}

TEST(Clstrcpy, StopsAtACarriageReturnToo) {
    std::string copy;
    const char *text = "ab\\\r\n";
    EXPECT_EQ(clstrcpy(copy, text), text + 3);
    EXPECT_EQ(copy, "ab");
}

TEST(Clstrcpy, NoSourceRemovesABackslashThatIsThere) {
    std::string with = "ab\\";
    clstrcpy(with, nullptr);
    EXPECT_EQ(with, "ab");
}

TEST(Divstrcpy, RemovesAPlusThatWasCopiedLast) {
    std::string copy = "old";
    const char *text = "a+b+\nc";
    EXPECT_EQ(divstrcpy(copy, text), text + 4);
    EXPECT_EQ(copy, "a+b");
    divstrcpy(copy, "a++");
    EXPECT_EQ(copy, "a+");
    divstrcpy(copy, "a\\\n");
    EXPECT_EQ(copy, "a\\");
}

TEST(Divstrcpy, NoSourceRemovesAPlusThatIsThere) {
    std::string with = "ab+";
    divstrcpy(with, nullptr);
    EXPECT_EQ(with, "ab");
}

TEST(Clstrcat, AppendsAndRemovesABackslashThatWasCopiedLast) {
    std::string text = "x\\";
    const char *source = "ab\\\n";
    EXPECT_EQ(clstrcat(text, source), source + 3);
    EXPECT_EQ(text, "x\\ab");
}

TEST(Clstrcat, NoSourceRemovesABackslashFromTheDestinationsEnd) {
    std::string with = "ab\\";
    clstrcat(with, nullptr);
    EXPECT_EQ(with, "ab");
    std::string without = "ab+";
    clstrcat(without, nullptr);
    EXPECT_EQ(without, "ab+");
    std::string empty;
    clstrcat(empty, nullptr);
    EXPECT_EQ(empty, "");
}

TEST(Clstrcat, AnEmptySourceRemovesNothing) {
    std::string text = "ab\\";
    clstrcat(text, "\n");
    EXPECT_EQ(text, "ab\\");
}

TEST(Divstrcat, AppendsAndRemovesAPlusThatWasCopiedLast) {
    std::string text = "x+";
    const char *source = "ab+\n";
    EXPECT_EQ(divstrcat(text, source), source + 3);
    EXPECT_EQ(text, "x+ab");
}

TEST(Divstrcat, NoSourceRemovesAPlusFromTheDestinationsEnd) {
    std::string with = "ab+";
    divstrcat(with, nullptr);
    EXPECT_EQ(with, "ab");
    std::string without = "ab\\";
    divstrcat(without, nullptr);
    EXPECT_EQ(without, "ab\\");
}

// ---- Copies of names ----

TEST(Extractname, CopiesNameCharacters) {
    std::string name = "old";
    const char *text = "a_Z9$x";
    EXPECT_EQ(extractname(name, text), text + 4);
    EXPECT_EQ(name, "a_Z9");
}

TEST(Extractname, StopsAtTheEndAndAtBytesFrom128Up) {
    std::string name;
    const char *whole = "9ab";
    EXPECT_EQ(extractname(name, whole), whole + 3);
    EXPECT_EQ(name, "9ab");
    const char *foreign = "ab\xE9"
                          "c";
    EXPECT_EQ(extractname(name, foreign), foreign + 2);
    EXPECT_EQ(name, "ab");
}

TEST(Extractname, GivesAnEmptyNameAndTheSourceWithoutANameCharacter) {
    std::string name = "old";
    const char *text = ".abc";
    EXPECT_EQ(extractname(name, text), text);
    EXPECT_EQ(name, "");
}

TEST(Extractname, NoSourceReturnsNone) {
    std::string name;
    EXPECT_EQ(extractname(name, nullptr), nullptr);
}

TEST(CopyCname, CopiesNameCharacters) {
    std::string name = "old";
    const char *text = "a_Z9.x";
    EXPECT_EQ(copyCname(name, text), text + 4);
    EXPECT_EQ(name, "a_Z9");
}

TEST(CopyCname, GivesAnEmptyNameAndTheSourceWithoutANameCharacter) {
    std::string name = "old";
    const char *text = "=a";
    EXPECT_EQ(copyCname(name, text), text);
    EXPECT_EQ(name, "");
}

TEST(CopyMacroname, TakesEqualsSignsToo) {
    std::string name = "old";
    const char *text = "=W_1=5-3";
    EXPECT_EQ(copyMacroname(name, text), text + 6);
    EXPECT_EQ(name, "=W_1=5");
}

TEST(CopyMacroname, StopsAtTheFirstOtherCharacter) {
    std::string name = "old";
    const char *text = "$W";
    EXPECT_EQ(copyMacroname(name, text), text);
    EXPECT_EQ(name, "");
}

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

TEST(Extractsizedtoblanc, CopiesVisibleCharactersUpToTheLimit) {
    std::string word;
    const char *text = "a;b, c";
    EXPECT_EQ(extractsizedtoblanc(word, text, 3), text + 3);
    EXPECT_EQ(word, "a;b");
    EXPECT_EQ(extractsizedtoblanc(word, text, 4), text + 4);
    EXPECT_EQ(word, "a;b,");
    EXPECT_EQ(extractsizedtoblanc(word, text, 5), text + 4);
    EXPECT_EQ(word, "a;b,");
}

TEST(Extractsizedtoblanc, EndsAtBytesFrom128Up) {
    std::string word;
    const char *text = "ab\x80"
                       "c";
    EXPECT_EQ(extractsizedtoblanc(word, text, 63), text + 2);
    EXPECT_EQ(word, "ab");
}

TEST(Extractsizedtoblanc, ALimitOf0LeavesTheDestinationAndReturnsItsText) {
    std::string word = "old";
    EXPECT_EQ(extractsizedtoblanc(word, "ABC", 0), word.c_str());
    EXPECT_EQ(word, "old");
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

TEST(CopyLabel, EndsAtAColon) {
    std::string name = "old";
    const char *text = "L.1;$:NOP";
    EXPECT_EQ(copyLabel(name, text), text + 5);
    EXPECT_EQ(name, "L.1;$");
}

TEST(CopyLabel, EndsAtEveryBlankIncludingBytesFrom128Up) {
    for (int code = 1; code < 256; ++code) {
        const std::string text = std::string("ab") + byte(code) + "c:";
        std::string name;
        const bool ends = code < 33 || code > 127 || code == ':';
        EXPECT_EQ(copyLabel(name, text.c_str()), text.c_str() + (ends ? 2 : 4)) << code;
        EXPECT_EQ(name, ends ? "ab" : text.substr(0, 4)) << code;
    }
}

TEST(CopyLabel, EndsAtTheTextsEnd) {
    std::string name;
    const char *text = "ab";
    EXPECT_EQ(copyLabel(name, text), text + 2);
    EXPECT_EQ(name, "ab");
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

TEST(Extractquoted, TakesTheTextBetweenTheFirstTwoQuotes) {
    std::string text = "old";
    const char *source = "x \"a b\" \"c\"";
    EXPECT_EQ(extractquoted(text, source), source + 6);
    EXPECT_EQ(text, "a b");
}

TEST(Extractquoted, WithoutAClosingQuoteTakesTheRest) {
    std::string text;
    const char *source = "x \"ab";
    EXPECT_EQ(extractquoted(text, source), source + 5);
    EXPECT_EQ(text, "ab");
}

TEST(Extractquoted, WithoutAQuoteGivesNothing) {
    std::string text = "old";
    EXPECT_EQ(extractquoted(text, "ab"), nullptr);
    EXPECT_EQ(text, "");
}

TEST(Extractquotedoption, CopiesQuotesInsideAWord) {
    std::string text = "old";
    const char *source = "-x\"a\"b c\" d";
    EXPECT_EQ(extractquotedoption(text, source), source + 8);
    EXPECT_EQ(text, "a\"b c");
}

TEST(Extractquotedoption, EndsAtAQuoteBeforeABlankOrTheEnd) {
    std::string text;
    for (const char *source : {"\"ab\"", "\"ab\" ", "\"ab\"\t\"", "\"ab\"\n", "\"ab\"\x80"}) {
        EXPECT_EQ(extractquotedoption(text, source), source + 3);
        EXPECT_EQ(text, "ab");
    }
}

TEST(Extractquotedoption, WithoutAClosingQuoteTakesTheRest) {
    std::string text;
    const char *source = "\"a\"b";
    EXPECT_EQ(extractquotedoption(text, source), source + 4);
    EXPECT_EQ(text, "a\"b");
}

TEST(Extractquotedoption, WithoutAQuoteGivesNothing) {
    std::string text = "old";
    EXPECT_EQ(extractquotedoption(text, "ab"), nullptr);
    EXPECT_EQ(text, "");
}

TEST(Extract, TakesTheBracketedTextWithItsBrackets) {
    std::string text = "old";
    const char *source = "a)b(c (d) e)";
    EXPECT_EQ(extract(text, source, '(', ')', 80), source + 9);
    EXPECT_EQ(text, "(c (d)");
}

TEST(Extract, TheSameCharacterMayOpenAndClose) {
    std::string text;
    const char *source = "a'bc'd'";
    EXPECT_EQ(extract(text, source, '\'', '\'', 80), source + 5);
    EXPECT_EQ(text, "'bc'");
}

TEST(Extract, LooksAtNoMoreThanTheLimit) {
    std::string text;
    const char *source = "ab(cd)ef";
    EXPECT_EQ(extract(text, source, '(', ')', 5), nullptr);
    EXPECT_EQ(extract(text, source, '(', ')', 6), source + 6);
    EXPECT_EQ(text, "(cd)");
    EXPECT_EQ(extract(text, source, '(', ')', 7), source + 6);
    EXPECT_EQ(text, "(cd)");
    EXPECT_EQ(extract(text, source, '(', ')', 2), nullptr);
    EXPECT_EQ(extract(text, source, '(', ')', 0), nullptr);
}

TEST(Extract, StopsAtControlCharactersButNotAtBlanks) {
    std::string text;
    const char *blank = " ( )";
    EXPECT_EQ(extract(text, blank, '(', ')', 80), blank + 4);
    EXPECT_EQ(text, "( )");
    EXPECT_EQ(extract(text, "(\t)", '(', ')', 80), nullptr);
    EXPECT_EQ(extract(text, "\n()", '(', ')', 80), nullptr);
}

TEST(Extract, GivesNoneWithoutBothBrackets) {
    std::string text;
    EXPECT_EQ(extract(text, "abc)", '(', ')', 80), nullptr);
    EXPECT_EQ(extract(text, ")(abc", '(', ')', 80), nullptr);
    EXPECT_EQ(extract(text, "", '(', ')', 80), nullptr);
}

} // namespace
