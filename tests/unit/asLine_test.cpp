// The line assembler: its small functions, the fields of a line, and the label that data belongs
// to.
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asLine.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "tests/unit/support.h"

namespace {

class AssembledLine : public RunTest {
  protected:
    static void assemble(const std::string &text, int pass = 1) {
        begin_line(text);
        assaline(pass);
    }

    // The scan position as a column of the line.
    static long column() { return Col_Ptr - Line.begin(); }

    void begin_reports() {
        open_source_file("prog.szirpa", "");
        enter_final_pass();
        Line_no = 1;
    }

    std::string error(const std::string &text) const {
        return directory + "/prog.szirpa (1) Error: " + text + "\n";
    }
};

// ---- Helpers
// ----------------------------------------------------------------------------------------

TEST_F(AssembledLine, CommaIsTakenAsADelimiter) {
    begin_reports();
    set_line(",,x");
    EXPECT_EQ(Skip_Delimiter(), 0);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(Line_Done, 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(AssembledLine, AnythingElseIsABadDelimiterAndIsTakenToo) {
    begin_reports();
    set_line("; x");
    EXPECT_EQ(Skip_Delimiter(), 1);
    EXPECT_EQ(column(), 1);
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(LineError, 1);
    EXPECT_EQ(Errors, 1);
    EXPECT_EQ(take_output(), error("Bad delimiter"));
}

TEST_F(AssembledLine, BlankAndEndAreBadDelimiters) {
    begin_reports();
    for (const char *text : {" ,x", "\n", ""}) {
        begin_line(text);
        EXPECT_EQ(Skip_Delimiter(), 1) << text;
        EXPECT_EQ(Line_Done, 1) << text;
        EXPECT_EQ(take_output(), error("Bad delimiter")) << text;
    }
}

TEST_F(AssembledLine, BadDelimiterIsOneErrorALine) {
    begin_reports();
    set_line(";;");
    Skip_Delimiter();
    Skip_Delimiter();
    EXPECT_EQ(take_output(), error("Bad delimiter"));
    EXPECT_EQ(Errors, 1);
    EXPECT_EQ(column(), 2);
}

TEST_F(AssembledLine, BadDelimiterIsSilentBeforeTheFinalPass) {
    open_source_file("prog.szirpa", "");
    set_line(";");
    EXPECT_EQ(Skip_Delimiter(), 1);
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(AssembledLine, BlanksAndTabsAreSkipped) {
    set_line(" \t X\n");
    EXPECT_EQ(SkipSpace(), Line.begin() + 3);
    EXPECT_EQ(column(), 3);
    EXPECT_EQ(SkipSpace(), Line.begin() + 3);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(AssembledLine, OnlyBlanksAndTabsAreSkipped) {
    for (const char *text : {" \vX", " \rX", " \fX", " \x80X"}) {
        set_line(text);
        EXPECT_EQ(SkipSpace(), Line.begin() + 1) << text;
    }
}

TEST_F(AssembledLine, SkippingToTheEndOfTheLineEndsWorkOnIt) {
    for (const char *text : {" \t\n", " \t", "\n", ""}) {
        begin_line(text);
        EXPECT_EQ(SkipSpace(), nullptr) << text;
        EXPECT_EQ(Line_Done, 1) << text;
    }
}

// ---- The last seen label
// ----------------------------------------------------------------------------

TEST_F(AssembledLine, LabelOfALineIsTheLastSeenOne) {
    LC = 0x20;
    assemble("DATA:\n");
    EXPECT_EQ(last_seen_label, "DATA");
    EXPECT_EQ(last_seen_label_value, 0x20U);
    EXPECT_EQ(last_seen_label_offset, 0U);
    last_seen_label_offset = 5;
    assemble("MORE NOP\n");
    EXPECT_EQ(last_seen_label, "MORE");
    EXPECT_EQ(last_seen_label_value, 0x20U);
    EXPECT_EQ(last_seen_label_offset, 0U);
}

// An instruction of coder 0 has no operand and lets the label stand; those of coders 1 to 7
// clear it.
TEST_F(AssembledLine, InstructionWithAnOperandClearsTheLastLabel) {
    for (const char *text : {" LDA #1\n", " BRA 0\n", " INC 1\n", " ADDA #1\n", " TFR A,CC\n",
                             " EXG A,CC\n", " LEAX 1,X\n"}) {
        SetLastLabel("DATA", 1);
        assemble(text);
        EXPECT_EQ(last_seen_label, "") << text;
        EXPECT_EQ(last_seen_label_value, 0U) << text;
    }
}

TEST_F(AssembledLine, OtherLinesLetTheLastLabelStand) {
    SetLastLabel("DATA", 1);
    for (const char *text :
         {" NOP\n", " RTS\n", "\n", "; note\n", "   ; note\n", " \t\n", " FCB 1\n", " RMB 2\n",
          " FCS \"A\"\n", " XYZZY 1\n", "1ABC\n", "#ifdef Q\n", "#endif\n", " END\n"}) {
        assemble(text);
        EXPECT_EQ(last_seen_label, "DATA") << text;
        EXPECT_EQ(last_seen_label_value, 1U) << text;
    }
}

TEST_F(AssembledLine, FaultyOperandClearsTheLastLabelToo) {
    SetLastLabel("DATA", 1);
    assemble(" LDA #\n");
    EXPECT_EQ(last_seen_label, "");
}

TEST_F(AssembledLine, InstructionOfAnEarlierLineDoesNotCount) {
    assemble(" LDA #1\n");
    SetLastLabel("DATA", 1);
    assemble("\n");
    assemble(" FCB 1\n");
    EXPECT_EQ(last_seen_label, "DATA");
}

TEST_F(AssembledLine, LabelOfAnInstructionIsSetAfterTheClearing) {
    SetLastLabel("DATA", 1);
    LC = 7;
    assemble("CODE LDA #1\n");
    EXPECT_EQ(last_seen_label, "CODE");
    EXPECT_EQ(last_seen_label_value, 7U);
}

TEST_F(AssembledLine, OriginClearsTheLastLabel) {
    SetLastLabel("DATA", 1);
    assemble(" ORG 5\n");
    EXPECT_EQ(last_seen_label, "");
}

TEST_F(AssembledLine, EquLeavesTheLastLabelAlone) {
    SetLastLabel("DATA", 1);
    assemble("X EQU 5\n");
    EXPECT_EQ(last_seen_label, "DATA");
}

TEST_F(AssembledLine, PassZeroLeavesTheLastLabelAlone) {
    SetLastLabel("DATA", 1);
    Pass = 0;
    assemble("CODE LDA #1\n", 0);
    EXPECT_EQ(last_seen_label, "DATA");
}

// ---- Fields
// -----------------------------------------------------------------------------------------

TEST_F(AssembledLine, LabelTakesTheAddressAheadOfTheLine) {
    LC = 0x10;
    assemble("L LDA #1\n");
    EXPECT_EQ(getsym("L")->value, 0x10);
    EXPECT_TRUE(getsym("L")->has(SYM_DEFINED));
    EXPECT_EQ(LC, 0x12U);
    EXPECT_EQ(dotLC, 0x10U);
}

TEST_F(AssembledLine, LabelIsDefinedWhateverFollowsIt) {
    LC = 3;
    assemble("A1\n");
    assemble("A2 ; note\n");
    assemble("A3 XYZZY 1\n");
    assemble("A4 END\n");
    for (const char *name : {"A1", "A2", "A3", "A4"}) {
        ASSERT_NE(getsym(name), nullptr) << name;
        EXPECT_EQ(getsym(name)->value, 3) << name;
        EXPECT_TRUE(getsym(name)->has(SYM_DEFINED)) << name;
    }
}

TEST_F(AssembledLine, LabelOfAFailedOriginTakesTheOldAddress) {
    LC = 3;
    assemble("L ORG 1+\n");
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(getsym("L")->value, 3);
}

TEST_F(AssembledLine, PassZeroDefinesOnlyEquNames) {
    Pass = 0;
    assemble("L NOP\n", 0);
    assemble("M FCB 1\n", 0);
    assemble("X EQU 5\n", 0);
    EXPECT_EQ(getsym("L"), nullptr);
    EXPECT_EQ(getsym("M"), nullptr);
    ASSERT_NE(getsym("X"), nullptr);
    EXPECT_EQ(getsym("X")->value, 5);
    EXPECT_EQ(LC, 0U);
}

TEST_F(AssembledLine, PassZeroNeverSeesEnd) {
    Pass = 0;
    assemble(" END\n", 0);
    EXPECT_EQ(endflag, 0);
    Pass = 1;
    assemble(" END\n", 1);
    EXPECT_EQ(endflag, 1);
}

TEST_F(AssembledLine, NoLabelAtTheFirstColumnIsAnError) {
    begin_reports();
    assemble("1ABC NOP\n", 2);
    EXPECT_EQ(take_output(), error("Illegal label"));
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(AssembledLine, UnknownOperationIsAnError) {
    begin_reports();
    assemble(" XYZZY 1\n", 2);
    EXPECT_EQ(take_output(), error("Illegal mnemonic"));
    EXPECT_EQ(LC, 0U);
}

TEST_F(AssembledLine, HighByteAtTheFirstColumnBeginsNoLabel) {
    begin_reports();
    assemble("\xE9NOP\n", 2);
    EXPECT_EQ(take_output(), error("Illegal mnemonic"));
}

TEST_F(AssembledLine, SkippedLineDefinesAndReportsNothing) {
    begin_reports();
    assemble("#ifdef NEVER\n", 2);
    assemble("L XYZZY\n", 2);
    assemble("1ABC\n", 2);
    EXPECT_EQ(getsym("L"), nullptr);
    EXPECT_EQ(pending_listLC, 0);
    assemble("#endif\n", 2);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(Errors, 0);
}

TEST_F(AssembledLine, LineEndsDone) {
    for (const char *text :
         {"\n", "; note\n", " NOP\n", "L\n", "L NOP\n", " FCB 1\n", "#endif\n"}) {
        assemble(text);
        EXPECT_EQ(Line_Done, 1) << text;
    }
}

// ---- The listed address
// -----------------------------------------------------------------------------

TEST_F(AssembledLine, LinesWithAnAddressShowTheLocationCounter) {
    for (const char *text :
         {" NOP\n", " \t\n", "   ; note\n", "L ; note\n", " XYZZY\n", " FCB 1\n"}) {
        LC = 0x33;
        listLC = 0;
        assemble(text);
        EXPECT_EQ(pending_listLC, 1) << text;
        EXPECT_EQ(listLC, 0x33U) << text;
    }
}

TEST_F(AssembledLine, CommentsEmptyLinesAndConditionalsHaveNoAddress) {
    for (const char *text : {"; note\n", "\n", "", "#endif\n", " #endif\n"}) {
        assemble(text);
        EXPECT_EQ(pending_listLC, 0) << text;
    }
}

TEST_F(AssembledLine, EquHasNoAddress) {
    assemble("X EQU 5\n");
    EXPECT_EQ(pending_listLC, 0);
    EXPECT_EQ(IsEqu, 1);
    EXPECT_EQ(IsEquDirective, 1);
}

TEST_F(AssembledLine, OriginShowsTheNewAddress) {
    LC = 1;
    assemble(" ORG $44\n");
    EXPECT_EQ(pending_listLC, 1);
    EXPECT_EQ(listLC, 0x44U);
    EXPECT_EQ(LC, 0x44U);
}

// ---- Debugger lines
// ---------------------------------------------------------------------------------

TEST_F(AssembledLine, DebuggerLineIsSkippedWithItsContinuation) {
    open_source_file("prog.szirpa", ".stabs a+\nb+\nc\n NOP\n");
    ASSERT_EQ(as_read_line(), 1);
    assaline(1);
    EXPECT_EQ(Line.view(), "c\n");
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(LC, 0U);
    ASSERT_EQ(as_read_line(), 1);
    assaline(1);
    EXPECT_EQ(LC, 1U);
}

TEST_F(AssembledLine, SourceThatEndsInsideADebuggerLineIsAnError) {
    open_source_file("prog.szirpa", ".stabs a+\nb+\n");
    while (as_read_line() == 1) {
        assaline(1);
    }
    replay_in_final_pass();
    ASSERT_EQ(as_read_line(), 1);
    assaline(2);
    EXPECT_EQ(take_output(),
              directory + "/prog.szirpa (2) Error: Read Error: Possibly last line continuation\n");
    EXPECT_EQ(Errors, 1);
}

TEST_F(AssembledLine, DebuggerLineIsAnOrdinaryFaultyLineInPassZero) {
    open_source_file("prog.szirpa", ".stabs a+\nX EQU 1\n");
    Pass = 0;
    while (as_read_line() == 1) {
        assaline(0);
    }
    EXPECT_NE(getsym("X"), nullptr);
}

TEST_F(AssembledLine, DebuggerLineGoesToItsRecordsWithTheOptionAlone) {
    begin_reports();
    assemble(".stab type t\n", 2);
    EXPECT_EQ(debug_text(), "");
    O_symdebug = 1;
    assemble(".stab type t\n", 2);
    EXPECT_EQ(debug_text(), "ST:prog.szirpa:t\n");
    EXPECT_EQ(Line_Done, 1);
    assemble(" .stab type t\n", 2);
    EXPECT_EQ(take_output(), error("Illegal mnemonic"));
}

} // namespace
