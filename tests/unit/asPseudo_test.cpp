// Directives: their tables, the recognisers, the way from a word to its handler, and ORG and END.
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "tests/unit/support.h"

#include <utility>
#include <vector>

namespace {

using Words = std::vector<std::pair<std::string, std::uint32_t>>;

Words rows(const DirectiveEntry *table) {
    Words words;
    for (; *table->name != '\0'; ++table) {
        EXPECT_EQ(table->reserved, 0) << table->name;
        words.emplace_back(table->name, table->token);
    }
    EXPECT_EQ(table->token, 0U);
    return words;
}

class Directives : public ReportTest {
  protected:
    // The directive at the start of a text, as the dispatcher sees it.
    static int dispatch(const std::string &text) {
        begin_line(text);
        return PseudoOp();
    }

    // Column of the scan position.
    static long column() { return Col_Ptr - Line.begin(); }

    static int org(const std::string &operand, const std::string &name = "") {
        begin_line(name + " ORG " + operand + "\n");
        label = IsLabel();
        Col_Ptr += 5;
        return DoOrg();
    }

    static int end(const std::string &operand) {
        begin_line(" END " + operand + "\n");
        Col_Ptr += 5;
        return DoEnd();
    }

    // The number of a conditional word and the column where the scan went on.
    static std::pair<std::uint32_t, long> conditional(const std::string &text) {
        const std::string line = with_room(text);
        const char *position = line.c_str();
        const auto token = static_cast<std::uint32_t>(is_conditional_macro_directive(position));
        return {token, position - line.c_str()};
    }
};

using Found = std::pair<std::uint32_t, long>;

// ---- Tables
// -----------------------------------------------------------------------------------------

// The number of the directive at the start of a text.
std::uint32_t token_of(const std::string &text) { return GetPseudoToken(with_room(text).c_str()); }

TEST_F(Directives, TargetHasSixDirectives) {
    EXPECT_EQ(rows(pseudo_zirpa),
              (Words{{"org", 7}, {"equ", 8}, {"rmb", 16}, {"fcb", 11}, {"fcs", 20}, {"end", 10}}));
}

// Quirk (two-hashes): the first word holds its "#", so the test of an expression is written with
// two.
TEST_F(Directives, PureConditionalWordsBeginWithAHashedIf) {
    EXPECT_EQ(rows(macro_pure), (Words{{"#if", 44},
                                       {"else", 45},
                                       {"endif", 46},
                                       {"elif", 47},
                                       {"define", 49},
                                       {"error", 51},
                                       {"ifdef", 48},
                                       {"ifndef", 50}}));
}

TEST_F(Directives, NativeConditionalWordsAreDotted) {
    EXPECT_EQ(rows(macro_native), (Words{{".if", 44},
                                         {".else", 45},
                                         {".endif", 46},
                                         {".elseif", 47},
                                         {".ifdef", 48},
                                         {".ifndef", 50},
                                         {".error", 51}}));
}

// ---- Recognisers
// ------------------------------------------------------------------------------------

TEST_F(Directives, WordsMatchInAnyCaseUpToABlank) {
    EXPECT_EQ(token_of("org"), 7U);
    EXPECT_EQ(token_of("OrG 5"), 7U);
    EXPECT_EQ(token_of("EQU\t5"), 8U);
    EXPECT_EQ(token_of("Rmb\n"), 16U);
    EXPECT_EQ(token_of("fcb\x80"), 11U);
    EXPECT_EQ(token_of("FCS\r"), 20U);
    EXPECT_EQ(token_of("eNd"), 10U);
}

TEST_F(Directives, OtherWordsAreNoDirectives) {
    for (const char *word : {"", "o", " org", "or", "orgs", "org,", "org;x", "org:", "fdb", ".byte",
                             "db", "set", "include", "#if", "else"}) {
        EXPECT_EQ(token_of(word), 0U) << word;
    }
}

TEST_F(Directives, CaseOfSymbolsDoesNotConcernDirectives) {
    O_symbol_case_sensitive = 0;
    EXPECT_EQ(token_of("OrG 5"), 7U);
    O_symbol_case_sensitive = 1;
    EXPECT_EQ(token_of("OrG 5"), 7U);
}

TEST_F(Directives, EquIsRecognisedWithTheBlanksBehindIt) {
    begin_line("EqU \t 5\n");
    EXPECT_EQ(isPseudoEqu(), 1);
    EXPECT_EQ(column(), 6);
}

TEST_F(Directives, OtherWordIsTakenWhenEquIsLookedFor) {
    begin_line("org  5\n");
    EXPECT_EQ(isPseudoEqu(), 0);
    EXPECT_EQ(column(), 5);
    begin_line("nop\n");
    EXPECT_EQ(isPseudoEqu(), 0);
}

TEST_F(Directives, ConditionalWordIsTakenUpToItsEnd) {
    EXPECT_EQ(conditional("#ifdef X"), (Found{48, 6}));
    EXPECT_EQ(conditional("#ifndef\tX"), (Found{50, 7}));
    EXPECT_EQ(conditional("#elif X"), (Found{47, 5}));
    EXPECT_EQ(conditional("#else"), (Found{45, 5}));
    EXPECT_EQ(conditional("#endif\n"), (Found{46, 6}));
    EXPECT_EQ(conditional("#define X 1"), (Found{49, 7}));
    EXPECT_EQ(conditional("#error x"), (Found{51, 6}));
    EXPECT_EQ(conditional("# \t ELSE x"), (Found{45, 8}));
    EXPECT_EQ(conditional("#EndIf\x80"), (Found{46, 6}));
}

TEST_F(Directives, TestOfAnExpressionNeedsTwoHashes) {
    EXPECT_EQ(conditional("##if 1"), (Found{44, 4}));
    EXPECT_EQ(conditional("# #IF 1"), (Found{44, 5}));
    EXPECT_EQ(conditional("#  \t#if"), (Found{44, 7}));
    EXPECT_EQ(conditional("#if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional("###if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional("# # if 1"), (Found{0, 0}));
}

TEST_F(Directives, WhatIsNoConditionalWordIsNotMovedPast) {
    for (const char *text : {"", "#", "# ", "else", "#else;x", "#elses", "#elseif X", "#els", "nop",
                             ".if 1", "..if 1", "##else", "#undef X"}) {
        EXPECT_EQ(conditional(text), (Found{0, 0})) << text;
    }
}

TEST_F(Directives, NothingIsConditionalWithoutThePureStyle) {
    O_directive_style_pure = 0;
    for (const char *text : {"##if 1", "#else", "#endif", "#ifdef X", "#.if 1", ".if 1"}) {
        EXPECT_EQ(conditional(text), (Found{0, 0})) << text;
    }
}

TEST_F(Directives, NativeStyleHasDottedWords) {
    O_directive_style_native = 1;
    EXPECT_EQ(conditional(".if 1"), (Found{44, 3}));
    EXPECT_EQ(conditional(".ELSE\n"), (Found{45, 5}));
    EXPECT_EQ(conditional(".endif"), (Found{46, 6}));
    EXPECT_EQ(conditional(".elseif X"), (Found{47, 7}));
    EXPECT_EQ(conditional(".ifdef X"), (Found{48, 6}));
    EXPECT_EQ(conditional(".ifndef X"), (Found{50, 7}));
    EXPECT_EQ(conditional(".error"), (Found{51, 6}));
    for (const char *text : {".define X", ".elif X", ". if 1", "..if 1", "if 1", ".if,"}) {
        EXPECT_EQ(conditional(text), (Found{0, 0})) << text;
    }
    EXPECT_EQ(conditional("#ifdef X"), (Found{48, 6}));
}

// A hash that begins no pure word is skipped for the styles that follow.
TEST_F(Directives, HashIsSkippedForTheNativeStyleUnderThePureStyleOnly) {
    O_directive_style_native = 1;
    EXPECT_EQ(conditional("# .if 1"), (Found{44, 5}));
    O_directive_style_pure = 0;
    EXPECT_EQ(conditional("# .if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional(".if 1"), (Found{44, 3}));
}

// The dot is taken off ahead of the search for words that hold one themselves.
TEST_F(Directives, GnuStyleNeedsASecondDot) {
    O_directive_style_gnu = 1;
    EXPECT_EQ(conditional("..if 1"), (Found{44, 4}));
    EXPECT_EQ(conditional(". \t.ENDIF"), (Found{46, 9}));
    EXPECT_EQ(conditional("..elseif X"), (Found{47, 8}));
    EXPECT_EQ(conditional(".if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional("...if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional("if 1"), (Found{0, 0}));
    EXPECT_EQ(conditional("#..if 1"), (Found{44, 5}));
}

TEST_F(Directives, StylesAreIndependent) {
    O_directive_style_pure = 0;
    O_directive_style_gnu = 1;
    EXPECT_EQ(conditional("..if 1"), (Found{44, 4}));
    EXPECT_EQ(conditional("#..if 1"), (Found{0, 0}));
    O_directive_style_native = 1;
    EXPECT_EQ(conditional(".if 1"), (Found{44, 3}));
    EXPECT_EQ(conditional("..if 1"), (Found{44, 4}));
}

// ---- Dispatch
// ---------------------------------------------------------------------------------------

TEST_F(Directives, EveryWordHasItsResult) {
    EXPECT_EQ(dispatch("org 5\n"), 2);
    EXPECT_EQ(dispatch("rmb 5\n"), -1);
    EXPECT_EQ(dispatch("fcb 5\n"), 1);
    EXPECT_EQ(dispatch("fcs \"A\"\n"), 1);
    EXPECT_EQ(LC, 12U);
    EXPECT_EQ(dispatch("end\n"), 1);
    EXPECT_EQ(endflag, 1);
    EXPECT_EQ(dispatch("equ 5\n"), -1);
    enter_final_pass();
    EXPECT_EQ(dispatch("fcs \"A\"\n"), 2);
}

TEST_F(Directives, DirectiveBeginsAtItsOperand) {
    EXPECT_EQ(dispatch("ORG\t \v 5\n"), 2);
    EXPECT_EQ(LC, 5U);
}

TEST_F(Directives, WhatIsNoDirectiveIsLeftToTheInstructions) {
    for (const char *text : {"nop\n", "fdb 1\n", "org,5\n", "include x\n", "", "\n"}) {
        EXPECT_EQ(dispatch(text), 0) << text;
        EXPECT_EQ(column(), 0) << text;
        EXPECT_EQ(Line_Done, 0) << text;
    }
}

TEST_F(Directives, LongWordIsNoDirectiveAndIsLeftWhole) {
    for (const std::size_t size : {62U, 63U, 64U, 200U}) {
        EXPECT_EQ(dispatch(std::string(size, 'o') + " 5\n"), 0);
        EXPECT_EQ(column(), 0);
    }
}

// ---- ORG
// --------------------------------------------------------------------------------------------

TEST_F(Directives, OriginMovesTheLocationCounterAndForgetsTheLabel) {
    SetLastLabel("DATA", 1);
    EXPECT_EQ(org("$20+1"), 2);
    EXPECT_EQ(LC, 0x21U);
    EXPECT_EQ(listLC, 0x21U);
    EXPECT_EQ(last_seen_label, "");
    EXPECT_EQ(IsEqu, 0);
}

TEST_F(Directives, FirstOriginOfTheRunIsTheDefaultEntry) {
    EXPECT_EQ(default_entry_seen, 0);
    org("$20");
    org("$30");
    begin_pass();
    org("$40");
    EXPECT_EQ(default_entry_seen, 1);
    EXPECT_EQ(defaultentryLC, 0x20U);
    pseudo_new_run();
    EXPECT_EQ(default_entry_seen, 0);
}

TEST_F(Directives, LabelOfAnOriginTakesTheNewAddress) {
    LC = 1;
    EXPECT_EQ(org("$20", "HERE"), 2);
    ASSERT_NE(getsym("HERE"), nullptr);
    EXPECT_EQ(getsym("HERE")->value, 0x20);
    EXPECT_EQ(last_seen_label, "HERE");
    EXPECT_EQ(last_seen_label_value, 0x20U);
    EXPECT_EQ(IsEqu, 1);
}

TEST_F(Directives, OriginOfAForwardReferenceIsRefused) {
    SetLastLabel("DATA", 1);
    LC = 3;
    EXPECT_EQ(org("later", "HERE"), -1);
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(default_entry_seen, 0);
    EXPECT_EQ(IsEqu, 0);
    EXPECT_EQ(last_seen_label, "");
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(Directives, OriginOfANameDefinedFurtherDownIsAForwardReference) {
    set_line_number(9);
    defsym("later", 5, 1);
    begin_reports();
    EXPECT_EQ(org("later"), -1);
    EXPECT_EQ(take_output(), error("Forward reference"));
    EXPECT_EQ(LC, 0U);
}

TEST_F(Directives, FaultyOriginLeavesTheLocationCounter) {
    LC = 3;
    EXPECT_EQ(org("1+"), -1);
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(default_entry_seen, 0);
}

// ---- END
// --------------------------------------------------------------------------------------------

TEST_F(Directives, EndBeforeTheFinalPassReadsNoOperand) {
    putsym("main", 0x20, 1, SYM_DEFINED, 0, nullptr, 0);
    EXPECT_EQ(end("main"), 1);
    EXPECT_EQ(endflag, 1);
    EXPECT_EQ(entry_is_defined, 0);
    endflag = 0;
    EXPECT_EQ(end("+"), 1);
    EXPECT_EQ(endflag, 1);
}

TEST_F(Directives, EndNamesTheEntry) {
    putsym("main", -2, 1, SYM_DEFINED, 0, nullptr, 0);
    begin_reports();
    EXPECT_EQ(end("main+7"), 1);
    EXPECT_EQ(endflag, 1);
    EXPECT_EQ(entry_is_defined, 1);
    EXPECT_EQ(entryLC, -2);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Directives, EndWithoutAnOperandNamesNone) {
    begin_reports();
    EXPECT_EQ(end(""), 1);
    EXPECT_EQ(endflag, 1);
    EXPECT_EQ(entry_is_defined, 0);
    EXPECT_EQ(take_output(), "");
}

// Quirk (end-operand): an operand that is not a name lets the final pass go on.
TEST_F(Directives, EndWithAnOperandThatIsNoNameDoesNotEndTheFinalPass) {
    begin_reports();
    EXPECT_EQ(end("+main"), 1);
    EXPECT_EQ(endflag, 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Directives, SecondEndOfAnotherValueIsIgnored) {
    putsym("main", 0x20, 1, SYM_DEFINED, 0, nullptr, 0);
    putsym("same", 0x20, 1, SYM_DEFINED, 0, nullptr, 0);
    putsym("other", 0x30, 1, SYM_DEFINED, 0, nullptr, 0);
    begin_reports();
    end("main");
    endflag = 0;
    EXPECT_EQ(end("same"), 1);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(end("other"), 1);
    EXPECT_EQ(take_output(), warning("Program entry defined, END <address> ignored"));
    EXPECT_EQ(entryLC, 0x20);
    EXPECT_EQ(endflag, 1);
}

TEST_F(Directives, EndOfAnUndefinedNameDrawsAWarning) {
    lookup("later");
    begin_reports();
    EXPECT_EQ(end("later"), 1);
    EXPECT_EQ(take_output(), warning("start symbol 'later' is defined"));
    EXPECT_EQ(endflag, 1);
    endflag = 0;
    EXPECT_EQ(end("5nosuch_.x"), 1);
    EXPECT_EQ(take_output(), warning("start symbol '5nosuch_' is defined"));
    EXPECT_EQ(endflag, 1);
    EXPECT_EQ(entry_is_defined, 0);
    EXPECT_EQ(getsym("5nosuch_"), nullptr);
}

TEST_F(Directives, EndShowsAnUndefinedNameAsItIsWritten) {
    O_symbol_case_sensitive = 0;
    lookup("Later");
    begin_reports();
    end("Later");
    EXPECT_EQ(take_output(), warning("start symbol 'Later' is defined"));
    O_symbol_case_sensitive = 1;
}

TEST_F(Directives, EntryLastsForTheRun) {
    putsym("main", 0x20, 1, SYM_DEFINED, 0, nullptr, 0);
    begin_reports();
    end("main");
    begin_pass();
    EXPECT_EQ(entry_is_defined, 1);
    pseudo_new_run();
    EXPECT_EQ(entry_is_defined, 0);
}

} // namespace
