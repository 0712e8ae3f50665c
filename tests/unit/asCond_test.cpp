// Conditional assembly: the nesting, the names that tests and definitions enter, and every report.
#include "as/asCond.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "symtab/symtab.h"
#include "tests/unit/support.h"

#include <algorithm>

namespace {

class Conditionals : public ReportTest {
  protected:
    void SetUp() override {
        ReportTest::SetUp();
        putsym("YES", 0, 1, SYM_DEFINED, 0, nullptr, 0);
        set_line_number(1);
    }

    // Carries out a conditional word with the rest of its line.
    static int word(DirectiveToken token, const std::string &rest = "\n") {
        begin_line(rest);
        return DoCond(static_cast<int>(token));
    }
};

TEST_F(Conditionals, BeginOutsideAnyConditional) {
    ifdepth = 3;
    skipping = 2;
    init_as_conditional_handling();
    EXPECT_EQ(ifdepth, 0);
    EXPECT_EQ(skipping, 0);
    EXPECT_EQ(is_true_level(), 1);
    skipping = 1;
    EXPECT_EQ(is_true_level(), 0);
}

TEST_F(Conditionals, EveryWordIsDoneAndNothingElseIs) {
    for (int token = 44; token <= 51; ++token) {
        begin_line("\n");
        EXPECT_EQ(DoCond(token), 1) << token;
    }
    for (const int token : {-1, 0, 10, 43, 52, 58}) {
        begin_line("\n");
        EXPECT_EQ(DoCond(token), 0) << token;
    }
}

TEST_F(Conditionals, TrueBranchIsAssembledAndFalseOneSkipped) {
    word(DIR_IFDEF, " YES\n");
    EXPECT_EQ(ifdepth, 1);
    EXPECT_EQ(skipping, 0);
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    EXPECT_EQ(ifdepth, 0);
    EXPECT_EQ(skipping, 0);
    word(DIR_IFDEF, " NO\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 0);
    word(DIR_ENDIF);
    EXPECT_EQ(ifdepth, 0);
}

TEST_F(Conditionals, NegatedTestIsTheOtherWayRound) {
    word(DIR_IFNDEF, " NO\n");
    EXPECT_EQ(skipping, 0);
    word(DIR_ENDIF);
    word(DIR_IFNDEF, " YES\n");
    EXPECT_EQ(skipping, 1);
}

TEST_F(Conditionals, ExpressionIsTheFirstWord) {
    word(DIR_IF, " 1-1\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    word(DIR_IF, "\t1 -1\n");
    EXPECT_EQ(skipping, 0);
    word(DIR_ENDIF);
    word(DIR_IF, " -1\n");
    EXPECT_EQ(skipping, 0);
}

TEST_F(Conditionals, ExpressionIsTestedIn32Bits) {
    word(DIR_IF, " 1<<32\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    word(DIR_IF, " 1<<31\n");
    EXPECT_EQ(skipping, 0);
}

TEST_F(Conditionals, SkippedRegionOnlyCountsItsDepth) {
    word(DIR_IFDEF, " NO\n");
    word(DIR_IFDEF, " YES\n");
    word(DIR_IFNDEF, " OTHER\n");
    word(DIR_IF, " 1\n");
    EXPECT_EQ(ifdepth, 4);
    EXPECT_EQ(skipping, 1);
    EXPECT_EQ(getsym("OTHER"), nullptr);
    word(DIR_ELSE);
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    word(DIR_ENDIF);
    word(DIR_ENDIF);
    EXPECT_EQ(ifdepth, 1);
    EXPECT_EQ(skipping, 1);
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 0);
}

TEST_F(Conditionals, FurtherBranchIsTakenIfNoneWasBefore) {
    word(DIR_IFDEF, " NO\n");
    word(DIR_ELIF, " NO\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(skipping, 0);
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 1);
}

TEST_F(Conditionals, WordsOutsideAConditionalAreErrors) {
    begin_reports();
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(take_output(), error("#elif with no #if"));
    word(DIR_ELSE);
    EXPECT_EQ(take_output(), error("#else with no #if"));
    word(DIR_ENDIF);
    EXPECT_EQ(take_output(), error("#endif with no #if"));
    EXPECT_EQ(ifdepth, 0);
    EXPECT_EQ(skipping, 0);
}

TEST_F(Conditionals, BranchesBehindElseAreErrors) {
    begin_reports();
    word(DIR_IFDEF, " YES\n");
    word(DIR_ELSE);
    word(DIR_ELSE);
    EXPECT_EQ(take_output(), error("#else after #else"));
    EXPECT_EQ(skipping, 1);
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(take_output(), error("#elif after #else"));
    EXPECT_EQ(skipping, 1);
}

TEST_F(Conditionals, NineteenConditionalsNestAndTheTwentiethStillBalances) {
    begin_reports();
    for (int depth = 1; depth <= 19; ++depth) {
        word(DIR_IFDEF, " YES\n");
    }
    EXPECT_EQ(take_output(), "");
    word(DIR_IFDEF, " NO\n");
    EXPECT_EQ(take_output(), error("#if too deeply nested"));
    EXPECT_EQ(ifdepth, 20);
    EXPECT_EQ(skipping, 0);
    word(DIR_IFNDEF, " YES\n");
    EXPECT_EQ(take_output(), error("#ifndef too deeply nested"));
    word(DIR_IF, " 0\n");
    EXPECT_EQ(take_output(), error("#if too deeply nested"));
    EXPECT_EQ(ifdepth, 22);
    for (int depth = 22; depth > 0; --depth) {
        word(DIR_ENDIF);
    }
    EXPECT_EQ(ifdepth, 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Conditionals, DepthIsCheckedInSkippedRegionsToo) {
    begin_reports();
    word(DIR_IFDEF, " NO\n");
    for (int depth = 2; depth <= 19; ++depth) {
        word(DIR_IFDEF, " NO\n");
    }
    EXPECT_EQ(take_output(), "");
    word(DIR_IFDEF, " NO\n");
    EXPECT_EQ(take_output(), error("#if too deeply nested"));
}

TEST_F(Conditionals, BranchesBelowTheDeepestNestingBeginUntaken) {
    begin_reports();
    for (int depth = 1; depth <= 20; ++depth) {
        word(DIR_IFDEF, " YES\n");
    }
    take_output();
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 0);
    word(DIR_ELSE);
    EXPECT_EQ(take_output(), error("#else after #else"));
    EXPECT_EQ(skipping, 20);
}

TEST_F(Conditionals, TestEntersItsName) {
    set_line_number(7);
    word(DIR_IFDEF, " NO rest\n");
    const Symbol *symbol = getsym("NO");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->flags, SYM_UNDEFINED | SYM_CONDITIONAL);
    EXPECT_EQ(symbol->value, 0);
    EXPECT_EQ(symbol->definition_line, 7);
    EXPECT_EQ(symbol->element_count, -1);
    EXPECT_EQ(getsym("rest"), nullptr);
}

TEST_F(Conditionals, RestOfALineIsCutBehind512Characters) {
    for (const std::size_t size : {510U, 511U, 512U, 600U}) {
        const std::string name(size, static_cast<char>('a' + size % 26));
        word(DIR_IFDEF, " " + name + "\n");
        word(DIR_ENDIF);
        const Symbol *symbol = getsym(name.substr(0, 511));
        ASSERT_NE(symbol, nullptr) << size;
        EXPECT_EQ(symbol->name_length, std::min<std::size_t>(size, 511)) << size;
    }
}

TEST_F(Conditionals, NameThatCannotBeEnteredCountsAsUndefined) {
    begin_reports();
    word(DIR_IFDEF, " W,1\n");
    EXPECT_EQ(take_output(), "");
    word(DIR_ENDIF);
    word(DIR_IFDEF, " W,1\n");
    EXPECT_EQ(take_output(), error("(F1024)"));
    EXPECT_EQ(Errors, 1);
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    word(DIR_IFNDEF, " W,1\n");
    EXPECT_EQ(take_output(), error("(F1024)"));
    EXPECT_EQ(skipping, 0);
}

TEST_F(Conditionals, DefinitionWithoutAValueIsZero) {
    set_line_number(7);
    word(DIR_COND_DEFINE, " X\n");
    const Symbol *symbol = getsym("X");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->flags, SYM_DEFINED | SYM_CONDITIONAL);
    EXPECT_EQ(symbol->value, 0);
    EXPECT_EQ(symbol->definition_line, 7);
}

TEST_F(Conditionals, DefinitionTakesTheSecondWordAsItsValue) {
    word(DIR_COND_DEFINE, " X  2+3 9\n");
    ASSERT_NE(getsym("X"), nullptr);
    EXPECT_EQ(getsym("X")->value, 5);
    ASSERT_NE(getsym("X")->segment, nullptr);
    EXPECT_EQ(getsym("X")->segment->name, "abs");
    word(DIR_COND_DEFINE, " Y ; 7\n");
    EXPECT_EQ(getsym("Y")->value, 0);
}

TEST_F(Conditionals, DefinitionOfATestedNameDefinesIt) {
    word(DIR_IFNDEF, " X\n");
    set_line_number(2);
    word(DIR_COND_DEFINE, " X 4\n");
    EXPECT_EQ(getsym("X")->flags, SYM_DEFINED | SYM_CONDITIONAL);
    EXPECT_EQ(getsym("X")->definition_line, 2);
    EXPECT_EQ(getsym("X")->value, 4);
}

// The flags of a label defined twice say neither defined nor undefined.
TEST_F(Conditionals, DefinitionOfADoublyDefinedLabelMakesItAConstant) {
    putsym("L", 3, 1, SYM_MULTIPLE, kNameKind, nullptr, kNoData);
    ASSERT_EQ(getsym("L")->segment, nullptr);
    word(DIR_COND_DEFINE, " L 4\n");
    EXPECT_EQ(getsym("L")->value, 4);
    ASSERT_NE(getsym("L")->segment, nullptr);
    EXPECT_EQ(getsym("L")->segment->name, "abs");
}

TEST_F(Conditionals, DefinitionOnAnotherLineDrawsAWarningAndKeepsTheValue) {
    begin_reports();
    word(DIR_COND_DEFINE, " X 5\n");
    word(DIR_COND_DEFINE, " X 5\n");
    EXPECT_EQ(take_output(), "");
    set_line_number(3);
    word(DIR_COND_DEFINE, " X 5\n");
    EXPECT_EQ(take_output(), warning("symbol 'X' previously defined at line 1"));
    EXPECT_TRUE(getsym("X")->has(SYM_MULTIPLE));
    word(DIR_COND_DEFINE, " X 6\n");
    EXPECT_EQ(take_output(), warning("symbol 'X' previously defined at line 1") +
                                 error("symbol 'X' redefined at line 3"));
    EXPECT_EQ(getsym("X")->value, 5);
    EXPECT_EQ(getsym("X")->definition_line, 1);
    word(DIR_COND_DEFINE, " X\n");
    EXPECT_EQ(take_output(), warning("symbol 'X' previously defined at line 1"));
}

TEST_F(Conditionals, MacroIsNotDefined) {
    begin_reports();
    word(DIR_COND_DEFINE, " F(a) a\n");
    word(DIR_COND_DEFINE, " G) a\n");
    const std::string text = warning("Macro Expansions is NOT supported, 'define' igored");
    EXPECT_EQ(take_output(), text + text);
    EXPECT_EQ(getsym("F"), nullptr);
    EXPECT_EQ(getsym("G"), nullptr);
}

TEST_F(Conditionals, MessageIsAnErrorWhereLinesAreAssembled) {
    begin_reports();
    word(DIR_ERROR, " oops\n");
    EXPECT_EQ(take_output(), error("Message Directive"));
    word(DIR_IFDEF, " NO\n");
    word(DIR_ERROR, " oops\n");
    word(DIR_COND_DEFINE, " X\n");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(getsym("X"), nullptr);
}

TEST_F(Conditionals, LineThatStartsSkippingIsListedOnceAhead) {
    begin_reports();
    open_output(listfile, "prog.lst");
    O_list = 1;
    listing_on = 1;
    newuse = 0;
    listline = 3;
    listLC = 0x105;
    begin_line("#ifdef NO\n");
    Col_Ptr += 6;
    pending_listLC = 1;
    DoCond(DIR_IFDEF);
    word(DIR_IFDEF, " NO\n");
    word(DIR_ELIF, " NO\n");
    listfile.flush();
    EXPECT_EQ(read_text("prog.lst"), "05" + std::string(18, ' ') + "    3. #ifdef NO\n");
}

TEST_F(Conditionals, BranchNotTakenBehindATakenOneIsNotListedAhead) {
    begin_reports();
    open_output(listfile, "prog.lst");
    O_list = 1;
    listing_on = 1;
    word(DIR_IFDEF, " YES\n");
    word(DIR_ELIF, " YES\n");
    EXPECT_EQ(skipping, 1);
    word(DIR_ENDIF);
    word(DIR_IFDEF, " YES\n");
    word(DIR_ELSE);
    EXPECT_EQ(skipping, 1);
    listfile.flush();
    EXPECT_EQ(read_text("prog.lst"), "");
}

} // namespace
