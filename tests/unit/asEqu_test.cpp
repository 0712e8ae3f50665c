// EQU: constants, their redefinable form, and the checks of the final pass.
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "tests/unit/support.h"

namespace {

class Equate : public ReportTest {
  protected:
    // EQU with a label, or without one if the name is empty.
    static int equ(const std::string &name, const std::string &operand, int set) {
        begin_line(name + " EQU " + operand + "\n");
        label = IsLabel();
        Col_Ptr += 5;
        return DoEqu(set);
    }
};

TEST_F(Equate, EquNeedsALabel) {
    begin_reports();
    EXPECT_EQ(equ("", "5", 0), -1);
    EXPECT_EQ(take_output(), error("No label for \"equ\""));
    EXPECT_EQ(equ("", "5", 1), -1);
    EXPECT_EQ(take_output(), error("No label for \"equ\""));
}

TEST_F(Equate, EquDefinesAnAbsoluteConstant) {
    Pass = 0;
    set_line_number(7);
    EXPECT_EQ(equ("X", "$12345", 0), 2);
    const Symbol *symbol = getsym("X");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->value, 0x12345);
    EXPECT_EQ(symbol->flags, SYM_DEFINED | SYM_ABSOLUTE);
    EXPECT_EQ(symbol->definition_line, 7);
    EXPECT_EQ(symbol->element_count, -1);
    ASSERT_NE(symbol->segment, nullptr);
    EXPECT_EQ(symbol->segment->name, "abs");
}

TEST_F(Equate, EquListsTheLow16BitsBehindPassZero) {
    Pass = 0;
    equ("X", "$12345", 0);
    EXPECT_EQ(code_i, 0U);
    Pass = 1;
    begin_line("");
    EXPECT_EQ(equ("X", "$12345", 0), 2);
    ASSERT_EQ(code_i, 2U);
    EXPECT_EQ(Code[0], 0x23);
    EXPECT_EQ(Code[1], 0x45);
    EXPECT_EQ(pending_listLC, 0);
    EXPECT_EQ(IsEqu, 1);
    EXPECT_EQ(IsEquDirective, 1);
}

// Every EQU of pass 0 bears the mark from pass 1 on; real duplicates differ in their line.
TEST_F(Equate, EquMetAgainIsMarkedAndKeepsItsValueBeforeTheFinalPass) {
    Pass = 0;
    set_line_number(3);
    equ("X", "5", 0);
    Pass = 1;
    set_line_number(4);
    EXPECT_EQ(equ("X", "6", 0), 2);
    EXPECT_EQ(getsym("X")->value, 5);
    EXPECT_TRUE(getsym("X")->has(SYM_MULTIPLE));
    EXPECT_EQ(getsym("X")->definition_line, 3);
}

TEST_F(Equate, EquOfAPlaceholderDefinesIt) {
    set_line_number(3);
    lookup("X");
    set_line_number(9);
    EXPECT_EQ(equ("X", "5", 0), 2);
    EXPECT_EQ(getsym("X")->flags, SYM_DEFINED | SYM_ABSOLUTE);
    EXPECT_EQ(getsym("X")->value, 5);
    EXPECT_EQ(getsym("X")->definition_line, 9);
}

TEST_F(Equate, RedefinableSymbolIsCreatedAndSetAgainAndAgain) {
    EXPECT_EQ(equ("N", "5", 1), 2);
    ASSERT_NE(getsym("N"), nullptr);
    EXPECT_EQ(getsym("N")->value, 5);
    EXPECT_TRUE(getsym("N")->has(SYM_REDEFINABLE));
    ASSERT_NE(getsym("N")->segment, nullptr);
    EXPECT_EQ(getsym("N")->segment->name, "abs");
    EXPECT_EQ(equ("N", "N+1", 1), 2);
    EXPECT_EQ(getsym("N")->value, 6);
    EXPECT_FALSE(getsym("N")->has(SYM_MULTIPLE));
    EXPECT_EQ(code_i, 2U);
    EXPECT_EQ(Code[1], 6);
    EXPECT_EQ(IsEqu, 1);
    EXPECT_EQ(IsEquDirective, 1);
}

TEST_F(Equate, RedefinableSymbolIsCreatedInPassZeroWithItsListedBytes) {
    Pass = 0;
    EXPECT_EQ(equ("X", "5", 1), 2);
    EXPECT_EQ(getsym("X")->value, 5);
    EXPECT_TRUE(getsym("X")->has(SYM_REDEFINABLE));
    EXPECT_EQ(code_i, 2U);
}

TEST_F(Equate, PlaceholderBecomesRedefinable) {
    lookup("X");
    EXPECT_EQ(equ("X", "5", 1), 2);
    EXPECT_EQ(getsym("X")->flags, SYM_DEFINED | SYM_ABSOLUTE | SYM_REDEFINABLE);
    EXPECT_EQ(getsym("X")->value, 5);
}

TEST_F(Equate, EquOfARedefinableSymbolIsAnotherDefinition) {
    equ("X", "5", 1);
    EXPECT_EQ(equ("X", "6", 0), 2);
    EXPECT_TRUE(getsym("X")->has(SYM_MULTIPLE));
    EXPECT_EQ(getsym("X")->value, 5);
}

TEST_F(Equate, RedefinableFormOfAConstantIsAnotherDefinition) {
    equ("X", "5", 0);
    EXPECT_EQ(equ("X", "6", 1), 2);
    EXPECT_TRUE(getsym("X")->has(SYM_MULTIPLE));
    EXPECT_EQ(getsym("X")->value, 5);
}

TEST_F(Equate, RedefinableSymbolChangesInTheFinalPassWithoutAReport) {
    set_line_number(1);
    equ("X", "5", 1);
    set_line_number(2);
    equ("X", "6", 1);
    begin_reports();
    EXPECT_EQ(equ("X", "5", 1), 2);
    EXPECT_EQ(getsym("X")->value, 5);
    set_line_number(2);
    EXPECT_EQ(equ("X", "6", 1), 2);
    EXPECT_EQ(getsym("X")->value, 6);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Equate, EquOnAnotherLineIsReportedInTheFinalPass) {
    Pass = 0;
    set_line_number(1);
    equ("X", "5", 0);
    Pass = 1;
    equ("X", "5", 0);
    set_line_number(3);
    equ("X", "6", 0);
    begin_reports();
    EXPECT_EQ(equ("X", "5", 0), 2);
    EXPECT_EQ(take_output(), "");
    set_line_number(3);
    EXPECT_EQ(equ("X", "6", 0), 2);
    EXPECT_EQ(take_output(), error("symbol 'X' previously defined at line 1") +
                                 error("symbol 'X' redefined at line 3"));
    EXPECT_EQ(getsym("X")->value, 6);
}

TEST_F(Equate, EquOfTheSameValueOnAnotherLineIsOneError) {
    Pass = 0;
    set_line_number(1);
    equ("X", "5", 0);
    Pass = 1;
    equ("X", "5", 0);
    begin_reports();
    set_line_number(3);
    EXPECT_EQ(equ("X", "2+3", 0), 2);
    EXPECT_EQ(take_output(), error("symbol 'X' previously defined at line 1"));
}

TEST_F(Equate, EquOfASymbolUsedBeforeDrawsAWarning) {
    set_line_number(2);
    refsym("X");
    set_line_number(5);
    equ("X", "5", 0);
    begin_reports();
    set_line_number(5);
    EXPECT_EQ(equ("X", "5", 0), 2);
    EXPECT_EQ(take_output(), warning("symbol 'X' is forward referenced from line 2"));
}

} // namespace
