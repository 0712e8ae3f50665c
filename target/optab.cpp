#include "target/optab.h"

#include "as/asPlace.h"
#include "util/text.h"

#include <array>

namespace {

// Sets of operand forms.
constexpr std::uint64_t kInherent = ADR_INH;
constexpr std::uint64_t kImmediate = ADR_IMM;
constexpr std::uint64_t kBranch = ADR_ABS;
constexpr std::uint64_t kByteOperand = kByteOperandModes;
constexpr std::uint64_t kMemory = ADR_ABS | ADR_SP_OFF | ADR_X_OFF | ADR_A_X | ADR_Y_OFF | ADR_A_Y;
constexpr std::uint64_t kJump = ADR_ABS | ADR_X_OFF | ADR_A_X | ADR_Y_OFF | ADR_A_Y;
constexpr std::uint64_t kAutoX = ADR_X_POSTINC | ADR_X_POSTDEC | ADR_X_PREINC | ADR_X_PREDEC;
constexpr std::uint64_t kAutoY = ADR_Y_POSTINC | ADR_Y_POSTDEC | ADR_Y_PREINC | ADR_Y_PREDEC;
constexpr std::uint64_t kStore = kMemory | kAutoX | kAutoY;
constexpr std::uint64_t kLoad = kStore | ADR_IMM;
constexpr std::uint64_t kCompareIndex = ADR_IMM | ADR_ABS | ADR_SP_OFF;
constexpr std::uint64_t kCompareStack = ADR_IMM | ADR_ABS;
constexpr std::uint64_t kLeaX = ADR_SP_OFF | ADR_X_OFF;
constexpr std::uint64_t kLeaY = ADR_SP_OFF | ADR_Y_OFF;
constexpr std::uint64_t kLeaStack = ADR_SP_OFF | ADR_X_OFF | ADR_Y_OFF;
static_assert(kMemory == 0x1874 && kJump == 0x1864 && kLoad == 0x1fff6 && kStore == 0x1fff4);
static_assert(kCompareIndex == 0x16 && kCompareStack == 0x6);
static_assert(kLeaX == 0x30 && kLeaY == 0x810 && kLeaStack == 0x830);

constexpr InstructionEntry kEnd = {nullptr, 0, 0, 0};

// Quirk (shared-opcodes): several mnemonics share an opcode, which no disassembler can tell apart,
// and DAA's is that of STA's unused immediate form.
//
// Rows: mnemonic without its first letter, base opcode, operand forms, encoder. The order within a
// letter is the order of the search.
// clang-format off
constexpr InstructionEntry opNoneentry[] = {
    kEnd,
};
constexpr InstructionEntry opaentry[] = {
    {"dca",  0x05, kByteOperand,   4}, // ADCA
    {"dda",  0x06, kByteOperand,   4}, // ADDA
    {"nda",  0x09, kByteOperand,   4}, // ANDA
    {"ndcc", 0x01, kImmediate,     1}, // ANDCC
    {"sla",  0x0B, kInherent,      0}, // ASLA
    {"sra",  0x0F, kInherent,      0}, // ASRA
    {"sl",   0x0B, kMemory,        3}, // ASL
    {"sr",   0x0F, kMemory,        3}, // ASR
    kEnd,
};
constexpr InstructionEntry opbentry[] = {
    {"sr",   0x20, kBranch,        2}, // BSR
    {"ra",   0x21, kBranch,        2}, // BRA
    {"mi",   0x22, kBranch,        2}, // BMI
    {"pl",   0x23, kBranch,        2}, // BPL
    {"eq",   0x24, kBranch,        2}, // BEQ
    {"ne",   0x25, kBranch,        2}, // BNE
    {"vs",   0x26, kBranch,        2}, // BVS
    {"vc",   0x27, kBranch,        2}, // BVC
    {"cs",   0x28, kBranch,        2}, // BCS
    {"lo",   0x28, kBranch,        2}, // BLO
    {"cc",   0x29, kBranch,        2}, // BCC
    {"hs",   0x29, kBranch,        2}, // BHS
    {"hi",   0x2A, kBranch,        2}, // BHI
    {"ls",   0x2B, kBranch,        2}, // BLS
    {"gt",   0x2C, kBranch,        2}, // BGT
    {"ge",   0x2D, kBranch,        2}, // BGE
    {"le",   0x2E, kBranch,        2}, // BLE
    {"lt",   0x2F, kBranch,        2}, // BLT
    {"ita",  0x08, kByteOperand,   4}, // BITA
    kEnd,
};
constexpr InstructionEntry opcentry[] = {
    {"lra",  0x05, kInherent,      0}, // CLRA
    {"lr",   0x05, kMemory,        3}, // CLR
    {"mpa",  0x07, kByteOperand,   4}, // CMPA
    {"oma",  0x0A, kInherent,      0}, // COMA
    {"om",   0x0A, kMemory,        3}, // COM
    {"mpx",  0x0C, kCompareIndex,  4}, // CMPX
    {"mpy",  0x0D, kCompareIndex,  4}, // CMPY
    {"mpsp", 0x0E, kCompareStack,  4}, // CMPSP
    kEnd,
};
constexpr InstructionEntry opdentry[] = {
    {"eca",  0x08, kInherent,      0}, // DECA
    {"ec",   0x08, kMemory,        3}, // DEC
    {"aa",   0xE0, kInherent,      0}, // DAA
    kEnd,
};
constexpr InstructionEntry opeentry[] = {
    {"ora",  0x0B, kByteOperand,   4}, // EORA
    {"xg",   0x00, kInherent,      6}, // EXG
    kEnd,
};
constexpr InstructionEntry opientry[] = {
    {"nca",  0x07, kInherent,      0}, // INCA
    {"nc",   0x07, kMemory,        3}, // INC
    kEnd,
};
constexpr InstructionEntry opjentry[] = {
    {"mp",   0x03, kJump,          3}, // JMP
    {"sr",   0x04, kJump,          3}, // JSR
    kEnd,
};
constexpr InstructionEntry oplentry[] = {
    {"sla",  0x0B, kInherent,      0}, // LSLA
    {"sra",  0x0C, kInherent,      0}, // LSRA
    {"sl",   0x0B, kMemory,        3}, // LSL
    {"sr",   0x0C, kMemory,        3}, // LSR
    {"da",   0xF0, kLoad,          1}, // LDA
    {"dx",   0x00, kByteOperand,   4}, // LDX
    {"dy",   0x01, kByteOperand,   4}, // LDY
    {"dsp",  0x02, kByteOperand,   4}, // LDSP
    {"eax",  0x0C, kLeaX,          7}, // LEAX
    {"eay",  0x0D, kLeaY,          7}, // LEAY
    {"easp", 0x0E, kLeaStack,      4}, // LEASP
    kEnd,
};
constexpr InstructionEntry opnentry[] = {
    {"ega",  0x06, kInherent,      0}, // NEGA
    {"eg",   0x06, kMemory,        3}, // NEG
    {"op",   0x00, kInherent,      0}, // NOP
    kEnd,
};
constexpr InstructionEntry opoentry[] = {
    {"ra",   0x0A, kByteOperand,   4}, // ORA
    {"rcc",  0x02, kImmediate,     1}, // ORCC
    kEnd,
};
constexpr InstructionEntry oppentry[] = {
    {"sha",  0x10, kInherent,      0}, // PSHA
    {"shx",  0x11, kInherent,      0}, // PSHX
    {"shy",  0x12, kInherent,      0}, // PSHY
    {"shc",  0x13, kInherent,      0}, // PSHC
    {"shcc", 0x13, kInherent,      0}, // PSHCC
    {"ula",  0x14, kInherent,      0}, // PULA
    {"ulx",  0x15, kInherent,      0}, // PULX
    {"uly",  0x16, kInherent,      0}, // PULY
    {"ulc",  0x17, kInherent,      0}, // PULC
    {"ulcc", 0x17, kInherent,      0}, // PULCC
    kEnd,
};
constexpr InstructionEntry oprentry[] = {
    {"ola",  0x0D, kInherent,      0}, // ROLA
    {"ora",  0x0E, kInherent,      0}, // RORA
    {"ol",   0x0D, kMemory,        3}, // ROL
    {"or",   0x0E, kMemory,        3}, // ROR
    {"ts",   0x43, kInherent,      0}, // RTS
    {"ti",   0x44, kInherent,      0}, // RTI
    kEnd,
};
constexpr InstructionEntry opsentry[] = {
    {"bca",  0x03, kByteOperand,   4}, // SBCA
    {"uba",  0x04, kByteOperand,   4}, // SUBA
    {"ta",   0xE0, kStore,         1}, // STA
    {"tx",   0x00, kMemory,        3}, // STX
    {"ty",   0x01, kMemory,        3}, // STY
    {"tsp",  0x02, kMemory,        3}, // STSP
    kEnd,
};
constexpr InstructionEntry optentry[] = {
    {"fr",   0x00, kInherent,      5}, // TFR
    {"sta",  0x09, kInherent,      0}, // TSTA
    {"st",   0x09, kMemory,        3}, // TST
    kEnd,
};
// clang-format on

} // namespace

// clang-format off
constexpr const InstructionEntry *const optab[kLetters] = {
    opaentry,    opbentry,    opcentry,    opdentry,    opeentry,    opNoneentry, opNoneentry,
    opNoneentry, opientry,    opjentry,    opNoneentry, oplentry,    opNoneentry, opnentry,
    opoentry,    oppentry,    opNoneentry, oprentry,    opsentry,    optentry,    opNoneentry,
    opNoneentry, opNoneentry, opNoneentry, opNoneentry, opNoneentry,
};
// clang-format on

MnemonicRecord mnemonic;
MnemonicRecord *mp = &mnemonic;

namespace {

// ---- The index of the table: a row is found at once instead of by a search along its letter ----

// A mnemonic as a number, its first character lowest, in lower case.
// The rest of the row is copied: a pointer would have to be relocated at each start.
struct IndexedRow {
    std::uint64_t word = 0; // 0: none
    MnemonicRecord record{};
};

constexpr unsigned kIndexBits = 8;
using RowIndex = std::array<IndexedRow, std::size_t{1} << kIndexBits>;

// The place at which a word is looked for first.
constexpr std::size_t first_place(std::uint64_t word) {
    return static_cast<std::size_t>(word * 0x9E3779B97F4A7C15U >> (64U - kIndexBits));
}

constexpr std::size_t next_place(std::size_t place) {
    return (place + 1) % (std::size_t{1} << kIndexBits);
}

consteval RowIndex make_index() {
    RowIndex index{};
    for (std::size_t letter = 0; letter < kLetters; ++letter) {
        for (const InstructionEntry *row = optab[letter]; row->key != 0; ++row) {
            const std::uint64_t word = ('a' + letter) | std::uint64_t{row->key} << 8U;
            std::size_t place = first_place(word);
            while (index[place].word != 0 && index[place].word != word) {
                place = next_place(place);
            }
            if (index[place].word == 0) { // the first of two rows counts
                index[place] = {word,
                                {static_cast<std::uint16_t>(row->opcode), row->mode_mask,
                                 static_cast<std::uint16_t>(row->coder)}};
            }
        }
    }
    return index;
}

constexpr RowIndex kRowIndex = make_index();

// The row of a word, or one without a word.
const IndexedRow &find_row(std::uint64_t word) {
    std::size_t place = first_place(word);
    while (kRowIndex[place].word != word && kRowIndex[place].word != 0) {
        place = next_place(place);
    }
    return kRowIndex[place];
}

} // namespace

int ZIRPA_getmnem(MnemonicRecord *record) {
    const std::uint64_t characters = eight_characters(Col_Ptr);
    const unsigned length = nonblanks_ahead(characters);
    const char *word = Col_Ptr++;
    if (length == 0 || length > 1 + kTailLimit) {
        return 0;
    }
    // Letters of either case are equal, and no other character becomes a lower-case letter by the
    // bit that is set.
    const std::uint64_t mask = (std::uint64_t{1} << 8 * length) - 1;
    const IndexedRow &row = find_row((characters | 0x2020202020202020U) & mask);
    if (row.word == 0) {
        return 0;
    }
    *record = row.record;
    Col_Ptr = word + length;
    return 1;
}
