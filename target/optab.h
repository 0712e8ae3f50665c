// The instruction table: all that is known about the processor's instructions, and the look-up of
// their mnemonics.
//
// It reads like a data sheet. A row of optab holds a mnemonic, the operand forms that it takes, its
// base opcode and its encoder; a row of operand_forms says how a form is written and what each
// encoder adds to the base opcode for it; register_pairs has the opcodes of the instructions that
// take two registers. Encoders, documents and everything else that needs an opcode ask here, so an
// instruction is added or corrected in one place.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// Operand forms, one bit each; bit 0x8 is not assigned.
enum AddressingMode : std::uint64_t {
    ADR_INH = 0x1,          // none, or a register pair
    ADR_IMM = 0x2,          // #n
    ADR_ABS = 0x4,          // n
    ADR_SP_OFF = 0x10,      // n,SP
    ADR_X_OFF = 0x20,       // n,X
    ADR_A_X = 0x40,         // A,X
    ADR_X_POSTINC = 0x80,   // ,X+
    ADR_X_POSTDEC = 0x100,  // ,X-
    ADR_X_PREINC = 0x200,   // ,+X
    ADR_X_PREDEC = 0x400,   // ,-X
    ADR_Y_OFF = 0x800,      // n,Y
    ADR_A_Y = 0x1000,       // A,Y
    ADR_Y_POSTINC = 0x2000, // ,Y+
    ADR_Y_POSTDEC = 0x4000, // ,Y-
    ADR_Y_PREINC = 0x8000,  // ,+Y
    ADR_Y_PREDEC = 0x10000, // ,-Y
};

// The forms that carry an operand byte; all others are encoded in the opcode alone.
inline constexpr std::uint64_t kByteOperandModes =
    ADR_IMM | ADR_ABS | ADR_SP_OFF | ADR_X_OFF | ADR_Y_OFF;
static_assert(kByteOperandModes == 0x836);

// The encoders by what they are for; the number is that of the function, coder0 to coder7.
enum Coder : std::uint16_t {
    kCodeInherent = 0,  // the opcode alone
    kCodeLoadStore = 1, // LDA and STA, which take nearly every form, and the masks of CC
    kCodeBranch = 2,    // the opcode and a distance
    kCodeMemory = 3,    // operations on memory, jumps, stores of X, Y and SP
    kCodeByte = 4,      // operations with a byte operand
    kCodeTransfer = 5,  // TFR
    kCodeExchange = 6,  // EXG
    kCodeAddress = 7,   // LEAX, LEAY
};
inline constexpr std::size_t kCoders = 8;

// Coder number of the current mnemonic while there is no instruction.
inline constexpr std::uint16_t kNoCoder = 65535;

// Longest mnemonic, in characters.
inline constexpr std::size_t kMnemonicLimit = 5;

// A row of the table.
struct Instruction {
    char mnemonic[kMnemonicLimit + 1]; // upper case; a pointer would be relocated at each start
    std::uint64_t mode_mask;           // accepted operand forms
    std::uint8_t opcode;               // base opcode
    Coder coder;
};

inline constexpr std::size_t kInstructions = 85;

// All instructions, in alphabetical order by their first letter.
extern const std::array<Instruction, kInstructions> optab;

// An operand form, and what the encoders of instructions with operands add to the base opcode for
// it: 0 where no instruction of theirs takes the form.
struct OperandForm {
    std::uint64_t mode;
    char text[5]; // as it is written, with n for the operand byte
    std::uint8_t load_store;
    std::uint8_t memory;
    std::uint8_t byte;
    std::uint8_t address;
};

inline constexpr std::size_t kOperandForms = 15;

// All forms but that without an operand.
extern const std::array<OperandForm, kOperandForms> operand_forms;

// Two registers, as tokens, and the opcode that stands for them.
struct RegisterPair {
    int first;
    int second;
    std::uint8_t opcode;
};

// What an opcode stands for. Where several instructions or pairs share it, this is the first of
// them in the table: the order of the rows says which of two names is the usual one.
struct OpcodeMeaning {
    std::uint8_t row;  // in optab; kNoMeaning: no instruction has this opcode
    std::uint8_t form; // in operand_forms, or in the pairs of TFR and EXG; kNoMeaning: no operand
};

inline constexpr std::uint8_t kNoMeaning = 255;
static_assert(kInstructions < kNoMeaning && kOperandForms < kNoMeaning);

// Read backwards by disassemblers; the assembler has no use for it.
extern const std::array<OpcodeMeaning, 256> opcode_meanings;

// What a look-up found; TFR and EXG store the opcode they chose here.
struct MnemonicRecord {
    std::uint16_t opcode = 0;
    std::uint64_t mode_mask = 0;
    std::uint16_t coder = kNoCoder;
};

// ---- State owned here ----

extern MnemonicRecord mnemonic; // the current mnemonic
extern MnemonicRecord *mp;      // always points at it

// ---- Functions ----

// Looks up the word at the scan position, in any case. 1 and the record filled, with the scan
// position after the word; or 0, with the scan position one character on.
int ZIRPA_getmnem(MnemonicRecord *record);

// What an encoder adds to the base opcode for the form of that one bit.
unsigned mode_bits(Coder coder, std::uint64_t mode);

// The pairs that an encoder takes; none for encoders without pairs.
std::span<const RegisterPair> register_pairs(Coder coder);
