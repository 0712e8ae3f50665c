// The instruction table and the lookup of mnemonics.
#include "as/asPlace.h"
#include "target/optab.h"

#include "tests/unit/support.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

namespace {

struct Row {
    const char *mnemonic;
    unsigned opcode;
    std::uint64_t mode_mask;
    unsigned coder;
};

// The processor's instructions, in table order within each letter.
constexpr Row kRows[] = {
    // clang-format off
    {"ADCA", 0x05, 0x836, 4},
    {"ADDA", 0x06, 0x836, 4},
    {"ANDA", 0x09, 0x836, 4},
    {"ANDCC", 0x01, 0x2, 1},
    {"ASLA", 0x0B, 0x1, 0},
    {"ASRA", 0x0F, 0x1, 0},
    {"ASL", 0x0B, 0x1874, 3},
    {"ASR", 0x0F, 0x1874, 3},
    {"BSR", 0x20, 0x4, 2},
    {"BRA", 0x21, 0x4, 2},
    {"BMI", 0x22, 0x4, 2},
    {"BPL", 0x23, 0x4, 2},
    {"BEQ", 0x24, 0x4, 2},
    {"BNE", 0x25, 0x4, 2},
    {"BVS", 0x26, 0x4, 2},
    {"BVC", 0x27, 0x4, 2},
    {"BCS", 0x28, 0x4, 2},
    {"BLO", 0x28, 0x4, 2},
    {"BCC", 0x29, 0x4, 2},
    {"BHS", 0x29, 0x4, 2},
    {"BHI", 0x2A, 0x4, 2},
    {"BLS", 0x2B, 0x4, 2},
    {"BGT", 0x2C, 0x4, 2},
    {"BGE", 0x2D, 0x4, 2},
    {"BLE", 0x2E, 0x4, 2},
    {"BLT", 0x2F, 0x4, 2},
    {"BITA", 0x08, 0x836, 4},
    {"CLRA", 0x05, 0x1, 0},
    {"CLR", 0x05, 0x1874, 3},
    {"CMPA", 0x07, 0x836, 4},
    {"COMA", 0x0A, 0x1, 0},
    {"COM", 0x0A, 0x1874, 3},
    {"CMPX", 0x0C, 0x16, 4},
    {"CMPY", 0x0D, 0x16, 4},
    {"CMPSP", 0x0E, 0x6, 4},
    {"DECA", 0x08, 0x1, 0},
    {"DEC", 0x08, 0x1874, 3},
    {"DAA", 0xE0, 0x1, 0},
    {"EORA", 0x0B, 0x836, 4},
    {"EXG", 0x00, 0x1, 6},
    {"INCA", 0x07, 0x1, 0},
    {"INC", 0x07, 0x1874, 3},
    {"JMP", 0x03, 0x1864, 3},
    {"JSR", 0x04, 0x1864, 3},
    {"LSLA", 0x0B, 0x1, 0},
    {"LSRA", 0x0C, 0x1, 0},
    {"LSL", 0x0B, 0x1874, 3},
    {"LSR", 0x0C, 0x1874, 3},
    {"LDA", 0xF0, 0x1fff6, 1},
    {"LDX", 0x00, 0x836, 4},
    {"LDY", 0x01, 0x836, 4},
    {"LDSP", 0x02, 0x836, 4},
    {"LEAX", 0x0C, 0x30, 7},
    {"LEAY", 0x0D, 0x810, 7},
    {"LEASP", 0x0E, 0x830, 4},
    {"NEGA", 0x06, 0x1, 0},
    {"NEG", 0x06, 0x1874, 3},
    {"NOP", 0x00, 0x1, 0},
    {"ORA", 0x0A, 0x836, 4},
    {"ORCC", 0x02, 0x2, 1},
    {"PSHA", 0x10, 0x1, 0},
    {"PSHX", 0x11, 0x1, 0},
    {"PSHY", 0x12, 0x1, 0},
    {"PSHC", 0x13, 0x1, 0},
    {"PSHCC", 0x13, 0x1, 0},
    {"PULA", 0x14, 0x1, 0},
    {"PULX", 0x15, 0x1, 0},
    {"PULY", 0x16, 0x1, 0},
    {"PULC", 0x17, 0x1, 0},
    {"PULCC", 0x17, 0x1, 0},
    {"ROLA", 0x0D, 0x1, 0},
    {"RORA", 0x0E, 0x1, 0},
    {"ROL", 0x0D, 0x1874, 3},
    {"ROR", 0x0E, 0x1874, 3},
    {"RTS", 0x43, 0x1, 0},
    {"RTI", 0x44, 0x1, 0},
    {"SBCA", 0x03, 0x836, 4},
    {"SUBA", 0x04, 0x836, 4},
    {"STA", 0xE0, 0x1fff4, 1},
    {"STX", 0x00, 0x1874, 3},
    {"STY", 0x01, 0x1874, 3},
    {"STSP", 0x02, 0x1874, 3},
    {"TFR", 0x00, 0x1, 5},
    {"TSTA", 0x09, 0x1, 0},
    {"TST", 0x09, 0x1874, 3},
    // clang-format on
};

constexpr std::size_t kRowCount = 85;
static_assert(std::size(kRows) == kRowCount);

std::string lower(std::string text) {
    for (char &ch : text) {
        ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    }
    return text;
}

bool is_mnemonic(const std::string &upper_case) {
    for (const Row &row : kRows) {
        if (upper_case == row.mnemonic) {
            return true;
        }
    }
    return false;
}

class MnemonicLookup : public RunTest {
  protected:
    static std::ptrdiff_t column() { return Col_Ptr - Line.begin(); }

    // What the lookup of a line's first word finds.
    static std::optional<MnemonicRecord> find(const std::string &text) {
        set_line(text);
        MnemonicRecord record;
        const int found = ZIRPA_getmnem(&record);
        EXPECT_TRUE(found == 0 || found == 1) << text;
        if (found == 0) {
            return {};
        }
        return record;
    }

    static bool is_found(const std::string &text) { return find(text).has_value(); }

    static void expect_row(const std::string &text, const Row &row) {
        const std::optional<MnemonicRecord> record = find(text);
        ASSERT_TRUE(record.has_value()) << text;
        EXPECT_EQ(record->opcode, row.opcode) << text;
        EXPECT_EQ(record->mode_mask, row.mode_mask) << text;
        EXPECT_EQ(record->coder, row.coder) << text;
    }
};

char byte(int code) { return static_cast<char>(static_cast<unsigned char>(code)); }

TEST_F(MnemonicLookup, FindsEveryInstructionInEitherCase) {
    for (const Row &row : kRows) {
        expect_row(row.mnemonic, row);
        EXPECT_EQ(column(), static_cast<std::ptrdiff_t>(std::string(row.mnemonic).size()));
        expect_row(lower(row.mnemonic), row);
    }
}

TEST_F(MnemonicLookup, MixesCases) {
    for (const char *text : {"lda", "LDA", "Lda", "lDA", "LdA", "lDa"}) {
        const std::optional<MnemonicRecord> record = find(text);
        ASSERT_TRUE(record.has_value()) << text;
        EXPECT_EQ(record->opcode, 0xF0) << text;
        EXPECT_EQ(record->mode_mask, 0x1FFF6U) << text;
        EXPECT_EQ(record->coder, 1) << text;
    }
}

TEST_F(MnemonicLookup, AMnemonicEndsAtABlankTheEndOrAByteFrom128Up) {
    for (int code = 1; code < 256; ++code) {
        const bool ends = code < 33 || code > 127;
        EXPECT_EQ(is_found(std::string("LDA") + byte(code) + "#5"), ends) << code;
        EXPECT_EQ(column(), ends ? 3 : 1) << code;
    }
}

TEST_F(MnemonicLookup, FindsNoAbbreviationsAndNoExtensions) {
    for (const Row &row : kRows) {
        std::string text = row.mnemonic;
        EXPECT_EQ(is_found(text + "Z"), is_mnemonic(text + "Z")) << text;
        EXPECT_EQ(is_found(text + "A"), is_mnemonic(text + "A")) << text;
        text.pop_back();
        EXPECT_EQ(is_found(text), is_mnemonic(text)) << text;
    }
}

TEST_F(MnemonicLookup, AFailureMovesOneCharacterOn) {
    for (const char *text : {"ZZZ", "_X", "LDB", "LDA,", "FCB", "9", " LDA", "zda"}) {
        EXPECT_FALSE(is_found(text)) << text;
        EXPECT_EQ(column(), 1) << text;
    }
}

TEST_F(MnemonicLookup, AMnemonicBeginsWithALetter) {
    for (int code = 1; code < 256; ++code) {
        EXPECT_EQ(is_found(std::string(1, byte(code)) + "da"), code == 'l' || code == 'L') << code;
        EXPECT_EQ(is_found(std::string(1, byte(code)) + "nca"), code == 'i' || code == 'I') << code;
    }
    EXPECT_FALSE(is_found(""));
}

TEST_F(MnemonicLookup, OnlyUpperCaseLettersMatchLowerCaseText) {
    for (int code = 1; code < 256; ++code) {
        EXPECT_EQ(is_found(std::string("L") + byte(code) + "A"), code == 'd' || code == 'D')
            << code;
    }
}

TEST_F(MnemonicLookup, TellsTheAccumulatorFormFromTheMemoryForm) {
    for (const std::string stem :
         {"ASL", "ASR", "CLR", "COM", "DEC", "INC", "LSL", "LSR", "NEG", "ROL", "ROR", "TST"}) {
        const std::optional<MnemonicRecord> accumulator = find(stem + "A");
        const std::optional<MnemonicRecord> memory = find(stem + " A");
        ASSERT_TRUE(accumulator && memory) << stem;
        EXPECT_EQ(accumulator->coder, 0) << stem;
        EXPECT_EQ(memory->coder, 3) << stem;
        EXPECT_EQ(accumulator->opcode, memory->opcode) << stem;
    }
}

TEST_F(MnemonicLookup, SynonymsShareTheirOpcodes) {
    EXPECT_EQ(find("BLO")->opcode, 0x28);
    EXPECT_EQ(find("BCS")->opcode, 0x28);
    EXPECT_EQ(find("BCC")->opcode, 0x29);
    EXPECT_EQ(find("BHS")->opcode, 0x29);
    EXPECT_EQ(find("PSHC")->opcode, 0x13);
    EXPECT_EQ(find("PSHCC")->opcode, 0x13);
    EXPECT_EQ(find("PULC")->opcode, 0x17);
    EXPECT_EQ(find("PULCC")->opcode, 0x17);
    EXPECT_EQ(find("ASLA")->opcode, find("LSLA")->opcode);
    EXPECT_EQ(find("ASL")->opcode, find("LSL")->opcode);
}

TEST_F(MnemonicLookup, DaaAndStaShareE0UnderDifferentForms) {
    EXPECT_EQ(find("DAA")->opcode, 0xE0);
    EXPECT_EQ(find("DAA")->mode_mask, ADR_INH);
    EXPECT_EQ(find("STA")->opcode, 0xE0);
    EXPECT_EQ(find("STA")->mode_mask & (ADR_INH | ADR_IMM), 0U);
}

TEST_F(MnemonicLookup, TheTableHoldsExactlyTheseRowsInThisOrder) {
    ASSERT_EQ(optab.size(), kRowCount);
    for (std::size_t i = 0; i < kRowCount; ++i) {
        EXPECT_STREQ(optab[i].mnemonic, kRows[i].mnemonic);
        EXPECT_EQ(optab[i].opcode, kRows[i].opcode) << kRows[i].mnemonic;
        EXPECT_EQ(optab[i].mode_mask, kRows[i].mode_mask) << kRows[i].mnemonic;
        EXPECT_EQ(optab[i].coder, kRows[i].coder) << kRows[i].mnemonic;
    }
}

TEST_F(MnemonicLookup, TwelveLettersBeginNoMnemonic) {
    for (const char letter : std::string("FGHKMQUVWXYZ")) {
        for (const Instruction &row : optab) {
            EXPECT_NE(row.mnemonic[0], letter);
        }
        for (const Row &row : kRows) {
            EXPECT_FALSE(is_found(letter + std::string(row.mnemonic + 1))) << letter;
        }
    }
}

TEST(OperandForms, AreAllModesButTheInherentOneInTheOrderOfTheirBits) {
    std::uint64_t modes = ADR_INH;
    for (const OperandForm &form : operand_forms) {
        EXPECT_GT(form.mode, modes) << form.text;
        modes |= form.mode;
    }
    EXPECT_EQ(modes, 0x1FFF7U);
}

TEST(OperandForms, ShowAnOperandByteWhereTheyCarryOne) {
    for (const OperandForm &form : operand_forms) {
        const bool has_byte = (form.mode & kByteOperandModes) != 0;
        EXPECT_EQ(std::string(form.text).find('n') != std::string::npos, has_byte) << form.text;
    }
}

TEST(OperandForms, AddNothingForEncodersWithoutForms) {
    for (const OperandForm &form : operand_forms) {
        for (const Coder coder : {kCodeInherent, kCodeBranch, kCodeTransfer, kCodeExchange}) {
            EXPECT_EQ(mode_bits(coder, form.mode), 0U) << form.text;
        }
    }
}

TEST(RegisterPairs, BelongToTransfersAndExchanges) {
    EXPECT_EQ(register_pairs(kCodeTransfer).size(), 8U);
    EXPECT_EQ(register_pairs(kCodeExchange).size(), 8U);
    for (const Coder coder :
         {kCodeInherent, kCodeLoadStore, kCodeBranch, kCodeMemory, kCodeByte, kCodeAddress}) {
        EXPECT_TRUE(register_pairs(coder).empty());
    }
}

TEST(AddressingModes, HaveFixedBits) {
    EXPECT_EQ(ADR_INH, 0x1U);
    EXPECT_EQ(ADR_IMM, 0x2U);
    EXPECT_EQ(ADR_ABS, 0x4U);
    EXPECT_EQ(ADR_SP_OFF, 0x10U);
    EXPECT_EQ(ADR_X_OFF, 0x20U);
    EXPECT_EQ(ADR_A_X, 0x40U);
    EXPECT_EQ(ADR_X_POSTINC, 0x80U);
    EXPECT_EQ(ADR_X_POSTDEC, 0x100U);
    EXPECT_EQ(ADR_X_PREINC, 0x200U);
    EXPECT_EQ(ADR_X_PREDEC, 0x400U);
    EXPECT_EQ(ADR_Y_OFF, 0x800U);
    EXPECT_EQ(ADR_A_Y, 0x1000U);
    EXPECT_EQ(ADR_Y_POSTINC, 0x2000U);
    EXPECT_EQ(ADR_Y_POSTDEC, 0x4000U);
    EXPECT_EQ(ADR_Y_PREINC, 0x8000U);
    EXPECT_EQ(ADR_Y_PREDEC, 0x10000U);
    EXPECT_EQ(kByteOperandModes, 0x836U);
}

// ---- From opcodes back ----

// The opcode that a meaning is encoded as, by the rows and forms.
unsigned encoded(const OpcodeMeaning &meaning) {
    const Instruction &row = optab[meaning.row];
    if (const auto pairs = register_pairs(row.coder); !pairs.empty()) {
        return pairs[meaning.form].opcode;
    }
    return meaning.form == kNoMeaning
               ? row.opcode
               : row.opcode | mode_bits(row.coder, operand_forms[meaning.form].mode);
}

TEST(Meanings, EveryOpcodeIsReadAsAnInstructionThatIsEncodedSo) {
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        if (opcode_meanings[opcode].row != kNoMeaning) {
            EXPECT_EQ(encoded(opcode_meanings[opcode]), opcode);
        }
    }
}

TEST(Meanings, FiveOpcodesHaveNoInstruction) {
    std::vector<unsigned> unused;
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        if (opcode_meanings[opcode].row == kNoMeaning) {
            unused.push_back(opcode);
        }
    }
    EXPECT_EQ(unused, (std::vector<unsigned>{0x03, 0x04, 0xDF, 0xEF, 0xFF}));
}

TEST(Meanings, EveryFormOfEveryInstructionIsFoundAgainOrComesAfterOneThatIs) {
    for (std::uint8_t row = 0; row < kInstructions; ++row) {
        for (std::uint8_t form = 0; form < kOperandForms; ++form) {
            if ((optab[row].mode_mask & operand_forms[form].mode) != 0) {
                const OpcodeMeaning &meaning = opcode_meanings[encoded({row, form})];
                EXPECT_LE(meaning.row, row) << optab[row].mnemonic;
                EXPECT_EQ(meaning.form, form) << optab[row].mnemonic;
            }
        }
    }
}

TEST(Meanings, TheFirstOfTwoNamesIsTheUsualOne) {
    const auto name = [](unsigned opcode) {
        return std::string(optab[opcode_meanings[opcode].row].mnemonic);
    };
    EXPECT_EQ(name(0x0B), "ASLA");
    EXPECT_EQ(name(0x3B), "ASL");
    EXPECT_EQ(name(0x13), "PSHC");
    EXPECT_EQ(name(0x17), "PULC");
    EXPECT_EQ(name(0x28), "BCS");
    EXPECT_EQ(name(0x29), "BCC");
    EXPECT_EQ(name(0xE0), "DAA"); // and not the form of STA that no source can write
    EXPECT_EQ(name(0x43), "RTS"); // likewise of JMP and JSR
    EXPECT_EQ(name(0x44), "RTI");
    EXPECT_EQ(opcode_meanings[0x9F].form, 0); // EXG A,CC
}

} // namespace
