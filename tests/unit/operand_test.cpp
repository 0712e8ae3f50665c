// The operand parser.
#include "as/asPlace.h"
#include "target/operand.h"

#include "symtab/symtab.h"
#include "target/optab.h"
#include "target/scan.h"
#include "tests/unit/support.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

class OperandParser : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("t.szirpa", "");
        enter_final_pass();
        realline = 10;
        listline = 10;
    }

    static std::ptrdiff_t column() { return Col_Ptr - Line.begin(); }

    static int parse(const std::string &text) {
        begin_line(text);
        return Parse_Operand(opnd1);
    }

    static void expect_form(const std::string &text, std::uint64_t mode, std::int64_t value) {
        EXPECT_EQ(parse(text), 0) << text;
        EXPECT_EQ(opnd1.mode, mode) << text;
        EXPECT_EQ(opnd1.value, value) << text;
    }

    void expect_silent_fault(const std::string &text, int result) {
        EXPECT_EQ(parse(text), result) << text;
        EXPECT_EQ(take_output(), "") << text;
    }

    std::string error(const std::string &text) const {
        return directory + "/t.szirpa (0) Error: " + text + "\n";
    }
};

TEST_F(OperandParser, ReadsImmediateOperands) {
    expect_form("#$FF", ADR_IMM, 255);
    expect_form("#-5", ADR_IMM, -5);
    expect_form("#'A'", ADR_IMM, 65);
    expect_form("#2+3*4", ADR_IMM, 14);
}

TEST_F(OperandParser, ReadsAddresses) {
    expect_form("10", ADR_ABS, 10);
    expect_form("(10)", ADR_ABS, 10);
    expect_form("-5", ADR_ABS, -5);
    expect_form("%101", ADR_ABS, 5);
    expect_form("4*2", ADR_ABS, 8);
    expect_form("10%3", ADR_ABS, 1);
}

TEST_F(OperandParser, ReadsOffsetsFromRegisters) {
    expect_form("10,X", ADR_X_OFF, 10);
    expect_form("10,Y", ADR_Y_OFF, 10);
    expect_form("10,SP", ADR_SP_OFF, 10);
    expect_form("-1,x", ADR_X_OFF, -1);
    expect_form("1+2,y", ADR_Y_OFF, 3);
    expect_form("(4),sP", ADR_SP_OFF, 4);
}

TEST_F(OperandParser, ReadsAccumulatorOffsets) {
    expect_form("A,X", ADR_A_X, 0);
    expect_form("A,Y", ADR_A_Y, 0);
    expect_form("a,x", ADR_A_X, 0);
    expect_form("a,Y", ADR_A_Y, 0);
}

TEST_F(OperandParser, ReadsIncrementsAndDecrements) {
    expect_form(",X+", ADR_X_POSTINC, 0);
    expect_form(",X-", ADR_X_POSTDEC, 0);
    expect_form(",+X", ADR_X_PREINC, 0);
    expect_form(",-X", ADR_X_PREDEC, 0);
    expect_form(",Y+", ADR_Y_POSTINC, 0);
    expect_form(",Y-", ADR_Y_POSTDEC, 0);
    expect_form(",+Y", ADR_Y_PREINC, 0);
    expect_form(",-Y", ADR_Y_PREDEC, 0);
    expect_form(",x+", ADR_X_POSTINC, 0);
    expect_form(",-y", ADR_Y_PREDEC, 0);
}

TEST_F(OperandParser, LeavesTheScanPositionBehindTheOperand) {
    for (const std::string operand : {"#5", "10", "10,X", "10,SP", "A,Y", ",X+", ",-Y", "1+2,Y"}) {
        EXPECT_EQ(parse(operand + " rest"), 0) << operand;
        EXPECT_EQ(column(), static_cast<std::ptrdiff_t>(operand.size())) << operand;
    }
}

TEST_F(OperandParser, NeedsABlankOrTheEndBehindEveryForm) {
    for (const std::string operand : {"#5", "10", "10,X", "10,Y", "10,SP", "A,X", "A,Y", ",X+",
                                      ",X-", ",+X", ",-X", ",Y+", ",Y-", ",+Y", ",-Y"}) {
        for (const char *end : {"", " ", "\t", "\n", " ;comment", " junk", "\xE9"}) {
            EXPECT_EQ(parse(operand + end), 0) << operand << end;
        }
        for (const char *end : {";", ";comment", ":", ")", "]", "="}) {
            EXPECT_NE(parse(operand + end), 0) << operand << end;
        }
    }
    take_output();
}

TEST_F(OperandParser, GivesOneForTextDirectlyBehindAnOperand) {
    expect_silent_fault("10,X;comment", 1);
    expect_silent_fault("10,X,Y", 1);
    expect_silent_fault("10,X+", 1);
    expect_silent_fault("A,X+", 1);
    expect_silent_fault(",X++", 1);
    expect_silent_fault(",-X+", 1);
    expect_silent_fault("5;", 1);
}

TEST_F(OperandParser, ABareIndexRegisterIsAFault) {
    expect_silent_fault(",X", 1);
    expect_silent_fault(",Y", 1);
    expect_silent_fault(",SP", 1);
    expect_silent_fault(",", 1);
}

TEST_F(OperandParser, OnlyIndexRegistersAreIncremented) {
    expect_silent_fault(",+SP", 1);
    expect_silent_fault(",-A", 1);
    expect_silent_fault(",SP+", 1);
    expect_silent_fault(",A+", 1);
    expect_silent_fault(",X*", 1);
    expect_silent_fault(",+", 1);
    expect_silent_fault(",--X", 1);
    expect_silent_fault(",5", 1);
}

TEST_F(OperandParser, AnOffsetNeedsAnIndexRegister) {
    expect_silent_fault("5,A", 1);
    expect_silent_fault("5,CC", 1);
    expect_silent_fault("5,6", 1);
    expect_silent_fault("5,XY", 1);
    expect_silent_fault("5,", 1);
}

TEST_F(OperandParser, OnlyTheAccumulatorStandsBeforeAComma) {
    expect_silent_fault("X+", -1);
    expect_silent_fault("A", -1);
    expect_silent_fault("X", -1);
    expect_silent_fault("SP", -1);
    expect_silent_fault("A,SP", -1);
    expect_silent_fault("A,A", -1);
    expect_silent_fault("A,5", -1);
    expect_silent_fault("A,", -1);
    expect_silent_fault("X,Y", -1);
    expect_silent_fault("SP,X", -1);
    expect_silent_fault("CC,X", -1);
    expect_silent_fault("", -1);
    expect_silent_fault("*", -1);
    expect_silent_fault("+5", -1);
}

TEST_F(OperandParser, AllowsNoBlanksInsideAnOperand) {
    expect_silent_fault("10, X", 1);
    expect_silent_fault(", X+", 1);
    expect_silent_fault(",X +", 1);
    expect_silent_fault(",- X", 1);
    expect_silent_fault("A ,X", -1);
    expect_silent_fault("A, X", -1);
    expect_silent_fault(" 5", -1);
}

TEST_F(OperandParser, ABlankBeforeACommaMakesTheRestAComment) { expect_form("10 ,X", ADR_ABS, 10); }

TEST_F(OperandParser, ImmediateFaultsAreReportedByTheEvaluator) {
    EXPECT_EQ(parse("#"), 1);
    EXPECT_EQ(take_output(), error("Unterminated expression, Position[1]"));
    EXPECT_EQ(parse("# 5"), 1);
    EXPECT_EQ(take_output(), error("Unterminated expression, Position[1]"));
    EXPECT_EQ(parse("#A"), 1);
    EXPECT_EQ(take_output(), error("Illegal use of reserved word, Position[1]"));
    EXPECT_EQ(parse("#(1"), 1);
    EXPECT_EQ(take_output(), error("Missing Parenthesis, Position[3]"));
}

TEST_F(OperandParser, ABadDigitIsReportedByTheScanner) {
    EXPECT_EQ(parse("#12AB"), 1);
    EXPECT_EQ(take_output(),
              error("Illegal decimal digit") + error("Unterminated expression, Position[1]"));
    EXPECT_NE(parse("12AB"), 0);
    EXPECT_EQ(take_output(), error("Illegal decimal digit"));
}

TEST_F(OperandParser, RegisterNamesArePartOfNoLongerName) {
    putsym("AX", 7, 1, SYM_DEFINED, 0, nullptr, 0);
    putsym("SP1", 8, 1, SYM_DEFINED, 0, nullptr, 0);
    expect_form("AX", ADR_ABS, 7);
    expect_form("SP1,X", ADR_X_OFF, 8);
    expect_form("#AX+SP1", ADR_IMM, 15);
}

TEST_F(OperandParser, ClearsTheRecordAndTheCommaFlagFirst) {
    opnd1.pc_bias = 7;
    opnd1.mode = ADR_X_OFF;
    opnd1.value = 99;
    begin_line(",Y+");
    commadel = 1;
    EXPECT_EQ(Parse_Operand(opnd1), 0);
    EXPECT_EQ(opnd1.pc_bias, 0);
    EXPECT_EQ(opnd1.mode, ADR_Y_POSTINC);
    EXPECT_EQ(opnd1.value, 0);
    EXPECT_EQ(commadel, 0);
}

TEST_F(OperandParser, FillsTheRecordThatItIsGiven) {
    ClearOp(opnd1);
    begin_line("#5");
    EXPECT_EQ(Parse_Operand(opnd2), 0);
    EXPECT_EQ(opnd2.mode, ADR_IMM);
    EXPECT_EQ(opnd2.value, 5);
    EXPECT_EQ(opnd1.mode, 0U);
}

TEST_F(OperandParser, ALineBeginsWithoutTheCommaFlag) {
    commadel = 1;
    operand_new_line();
    EXPECT_EQ(commadel, 0);
}

// ---- Register pairs ----

class RegisterPair : public OperandParser {
  protected:
    static int parse_pair(const std::string &text) {
        begin_line(text);
        first = 0;
        second = 0;
        return ParseReglist(first, second);
    }

    inline static int first = 0;
    inline static int second = 0;
};

struct Register {
    const char *name;
    int code;
};

constexpr Register kRegisters[] = {{"A", TOK_A},   {"cc", TOK_CC}, {"X", TOK_X},  {"y", TOK_Y},
                                   {"SP", TOK_SP}, {"a", TOK_A},   {"CC", TOK_CC}};

TEST_F(RegisterPair, IsAnyTwoRegistersWithACommaBetween) {
    for (const Register &left : kRegisters) {
        for (const Register &right : kRegisters) {
            const std::string text = std::string(left.name) + "," + right.name;
            EXPECT_EQ(parse_pair(text), 1) << text;
            EXPECT_EQ(first, left.code) << text;
            EXPECT_EQ(second, right.code) << text;
        }
    }
}

TEST_F(RegisterPair, IsNotExaminedBehindItsSecondRegister) {
    for (const char *text : {"A,CC junk", "A,CC;c", "A,CC,X", "A,CC+"}) {
        EXPECT_EQ(parse_pair(text), 1) << text;
        EXPECT_EQ(second, TOK_CC) << text;
    }
}

TEST_F(RegisterPair, NeedsTwoRegisters) {
    for (const char *text : {"", "A", "A,", "A,B", "B,A", "5,X", "X,5", "AX,Y", "X,XY", ",X", "*,X",
                             "A,SPX", "CCR,A"}) {
        EXPECT_EQ(parse_pair(text), 0) << text;
    }
}

TEST_F(RegisterPair, NeedsACommaDirectlyBetween) {
    for (const char *text : {"A CC", "A ,CC", "A, CC", "A;CC", "A.,CC", "A+CC", " A,CC"}) {
        EXPECT_EQ(parse_pair(text), 0) << text;
    }
}

TEST_F(RegisterPair, IsReadWithoutAMessage) {
    parse_pair("A");
    parse_pair("B,C");
    EXPECT_EQ(take_output(), "");
}

} // namespace
