// The instruction encoders.
#include "as/asPlace.h"
#include "target/encode.h"

#include "as/asDiag.h"
#include "as/asLine.h"
#include "as/asOptions.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/operand.h"
#include "target/optab.h"
#include "target/scan.h"
#include "tests/unit/support.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<unsigned>;

constexpr const char *kSyntaxError = "Syntax Error";
constexpr const char *kBadMode = "Illegal Addressing Mode";
constexpr const char *kBadBranchSyntax = "Bad operand syntax";
constexpr const char *kBadBranchMode = "Illegal addressing mode";
constexpr const char *kBadPair = "Bad register pair";
constexpr const char *kBadCombination = "Illegal register combination";

class Encoder : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("t.szirpa", "");
        enter_final_pass();
        location_new_pass();
        outrecinit(kDataRecord16, LC);
    }

    // Puts the scan position on the operand of an instruction that has been looked up.
    static void begin(const std::string &statement) {
        begin_line(" " + statement);
        ++Col_Ptr;
        ASSERT_EQ(ZIRPA_getmnem(mp), 1) << statement;
        SkipSpace();
    }

    static int encode(const std::string &statement) {
        begin(statement);
        return CodeLine();
    }

    static Bytes emitted() {
        return {Code.begin(), Code.begin() + static_cast<std::ptrdiff_t>(code_i)};
    }

    // The bytes of an instruction, whatever it reports.
    static Bytes bytes(const std::string &statement) {
        const std::uint32_t before = LC;
        encode(statement);
        EXPECT_EQ(LC - before, code_i) << statement;
        return emitted();
    }

    // The bytes of an instruction that is free of faults.
    Bytes good(const std::string &statement) {
        const Bytes result = bytes(statement);
        EXPECT_EQ(take_output(), "") << statement;
        return result;
    }

    void expect_fault(const std::string &statement, const std::string &text) {
        const std::uint32_t before = LC;
        EXPECT_EQ(encode(statement), -1) << statement;
        EXPECT_EQ(LC, before) << statement;
        EXPECT_EQ(code_i, 0U) << statement;
        EXPECT_EQ(Line_Done, 1) << statement;
        EXPECT_EQ(take_output(), error(text)) << statement;
    }

    std::string error(const std::string &text) const {
        return directory + "/t.szirpa (0) Error: " + text + "\n";
    }
};

// ---- Every form of every mnemonic ----

struct Form {
    const char *operand;
    std::uint64_t mode;
    bool has_byte;
};

constexpr Form kForms[] = {
    {"#5", ADR_IMM, true},         {"5", ADR_ABS, true},         {"5,SP", ADR_SP_OFF, true},
    {"5,X", ADR_X_OFF, true},      {"A,X", ADR_A_X, false},      {",X+", ADR_X_POSTINC, false},
    {",X-", ADR_X_POSTDEC, false}, {",+X", ADR_X_PREINC, false}, {",-X", ADR_X_PREDEC, false},
    {"5,Y", ADR_Y_OFF, true},      {"A,Y", ADR_A_Y, false},      {",Y+", ADR_Y_POSTINC, false},
    {",Y-", ADR_Y_POSTDEC, false}, {",+Y", ADR_Y_PREINC, false}, {",-Y", ADR_Y_PREDEC, false},
};

// What each coder combines the base opcode with.
const std::map<unsigned, std::map<std::uint64_t, unsigned>> kModeValues = {
    {1,
     {{ADR_IMM, 0},
      {ADR_ABS, 1},
      {ADR_SP_OFF, 2},
      {ADR_X_OFF, 3},
      {ADR_A_X, 4},
      {ADR_X_POSTINC, 5},
      {ADR_X_POSTDEC, 6},
      {ADR_X_PREINC, 7},
      {ADR_X_PREDEC, 8},
      {ADR_Y_OFF, 9},
      {ADR_A_Y, 10},
      {ADR_Y_POSTINC, 11},
      {ADR_Y_POSTDEC, 12},
      {ADR_Y_PREINC, 13},
      {ADR_Y_PREDEC, 14}}},
    {3,
     {{ADR_ABS, 0x30},
      {ADR_SP_OFF, 0x40},
      {ADR_X_OFF, 0x50},
      {ADR_A_X, 0x60},
      {ADR_Y_OFF, 0x70},
      {ADR_A_Y, 0x80}}},
    {4,
     {{ADR_IMM, 0x90}, {ADR_ABS, 0xA0}, {ADR_SP_OFF, 0xB0}, {ADR_X_OFF, 0xC0}, {ADR_Y_OFF, 0xD0}}},
    {7, {{ADR_SP_OFF, 0xD0}, {ADR_X_OFF, 0xC0}, {ADR_Y_OFF, 0xC0}}},
};

TEST_F(Encoder, CombinesOpcodeAndFormOfEveryMnemonicWithAnOperand) {
    std::size_t allowed = 0;
    std::size_t forbidden = 0;
    for (const Instruction &row : optab) {
        const auto values = kModeValues.find(row.coder);
        if (values == kModeValues.end()) {
            continue;
        }
        for (const Form &form : kForms) {
            const std::string statement = std::string(row.mnemonic) + " " + form.operand;
            if ((row.mode_mask & form.mode) == 0) {
                expect_fault(statement, kBadMode);
                ++forbidden;
                continue;
            }
            Bytes expected{row.opcode | values->second.at(form.mode)};
            if (form.has_byte) {
                expected.push_back(5);
            }
            EXPECT_EQ(good(statement), expected) << statement;
            ++allowed;
        }
    }
    // 39 mnemonics in 15 forms.
    EXPECT_EQ(allowed + forbidden, 39U * 15U);
    EXPECT_EQ(allowed, 206U);
}

TEST_F(Encoder, EncodesLoadsAndStores) {
    EXPECT_EQ(good("LDA #5"), (Bytes{0xF0, 5}));
    EXPECT_EQ(good("LDA ,X+"), (Bytes{0xF5}));
    EXPECT_EQ(good("LDA ,-Y"), (Bytes{0xFE}));
    EXPECT_EQ(good("STA $10"), (Bytes{0xE1, 0x10}));
    EXPECT_EQ(good("STA A,Y"), (Bytes{0xEA}));
    expect_fault("STA #5", kBadMode);
}

TEST_F(Encoder, EncodesConditionCodeMasks) {
    EXPECT_EQ(good("ANDCC #$F0"), (Bytes{0x01, 0xF0}));
    EXPECT_EQ(good("ORCC #1"), (Bytes{0x02, 1}));
    expect_fault("ANDCC 5", kBadMode);
}

TEST_F(Encoder, EncodesMemoryOperations) {
    EXPECT_EQ(good("CLR 10,SP"), (Bytes{0x45, 0x0A}));
    EXPECT_EQ(good("CLR A,Y"), (Bytes{0x85}));
    EXPECT_EQ(good("JMP $20"), (Bytes{0x33, 0x20}));
    EXPECT_EQ(good("STSP 1,Y"), (Bytes{0x72, 1}));
    expect_fault("JMP 3,SP", kBadMode);
    expect_fault("CLR ,X+", kBadMode);
}

TEST_F(Encoder, EncodesEffectiveAddresses) {
    EXPECT_EQ(good("LEAX 4,SP"), (Bytes{0xDC, 4}));
    EXPECT_EQ(good("LEAX 4,X"), (Bytes{0xCC, 4}));
    EXPECT_EQ(good("LEAY 4,Y"), (Bytes{0xCD, 4}));
    EXPECT_EQ(good("LEAY 4,SP"), (Bytes{0xDD, 4}));
    EXPECT_EQ(good("LEASP 4,SP"), (Bytes{0xBE, 4}));
    EXPECT_EQ(good("LEASP 4,Y"), (Bytes{0xDE, 4}));
    expect_fault("LEAX 4,Y", kBadMode);
    expect_fault("LEAY 4,X", kBadMode);
}

TEST_F(Encoder, EffectiveAddressesOfOtherFormsKeepTheBaseOpcode) {
    begin("LEAX #7");
    mp->mode_mask |= ADR_IMM;
    coder7();
    EXPECT_EQ(emitted(), (Bytes{0x0C, 7}));
    EXPECT_EQ(take_output(), "");
}

// ---- Inherent instructions ----

TEST_F(Encoder, InherentInstructionsAreOneByte) {
    const std::vector<std::pair<const char *, unsigned>> instructions = {
        {"NOP", 0x00},  {"ASLA", 0x0B}, {"DAA", 0xE0}, {"PSHC", 0x13},
        {"PULX", 0x15}, {"RTS", 0x43},  {"RTI", 0x44}, {"TSTA", 0x09}};
    for (const auto &[statement, opcode] : instructions) {
        EXPECT_EQ(good(statement), (Bytes{opcode})) << statement;
    }
}

TEST_F(Encoder, InherentInstructionsIgnoreTheirOperand) {
    EXPECT_EQ(good("NOP FOO"), (Bytes{0x00}));
    EXPECT_EQ(good("RTS #$1G"), (Bytes{0x43}));
    EXPECT_EQ(good("CLRA ;comment"), (Bytes{0x05}));
}

// ---- Branches ----

TEST_F(Encoder, BranchesAreMeasuredFromTheNextInstruction) {
    LC = 10;
    EXPECT_EQ(good("BRA 12"), (Bytes{0x21, 0x00}));
    LC = 10;
    EXPECT_EQ(good("BRA 8"), (Bytes{0x21, 0xFC}));
    LC = 10;
    EXPECT_EQ(good("BSR 139"), (Bytes{0x20, 0x7F}));
    LC = 200;
    EXPECT_EQ(good("BLT 74"), (Bytes{0x2F, 0x80}));
}

TEST_F(Encoder, BranchesOutOfReachAreEmittedTruncated) {
    LC = 10;
    EXPECT_EQ(bytes("BRA 140"), (Bytes{0x21, 0x80}));
    EXPECT_EQ(take_output(), error("Displacement (0x80) is out of range"));
    LC = 200;
    EXPECT_EQ(bytes("BEQ 73"), (Bytes{0x24, 0x7F}));
    EXPECT_EQ(take_output(), error("Displacement (0xFFFFFF7F) is out of range"));
}

TEST_F(Encoder, EveryBranchHasItsOpcode) {
    const std::vector<std::pair<const char *, unsigned>> branches = {
        {"BSR", 0x20}, {"BRA", 0x21}, {"BMI", 0x22}, {"BPL", 0x23}, {"BEQ", 0x24}, {"BNE", 0x25},
        {"BVS", 0x26}, {"BVC", 0x27}, {"BCS", 0x28}, {"BLO", 0x28}, {"BCC", 0x29}, {"BHS", 0x29},
        {"BHI", 0x2A}, {"BLS", 0x2B}, {"BGT", 0x2C}, {"BGE", 0x2D}, {"BLE", 0x2E}, {"BLT", 0x2F}};
    for (const auto &[name, opcode] : branches) {
        LC = 16;
        EXPECT_EQ(good(std::string(name) + " 20"), (Bytes{opcode, 2})) << name;
    }
}

TEST_F(Encoder, BranchesReportInTheirOwnWords) {
    for (const Form &form : kForms) {
        if (form.mode != ADR_ABS) {
            expect_fault(std::string("BRA ") + form.operand, kBadBranchMode);
        }
    }
    expect_fault("BRA", kBadBranchSyntax);
    expect_fault("BRA A", kBadBranchSyntax);
    expect_fault("BNE 5;", kBadBranchSyntax);
}

TEST_F(Encoder, TheBranchEncoderWorksAloneToo) {
    LC = 10;
    begin("BRA 8");
    EXPECT_NE(coder2(), -1);
    EXPECT_EQ(emitted(), (Bytes{0x21, 0xFC}));
    begin("BRA #5");
    EXPECT_EQ(coder2(), -1);
    EXPECT_EQ(take_output(), error(kBadBranchMode));
    begin("BRA");
    EXPECT_EQ(coder2(), -1);
    EXPECT_EQ(take_output(), error(kBadBranchSyntax));
}

TEST_F(Encoder, BranchesStoreTheirBias) {
    good("BRA 5");
    EXPECT_EQ(opnd1.pc_bias, 1);
    good("JMP 5");
    EXPECT_EQ(opnd1.pc_bias, 0);
}

TEST_F(Encoder, ABranchToAnUndefinedNameIsSilentBeforeTheFinalPass) {
    Pass = 1;
    Pass2 = 0;
    LC = 200;
    EXPECT_NE(encode("BRA later"), -1);
    EXPECT_EQ(LC, 202U);
    EXPECT_EQ(take_output(), "");
}

// ---- Register pairs ----

TEST_F(Encoder, TransfersAndExchangesTakeTheirPairsOnly) {
    const std::map<std::string, unsigned> transfers = {
        {"A,CC", 0x18}, {"CC,A", 0x19}, {"X,Y", 0x1A},  {"Y,X", 0x1B},
        {"X,SP", 0x1C}, {"SP,X", 0x1D}, {"Y,SP", 0x1E}, {"SP,Y", 0x1F}};
    const std::map<std::string, unsigned> exchanges = {
        {"A,CC", 0x9F}, {"CC,A", 0x9F}, {"X,Y", 0xAF},  {"Y,X", 0xAF},
        {"X,SP", 0xBF}, {"SP,X", 0xBF}, {"Y,SP", 0xCF}, {"SP,Y", 0xCF}};
    for (const auto &[name, pairs] :
         {std::pair{std::string("TFR "), transfers}, std::pair{std::string("EXG "), exchanges}}) {
        for (const std::string first : {"A", "CC", "X", "Y", "SP"}) {
            for (const std::string second : {"A", "CC", "X", "Y", "SP"}) {
                const std::string pair = first + "," + second;
                const auto found = pairs.find(pair);
                if (found == pairs.end()) {
                    expect_fault(name + pair, kBadCombination);
                } else {
                    EXPECT_EQ(good(name + pair), (Bytes{found->second})) << name + pair;
                    EXPECT_EQ(mp->opcode, found->second) << name + pair;
                }
            }
        }
    }
}

TEST_F(Encoder, RegisterPairsMayBeInEitherCase) {
    EXPECT_EQ(good("TFR x,y"), (Bytes{0x1A}));
    EXPECT_EQ(good("exg Sp,y"), (Bytes{0xCF}));
}

TEST_F(Encoder, AnythingElseIsABadPair) {
    for (const std::string name : {"TFR", "EXG"}) {
        for (const char *operand : {"", " A", " A,", " A,B", " 5,X", " A CC", " A, CC", " #5"}) {
            expect_fault(name + operand, kBadPair);
        }
    }
}

TEST_F(Encoder, TextBehindAPairIsIgnored) {
    EXPECT_EQ(good("TFR X,Y,A"), (Bytes{0x1A}));
    EXPECT_EQ(good("EXG X,Y;comment"), (Bytes{0xAF}));
}

// ---- Values ----

TEST_F(Encoder, AValueOutOfRangeIsEmittedTruncated) {
    EXPECT_EQ(bytes("LDA #300"), (Bytes{0xF0, 0x2C}));
    EXPECT_EQ(take_output(), error("Value (0x12C) is truncated"));
    EXPECT_EQ(bytes("CLR 256,X"), (Bytes{0x55, 0x00}));
    EXPECT_EQ(take_output(), error("Value (0x100) is truncated"));
    EXPECT_EQ(bytes("ADDA #-257"), (Bytes{0x96, 0xFF}));
    EXPECT_EQ(take_output(), error("Value (0xFFFFFEFF) is truncated"));
    EXPECT_EQ(bytes("LEAX 256,X"), (Bytes{0xCC, 0x00}));
    EXPECT_EQ(take_output(), error("Value (0x100) is truncated"));
}

TEST_F(Encoder, AValueOfMinus256To255Fits) {
    EXPECT_EQ(good("LDA #-200"), (Bytes{0xF0, 0x38}));
    EXPECT_EQ(good("LDA #-256"), (Bytes{0xF0, 0x00}));
    EXPECT_EQ(good("LDA #255"), (Bytes{0xF0, 0xFF}));
    EXPECT_EQ(good("LDA -1,X"), (Bytes{0xF3, 0xFF}));
}

// ---- Faults ----

TEST_F(Encoder, ASyntaxFaultIsReported) {
    for (const char *statement :
         {"LDA", "LDA ,X", "LDA X+", "LDA 5,A", "LDA 10,X;c", "STA A", "CLR", "CLR ,SP", "ADDA",
          "LDX A", "LEAX", "LEAX ,X", "ANDCC", "JMP *"}) {
        expect_fault(statement, kSyntaxError);
    }
}

TEST_F(Encoder, AFaultOfTheExpressionIsReportedInItsPlace) {
    expect_fault("LDA #", "Unterminated expression, Position[6]");
    expect_fault("LDA #A", "Illegal use of reserved word, Position[6]");
    expect_fault("LDA 12AB", "Illegal decimal digit");
}

TEST_F(Encoder, ABadDigitInAnImmediateOperandGivesTwoMessages) {
    EXPECT_EQ(encode("LDA #12AB"), -1);
    EXPECT_EQ(take_output(),
              error("Illegal decimal digit") + error("Unterminated expression, Position[6]"));
}

TEST_F(Encoder, AnUndefinedNameIsReportedAndEncodedAs0) {
    EXPECT_EQ(bytes("LDA #nowhere"), (Bytes{0xF0, 0x00}));
    EXPECT_EQ(take_output(), error("Undefined symbol 'nowhere'"));
}

TEST_F(Encoder, FaultsAreSilentBeforeTheFinalPass) {
    Pass = 1;
    Pass2 = 0;
    for (const char *statement : {"LDA", "STA #5", "BRA #5", "TFR A", "TFR A,X"}) {
        EXPECT_EQ(encode(statement), -1) << statement;
    }
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Encoder, InstructionsHaveTheSameLengthInEveryPass) {
    for (const char *statement : {"NOP", "LDA #300", "LDA ,X+", "LDA later", "CLR A,X", "CLR 5",
                                  "ADDA 5,Y", "LEAX 5,SP", "BRA 5", "TFR X,Y", "EXG A,CC"}) {
        std::uint32_t lengths[2] = {0, 0};
        for (const int final_pass : {0, 1}) {
            Pass2 = final_pass;
            LC = 0;
            encode(statement);
            lengths[final_pass] = LC;
        }
        EXPECT_GT(lengths[0], 0U) << statement;
        EXPECT_EQ(lengths[0], lengths[1]) << statement;
    }
}

// ---- The line ----

TEST_F(Encoder, TellsInherentInstructionsAndPairsFromTheOthers) {
    EXPECT_EQ(encode("NOP"), 1);
    EXPECT_EQ(encode("TFR X,Y"), 1);
    EXPECT_EQ(encode("EXG X,Y"), 1);
    EXPECT_EQ(encode("LDA #5"), 0);
    EXPECT_EQ(encode("BRA 2"), 0);
    EXPECT_EQ(encode("CLR 5"), 0);
    EXPECT_EQ(encode("ADDA 5"), 0);
    EXPECT_EQ(encode("LEAX 5,X"), 0);
}

TEST_F(Encoder, EndsWorkOnTheLine) {
    for (const char *statement : {"NOP", "LDA #5 comment", "BRA 5", "TFR X,Y"}) {
        encode(statement);
        EXPECT_EQ(Line_Done, 1) << statement;
    }
}

TEST_F(Encoder, MarksInstructionsForDebuggingInTheFinalPass) {
    O_symdebug = 1;
    encode("LDA #5");
    EXPECT_EQ(isinstruction, 1);
    encode_new_line();
    EXPECT_EQ(isinstruction, 0);
}

TEST_F(Encoder, MarksNothingWithoutDebugOutputOrBeforeTheFinalPass) {
    encode("LDA #5");
    EXPECT_EQ(isinstruction, 0);
    O_symdebug = 1;
    Pass2 = 0;
    encode("LDA #5");
    EXPECT_EQ(isinstruction, 0);
}

TEST_F(Encoder, MarksAFaultyInstructionForDebuggingToo) {
    O_symdebug = 1;
    encode("STA #5");
    EXPECT_EQ(isinstruction, 1);
}

TEST_F(Encoder, AnUnknownCoderIsAnInternalFault) {
    for (const std::uint16_t coder : {std::uint16_t{8}, std::uint16_t{9}, kNoCoder}) {
        begin("NOP");
        mp->coder = coder;
        EXPECT_EQ(CodeLine(), -1);
        EXPECT_EQ(take_output(), error("(F1016)"));
        EXPECT_EQ(code_i, 0U);
    }
}

} // namespace
