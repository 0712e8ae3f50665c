// The companion program's parts that need no run: distances of words, columns, formats.
#include "zirpa/cExpression.h"
#include "zirpa/diagnostic.h"
#include "zirpa/formats.h"
#include "zirpa/heard.h"
#include "zirpa/nameTable.h"
#include "zirpa/phrases.h"
#include "zirpa/suggest.h"

#include <gtest/gtest.h>

namespace {

TEST(Suggestions, DistanceCountsChangedAddedMissingAndSwappedLetters) {
    EXPECT_EQ(distance("LDA", "LDA"), 0U);
    EXPECT_EQ(distance("lda", "LDA"), 0U);
    EXPECT_EQ(distance("LDXA", "LDX"), 1U);
    EXPECT_EQ(distance("LDB", "LDA"), 1U);
    EXPECT_EQ(distance("LAD", "LDA"), 1U);
    EXPECT_EQ(distance("", "LDA"), 3U);
    EXPECT_EQ(distance("kitten", "sitting"), 3U);
}

TEST(Suggestions, WordsThatBeginAlikeComeFirst) {
    EXPECT_EQ(nearest("LDXA", {"LDA", "LDX"}), (std::vector<std::string>{"LDX", "LDA"}));
    EXPECT_EQ(nearest("dly", {"aly", "day"}), (std::vector<std::string>{"day", "aly"}));
}

TEST(Suggestions, WordsFarAwayAreNotMeant) {
    EXPECT_TRUE(nearest("FROB", {"LDA", "END"}).empty());
    EXPECT_TRUE(nearest("X", {"Y"}).empty());
}

TEST(Suggestions, ANameInTheOtherCaseIsMeant) {
    EXPECT_EQ(nearest("Start", {"start", "stop"}), std::vector<std::string>{"start"});
}

TEST(Suggestions, OfEquallyNearNamesTheFirstInOrderAreMeant) {
    NameTable<int> names;
    for (const char *name : {"row7", "row3", "row9", "row1", "row8", "row2", "row6"}) {
        entry_of(names, name).second = name[3] - '0';
    }
    EXPECT_EQ(nearest_names("rowx", names, [](int) { return true; }),
              (std::vector<std::string>{"row1", "row2"}));
    EXPECT_EQ(nearest_names("rowx", names, [](int value) { return value > 6; }),
              (std::vector<std::string>{"row7", "row8"}));
}

TEST(NameTables, ANameHasOneEntry) {
    NameTable<int> names;
    entry_of(names, "one").second = 1;
    EXPECT_EQ(entry_of(names, "one").second, 1);
    EXPECT_EQ(entry_of(names, "two").second, 0);
    EXPECT_EQ(names.size(), 2U);
}

TEST(Suggestions, AreAskedAsAQuestion) {
    EXPECT_EQ(did_you_mean({}), "");
    EXPECT_EQ(did_you_mean({"A"}), "did you mean A?");
    EXPECT_EQ(did_you_mean({"A", "B"}), "did you mean A or B?");
}

TEST(Columns, CountCharactersAsEditorsDo) {
    // A tab is one character, and so is one of two bytes.
    EXPECT_EQ(characters_of({1, 2, 4, "\tLDA"}).begin, 2);
    EXPECT_EQ(characters_of({1, 2, 4, "\tLDA"}).end, 5);
    EXPECT_EQ(characters_of({1, 3, 4, "\xC3\xA4-x"}).begin, 2);
    EXPECT_EQ(characters_of({1, 3, 4, "\xC3\xA4-x"}).end, 4);
    // A byte that is no UTF-8 is a character of its own.
    EXPECT_EQ(characters_of({1, 3, 3, "\xE4\xE4x"}).begin, 3);
    // Something is missing after the last character.
    EXPECT_EQ(characters_of({1, 4, 4, "abc"}).begin, 4);
    EXPECT_EQ(characters_of({1, 4, 4, "abc"}).end, 5);
    EXPECT_EQ(characters_of({1, 0, 0, "abc"}).begin, 0);
}

Diagnostic example(std::string text, int first, int last) {
    return {Severity::kError, "some-id", "p.szirpa", {7, first, last, std::move(text)},
            "wrong",          "do"};
}

TEST(TextFormat, CaretsStandBelowWhatIsMeant) {
    EXPECT_EQ(text_of({example("\tLDXA #5", 2, 5)}, false), "p.szirpa:7:2: error: wrong [some-id]\n"
                                                            "    7 | \tLDXA #5\n"
                                                            "      | \t^~~~ do\n");
}

TEST(TextFormat, WideCharactersHaveTwoCarets) {
    EXPECT_EQ(text_of({example("\xE6\xBC\xA2z", 4, 4)}, false),
              "p.szirpa:7:2: error: wrong [some-id]\n"
              "    7 | \xE6\xBC\xA2z\n"
              "      |   ^ do\n");
}

TEST(TextFormat, WhatATerminalWouldObeyIsNotShown) {
    EXPECT_EQ(text_of({example("\x1b[2Jx", 5, 5)}, false), "p.szirpa:7:5: error: wrong [some-id]\n"
                                                           "    7 | ?[2Jx\n"
                                                           "      |     ^ do\n");
}

TEST(TextFormat, ADiagnosticWithoutALineHasNoSource) {
    EXPECT_EQ(text_of({{Severity::kWarning, "id", "p", {}, "why"}}, false),
              "p: warning: why [id]\n");
}

TEST(TextFormat, TheSummaryCounts) {
    EXPECT_EQ(summary_of(0, 0), "");
    EXPECT_EQ(summary_of(1, 0), "1 error\n");
    EXPECT_EQ(summary_of(2, 1), "2 errors, 1 warning\n");
}

// ---- Texts of lines ----

door::Line line_of(int number, std::string_view text) {
    return {number, door::LineKind::kComment, text, 0, 0, {}, false, false, {}, {}, {}};
}

TEST(LineTexts, ALineThatIsNotToldHasTheTextOfTheNextOne) {
    LineTexts lines;
    lines.take(line_of(1, "; one"));
    lines.take(line_of(3, "; three"));
    EXPECT_EQ(lines.of(1), "; one");
    EXPECT_EQ(lines.of(2), "; three");
    EXPECT_EQ(lines.of(3), "; three");
    EXPECT_EQ(lines.of(4), "");
    EXPECT_EQ(lines.of(0), "");
}

TEST(LineTexts, PlacesWithoutATextGetOne) {
    LineTexts lines;
    lines.take(line_of(1, "; one"));
    lines.take(line_of(2, "; two"));
    std::vector<Diagnostic> diagnostics(1);
    diagnostics[0].place = without_text({2, 1, 1});
    diagnostics[0].notes = {{without_text({1, 1, 1}), ""}, {{1, 1, 1, "own"}, ""}};
    add_texts(diagnostics, lines);
    EXPECT_EQ(diagnostics[0].place.text, "; two");
    EXPECT_EQ(diagnostics[0].notes[0].place.text, "; one");
    EXPECT_EQ(diagnostics[0].notes[1].place.text, "own");
}

std::optional<CReading> read_without_names(std::string_view text) {
    return read_as_c(text, [](std::size_t) { return std::nullopt; });
}

TEST(CReading, ACharacterStandsBetweenQuotes) {
    const std::optional<CReading> reading = read_without_names("'A'+1");
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->value, 66);
    EXPECT_FALSE(read_without_names("'A"));
    EXPECT_FALSE(read_without_names("'AB'"));
}

TEST(CReading, ParenthesesStandWhereOperatorsAreJoined) {
    const auto written = [](std::string_view text) {
        return read_without_names(text).value_or(CReading{}).parenthesised;
    };
    EXPECT_EQ(written("1+2*3-4"), "(1+(2*3))-4");
    EXPECT_EQ(written("((1+2))*(3)"), "(1+2)*(3)");
    EXPECT_EQ(written("(1+2)"), "1+2");
    EXPECT_EQ(written("-(1|2)&~-3"), "(-(1|2))&(~(-3))");
}

TEST(CReading, WhatCCannotReadHasNoValue) {
    for (const char *text : {"", "1+", "(1", "1 2", "$", "name", "1/0", "1<<64", "1@2"}) {
        EXPECT_FALSE(read_without_names(text)) << text;
    }
}

TEST(Wording, ValuesAreShownInBothBases) {
    EXPECT_EQ(in_both_bases(300), "300 ($12C)");
    EXPECT_EQ(in_both_bases(-140), "-140 (-$8C)");
    EXPECT_EQ(in_both_bases(INT64_MIN), "-9223372036854775808 (-$8000000000000000)");
}

} // namespace
