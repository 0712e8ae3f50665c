// The label of a statement: how it is read, who defines it, and the label that data belongs to.
#include "as/asLabel.h"
#include "as/asPlace.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "tests/unit/support.h"

namespace {

class StatementLabel : public RunTest {
  protected:
    // The scan position as a column of the line.
    static long column() { return Col_Ptr - Line.begin(); }
};

TEST_F(StatementLabel, LabelIsReadWithOneColonAfterIt) {
    set_line("LOOP NOP\n");
    EXPECT_EQ(IsLabel(), 1);
    EXPECT_EQ(column(), 4);
    set_line("LOOP: NOP\n");
    EXPECT_EQ(IsLabel(), 1);
    EXPECT_EQ(column(), 5);
    set_line("LOOP:: NOP\n");
    EXPECT_EQ(IsLabel(), 1);
    EXPECT_EQ(column(), 5);
    set_line("LOOP : NOP\n");
    EXPECT_EQ(IsLabel(), 1);
    EXPECT_EQ(column(), 4);
}

TEST_F(StatementLabel, LabelHoldsDollarsAndDotsAfterALetterOrUnderscore) {
    set_line("_a$.9+1\n");
    EXPECT_EQ(IsLabel(), 1);
    EXPECT_EQ(column(), 5);
}

TEST_F(StatementLabel, WhatIsNoLabelIsNotMovedPast) {
    for (const char *text : {"1ABC\n", ".x\n", "$x\n", ":x\n", "\n", ""}) {
        set_line(text);
        EXPECT_EQ(IsLabel(), 0) << text;
        EXPECT_EQ(column(), 0) << text;
    }
}

TEST_F(StatementLabel, LabelIsCutAfter128Characters) {
    for (const long size : {127L, 128L, 129L}) {
        set_line(std::string(static_cast<std::size_t>(size), 'a') + ": NOP\n");
        EXPECT_EQ(IsLabel(), 1);
        EXPECT_EQ(column(), size <= 128 ? size + 1 : 128) << size;
    }
}

TEST_F(StatementLabel, LabelsNameIsReadFromTheLine) {
    set_line("LOOP: NOP\n");
    label = IsLabel();
    EXPECT_EQ(label_name(), "LOOP");
    set_line("a.b\n");
    label = IsLabel();
    EXPECT_EQ(label_name(), "a.b");
}

TEST_F(StatementLabel, LastLabelIsSetWithNothingRegisteredAndForgottenWhole) {
    last_seen_label_offset = 9;
    SetLastLabel("DATA", 0x123);
    EXPECT_EQ(last_seen_label, "DATA");
    EXPECT_EQ(last_seen_label_value, 0x123U);
    EXPECT_EQ(last_seen_label_offset, 0U);
    last_seen_label_offset = 2;
    resetLabel();
    EXPECT_EQ(last_seen_label, "");
    EXPECT_EQ(last_seen_label_value, 0U);
    EXPECT_EQ(last_seen_label_offset, 0U);
}

TEST_F(StatementLabel, NewPassClearsTheListedAddress) {
    listLC = 5;
    label_new_pass();
    EXPECT_EQ(listLC, 0U);
}

TEST_F(StatementLabel, DirectiveDefinesItAtTheLocationCounterInPlaceOfTheLine) {
    begin_line("DATA FCB 1\n");
    label = IsLabel();
    LC = 7;
    define_directive_label();
    ASSERT_NE(getsym("DATA"), nullptr);
    EXPECT_EQ(getsym("DATA")->value, 7);
    EXPECT_EQ(last_seen_label, "DATA");
    EXPECT_EQ(last_seen_label_value, 7U);
    EXPECT_EQ(IsEqu, 1);
}

TEST_F(StatementLabel, DirectiveWithoutALabelDefinesNothing) {
    begin_line(" FCB 1\n");
    SetLastLabel("DATA", 1);
    define_directive_label();
    EXPECT_EQ(last_seen_label, "DATA");
    EXPECT_EQ(IsEqu, 0);
}

} // namespace
