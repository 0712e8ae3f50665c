// The table is written for people: whole mnemonics, forms and encoders by name. What the look-up
// needs besides, the places of the mnemonics and what a form adds by the number of its bit, the
// compiler works out from it, and what each opcode stands for as well, so nothing can be added to
// one and be missing in the other.
#include "target/optab.h"

#include "as/asPlace.h"
#include "target/scan.h"
#include "util/words.h"

#include <bit>

MnemonicRecord mnemonic;
MnemonicRecord *mp = &mnemonic;

namespace {

// Sets of operand forms, each for a family of instructions.
constexpr std::uint64_t kInherent = ADR_INH;
constexpr std::uint64_t kImmediate = ADR_IMM;
constexpr std::uint64_t kBranch = ADR_ABS;
constexpr std::uint64_t kByteOperand = kByteOperandModes;
constexpr std::uint64_t kMemory = ADR_ABS | ADR_SP_OFF | ADR_X_OFF | ADR_A_X | ADR_Y_OFF | ADR_A_Y;
// Jumps have no form relative to SP: those opcodes are RTS and RTI.
constexpr std::uint64_t kJump = ADR_ABS | ADR_X_OFF | ADR_A_X | ADR_Y_OFF | ADR_A_Y;
constexpr std::uint64_t kAutoX = ADR_X_POSTINC | ADR_X_POSTDEC | ADR_X_PREINC | ADR_X_PREDEC;
constexpr std::uint64_t kAutoY = ADR_Y_POSTINC | ADR_Y_POSTDEC | ADR_Y_PREINC | ADR_Y_PREDEC;
constexpr std::uint64_t kStore = kMemory | kAutoX | kAutoY;
constexpr std::uint64_t kLoad = kStore | ADR_IMM;
// Comparisons and address loads of single registers, which miss some of the byte operands.
constexpr std::uint64_t kCompareIndex = ADR_IMM | ADR_ABS | ADR_SP_OFF;
constexpr std::uint64_t kCompareStack = ADR_IMM | ADR_ABS;
constexpr std::uint64_t kLeaX = ADR_SP_OFF | ADR_X_OFF;
constexpr std::uint64_t kLeaY = ADR_SP_OFF | ADR_Y_OFF;
constexpr std::uint64_t kLeaStack = ADR_SP_OFF | ADR_X_OFF | ADR_Y_OFF;
static_assert(kMemory == 0x1874 && kJump == 0x1864 && kLoad == 0x1fff6 && kStore == 0x1fff4);
static_assert(kCompareIndex == 0x16 && kCompareStack == 0x6);
static_assert(kLeaX == 0x30 && kLeaY == 0x810 && kLeaStack == 0x830);

} // namespace

// Quirk (shared-opcodes): several mnemonics share an opcode, which no disassembler can tell apart,
// and DAA's is that of STA's unused immediate form.
//
// clang-format off
constexpr std::array<Instruction, kInstructions> optab = {{
    {"ADCA",  kByteOperand,  0x05, kCodeByte},
    {"ADDA",  kByteOperand,  0x06, kCodeByte},
    {"ANDA",  kByteOperand,  0x09, kCodeByte},
    {"ANDCC", kImmediate,    0x01, kCodeLoadStore},
    {"ASLA",  kInherent,     0x0B, kCodeInherent},
    {"ASRA",  kInherent,     0x0F, kCodeInherent},
    {"ASL",   kMemory,       0x0B, kCodeMemory},
    {"ASR",   kMemory,       0x0F, kCodeMemory},
    {"BSR",   kBranch,       0x20, kCodeBranch},
    {"BRA",   kBranch,       0x21, kCodeBranch},
    {"BMI",   kBranch,       0x22, kCodeBranch},
    {"BPL",   kBranch,       0x23, kCodeBranch},
    {"BEQ",   kBranch,       0x24, kCodeBranch},
    {"BNE",   kBranch,       0x25, kCodeBranch},
    {"BVS",   kBranch,       0x26, kCodeBranch},
    {"BVC",   kBranch,       0x27, kCodeBranch},
    {"BCS",   kBranch,       0x28, kCodeBranch},
    {"BLO",   kBranch,       0x28, kCodeBranch},
    {"BCC",   kBranch,       0x29, kCodeBranch},
    {"BHS",   kBranch,       0x29, kCodeBranch},
    {"BHI",   kBranch,       0x2A, kCodeBranch},
    {"BLS",   kBranch,       0x2B, kCodeBranch},
    {"BGT",   kBranch,       0x2C, kCodeBranch},
    {"BGE",   kBranch,       0x2D, kCodeBranch},
    {"BLE",   kBranch,       0x2E, kCodeBranch},
    {"BLT",   kBranch,       0x2F, kCodeBranch},
    {"BITA",  kByteOperand,  0x08, kCodeByte},
    {"CLRA",  kInherent,     0x05, kCodeInherent},
    {"CLR",   kMemory,       0x05, kCodeMemory},
    {"CMPA",  kByteOperand,  0x07, kCodeByte},
    {"COMA",  kInherent,     0x0A, kCodeInherent},
    {"COM",   kMemory,       0x0A, kCodeMemory},
    {"CMPX",  kCompareIndex, 0x0C, kCodeByte},
    {"CMPY",  kCompareIndex, 0x0D, kCodeByte},
    {"CMPSP", kCompareStack, 0x0E, kCodeByte},
    {"DECA",  kInherent,     0x08, kCodeInherent},
    {"DEC",   kMemory,       0x08, kCodeMemory},
    {"DAA",   kInherent,     0xE0, kCodeInherent},
    {"EORA",  kByteOperand,  0x0B, kCodeByte},
    {"EXG",   kInherent,     0x00, kCodeExchange},
    {"INCA",  kInherent,     0x07, kCodeInherent},
    {"INC",   kMemory,       0x07, kCodeMemory},
    {"JMP",   kJump,         0x03, kCodeMemory},
    {"JSR",   kJump,         0x04, kCodeMemory},
    {"LSLA",  kInherent,     0x0B, kCodeInherent},
    {"LSRA",  kInherent,     0x0C, kCodeInherent},
    {"LSL",   kMemory,       0x0B, kCodeMemory},
    {"LSR",   kMemory,       0x0C, kCodeMemory},
    {"LDA",   kLoad,         0xF0, kCodeLoadStore},
    {"LDX",   kByteOperand,  0x00, kCodeByte},
    {"LDY",   kByteOperand,  0x01, kCodeByte},
    {"LDSP",  kByteOperand,  0x02, kCodeByte},
    {"LEAX",  kLeaX,         0x0C, kCodeAddress},
    {"LEAY",  kLeaY,         0x0D, kCodeAddress},
    {"LEASP", kLeaStack,     0x0E, kCodeByte},
    {"NEGA",  kInherent,     0x06, kCodeInherent},
    {"NEG",   kMemory,       0x06, kCodeMemory},
    {"NOP",   kInherent,     0x00, kCodeInherent},
    {"ORA",   kByteOperand,  0x0A, kCodeByte},
    {"ORCC",  kImmediate,    0x02, kCodeLoadStore},
    {"PSHA",  kInherent,     0x10, kCodeInherent},
    {"PSHX",  kInherent,     0x11, kCodeInherent},
    {"PSHY",  kInherent,     0x12, kCodeInherent},
    {"PSHC",  kInherent,     0x13, kCodeInherent},
    {"PSHCC", kInherent,     0x13, kCodeInherent},
    {"PULA",  kInherent,     0x14, kCodeInherent},
    {"PULX",  kInherent,     0x15, kCodeInherent},
    {"PULY",  kInherent,     0x16, kCodeInherent},
    {"PULC",  kInherent,     0x17, kCodeInherent},
    {"PULCC", kInherent,     0x17, kCodeInherent},
    {"ROLA",  kInherent,     0x0D, kCodeInherent},
    {"RORA",  kInherent,     0x0E, kCodeInherent},
    {"ROL",   kMemory,       0x0D, kCodeMemory},
    {"ROR",   kMemory,       0x0E, kCodeMemory},
    {"RTS",   kInherent,     0x43, kCodeInherent},
    {"RTI",   kInherent,     0x44, kCodeInherent},
    {"SBCA",  kByteOperand,  0x03, kCodeByte},
    {"SUBA",  kByteOperand,  0x04, kCodeByte},
    {"STA",   kStore,        0xE0, kCodeLoadStore},
    {"STX",   kMemory,       0x00, kCodeMemory},
    {"STY",   kMemory,       0x01, kCodeMemory},
    {"STSP",  kMemory,       0x02, kCodeMemory},
    {"TFR",   kInherent,     0x00, kCodeTransfer},
    {"TSTA",  kInherent,     0x09, kCodeInherent},
    {"TST",   kMemory,       0x09, kCodeMemory},
}};

// LEAX and LEAY add the same for an index register as for the other one: what they accept keeps them
// apart.
constexpr std::array<OperandForm, kOperandForms> operand_forms = {{
    // form         text    load_store memory byte address
    {ADR_IMM,       "#n",   0x00,      0,     0x90, 0},
    {ADR_ABS,       "n",    0x01,      0x30,  0xA0, 0},
    {ADR_SP_OFF,    "n,SP", 0x02,      0x40,  0xB0, 0xD0},
    {ADR_X_OFF,     "n,X",  0x03,      0x50,  0xC0, 0xC0},
    {ADR_A_X,       "A,X",  0x04,      0x60,  0,    0},
    {ADR_X_POSTINC, ",X+",  0x05,      0,     0,    0},
    {ADR_X_POSTDEC, ",X-",  0x06,      0,     0,    0},
    {ADR_X_PREINC,  ",+X",  0x07,      0,     0,    0},
    {ADR_X_PREDEC,  ",-X",  0x08,      0,     0,    0},
    {ADR_Y_OFF,     "n,Y",  0x09,      0x70,  0xD0, 0xC0},
    {ADR_A_Y,       "A,Y",  0x0A,      0x80,  0,    0},
    {ADR_Y_POSTINC, ",Y+",  0x0B,      0,     0,    0},
    {ADR_Y_POSTDEC, ",Y-",  0x0C,      0,     0,    0},
    {ADR_Y_PREINC,  ",+Y",  0x0D,      0,     0,    0},
    {ADR_Y_PREDEC,  ",-Y",  0x0E,      0,     0,    0},
}};
// clang-format on

namespace {

// The order counts: from the first register to the second one.
constexpr std::array<RegisterPair, 8> kTransferPairs = {{
    {TOK_A, TOK_CC, 0x18},
    {TOK_CC, TOK_A, 0x19},
    {TOK_X, TOK_Y, 0x1A},
    {TOK_Y, TOK_X, 0x1B},
    {TOK_X, TOK_SP, 0x1C},
    {TOK_SP, TOK_X, 0x1D},
    {TOK_Y, TOK_SP, 0x1E},
    {TOK_SP, TOK_Y, 0x1F},
}};

// An exchange means the same in either order.
constexpr std::array<RegisterPair, 8> kExchangePairs = {{
    {TOK_A, TOK_CC, 0x9F},
    {TOK_CC, TOK_A, 0x9F},
    {TOK_X, TOK_Y, 0xAF},
    {TOK_Y, TOK_X, 0xAF},
    {TOK_X, TOK_SP, 0xBF},
    {TOK_SP, TOK_X, 0xBF},
    {TOK_Y, TOK_SP, 0xCF},
    {TOK_SP, TOK_Y, 0xCF},
}};

constexpr std::size_t bit_number(std::uint64_t mode) {
    return static_cast<std::size_t>(std::countr_zero(mode));
}

// What each form adds, by the number of its bit.
using ModeBits = std::array<std::uint8_t, std::bit_width(std::uint64_t{ADR_Y_PREDEC})>;

consteval std::array<ModeBits, kCoders> bits_by_coder() {
    std::array<ModeBits, kCoders> bits{};
    for (const OperandForm &form : operand_forms) {
        const std::size_t number = bit_number(form.mode);
        bits[kCodeLoadStore][number] = form.load_store;
        bits[kCodeMemory][number] = form.memory;
        bits[kCodeByte][number] = form.byte;
        bits[kCodeAddress][number] = form.address;
    }
    return bits;
}

constexpr std::array<ModeBits, kCoders> kBitsByCoder = bits_by_coder();

constexpr std::span<const RegisterPair> pairs_of(Coder coder) {
    switch (coder) {
    case kCodeTransfer: return kTransferPairs;
    case kCodeExchange: return kExchangePairs;
    default: return {};
    }
}

// ---- From opcodes back to instructions ----

// Calls visit with the opcode and the meaning of each form of each instruction, in the order of the
// rows.
template <typename Visit> constexpr void visit_encodings(const Visit &visit) {
    for (std::size_t i = 0; i < kInstructions; ++i) {
        const Instruction &row = optab[i];
        const auto number = static_cast<std::uint8_t>(i);
        const std::span<const RegisterPair> pairs = pairs_of(row.coder);
        for (std::size_t pair = 0; pair < pairs.size(); ++pair) {
            visit(pairs[pair].opcode, OpcodeMeaning{number, static_cast<std::uint8_t>(pair)});
        }
        if (pairs.empty() && row.mode_mask == ADR_INH) {
            visit(row.opcode, OpcodeMeaning{number, kNoMeaning});
        }
        for (std::size_t form = 0; form < kOperandForms; ++form) {
            const std::uint64_t mode = operand_forms[form].mode;
            if ((row.mode_mask & mode) != 0) {
                visit(row.opcode | kBitsByCoder[row.coder][bit_number(mode)],
                      OpcodeMeaning{number, static_cast<std::uint8_t>(form)});
            }
        }
    }
}

consteval std::array<OpcodeMeaning, 256> meanings_of_opcodes() {
    std::array<OpcodeMeaning, 256> meanings{};
    for (OpcodeMeaning &meaning : meanings) {
        meaning = {kNoMeaning, kNoMeaning};
    }
    visit_encodings([&](unsigned opcode, const OpcodeMeaning &found) {
        if (meanings[opcode].row == kNoMeaning) {
            meanings[opcode] = found;
        }
    });
    return meanings;
}

constexpr bool has_operand_byte(const OpcodeMeaning &meaning) {
    return pairs_of(optab[meaning.row].coder).empty() && meaning.form != kNoMeaning &&
           (operand_forms[meaning.form].mode & kByteOperandModes) != 0;
}

// Instructions that share an opcode must be of one length, or no reader could tell where the next
// one begins.
consteval bool lengths_agree() {
    bool agree = true;
    visit_encodings([&](unsigned opcode, const OpcodeMeaning &found) {
        agree = agree && has_operand_byte(meanings_of_opcodes()[opcode]) == has_operand_byte(found);
    });
    return agree;
}

static_assert(lengths_agree());

constexpr WordTable<kInstructions, 10> kMnemonics(optab.data(), &Instruction::mnemonic);

} // namespace

constexpr std::array<OpcodeMeaning, 256> opcode_meanings = meanings_of_opcodes();

int ZIRPA_getmnem(MnemonicRecord *record) {
    const Word word = word_at(Col_Ptr);
    const std::size_t row = kMnemonics.find(word.key);
    if (row == kInstructions) {
        ++Col_Ptr;
        return 0;
    }
    *record = {optab[row].opcode, optab[row].mode_mask, optab[row].coder};
    Col_Ptr = word.end;
    return 1;
}

unsigned mode_bits(Coder coder, std::uint64_t mode) {
    return kBitsByCoder[coder][bit_number(mode)];
}

std::span<const RegisterPair> register_pairs(Coder coder) { return pairs_of(coder); }
