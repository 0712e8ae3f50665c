// The members of the text scanning family that the program does not call.
#include "util/text_unused.h"

#include <gtest/gtest.h>

#include <string>

namespace {

char byte(int code) { return static_cast<char>(static_cast<unsigned char>(code)); }

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

TEST(SkipNameDelimiter, GivesNullIfTheTextEndsFirst) {
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

TEST(SkipFNameDelimiter, GivesNullIfTheTextEndsFirst) {
    EXPECT_EQ(skipFNameDelimiter(" ,;"), nullptr);
    EXPECT_EQ(skipFNameDelimiter(""), nullptr);
}

TEST(LineContinued, NeedsABackslashAndALineFeed) {
    EXPECT_TRUE(line_continued("\\\n"));
    EXPECT_TRUE(line_continued("abc\\\n"));
    EXPECT_FALSE(line_continued("abc\\"));
    EXPECT_FALSE(line_continued("abc\n"));
    EXPECT_FALSE(line_continued("abc+\n"));
    EXPECT_FALSE(line_continued("abc\\\r\n"));
    EXPECT_FALSE(line_continued("a\\\nb"));
}

TEST(LineContinued, LooksAtNothingAheadOfTheText) { EXPECT_FALSE(line_continued(&"\\\n"[1])); }

TEST(LineContinued, NeedsTwoCharacters) {
    EXPECT_FALSE(line_continued("\n"));
    EXPECT_FALSE(line_continued("\\"));
    EXPECT_FALSE(line_continued(""));
}

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

TEST(Nlstrcmp, ACarriageReturnAfterTheDifferingCharacterMatchesALineFeedDoesNot) {
    EXPECT_TRUE(nlstrcmp("ABC\r", "ABD"));
    EXPECT_FALSE(nlstrcmp("ABC\n", "ABD"));
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

TEST(Clstrcpy, ANullSourceRemovesABackslashThatIsThere) {
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

TEST(Divstrcpy, ANullSourceRemovesAPlusThatIsThere) {
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

TEST(Clstrcat, ANullSourceRemovesABackslashFromTheDestinationsEnd) {
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

TEST(Divstrcat, ANullSourceRemovesAPlusFromTheDestinationsEnd) {
    std::string with = "ab+";
    divstrcat(with, nullptr);
    EXPECT_EQ(with, "ab");
    std::string without = "ab\\";
    divstrcat(without, nullptr);
    EXPECT_EQ(without, "ab\\");
}

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

TEST(Extractname, ANullSourceReturnsNull) {
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

TEST(Extract, GivesNullWithoutBothBrackets) {
    std::string text;
    EXPECT_EQ(extract(text, "abc)", '(', ')', 80), nullptr);
    EXPECT_EQ(extract(text, ")(abc", '(', ')', 80), nullptr);
    EXPECT_EQ(extract(text, "", '(', ')', 80), nullptr);
}

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

TEST(Skipnonblanc, StopsAtTheTerminatorAndGivesNullForNull) {
    const char *text = "abc";
    EXPECT_EQ(skipnonblanc(text), text + 3);
    EXPECT_EQ(skipnonblanc(nullptr), nullptr);
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

} // namespace
