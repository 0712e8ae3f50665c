// The instruction table: the definition of the ZIRPA's mnemonics, and their lookup.
//
// Mnemonics are grouped by first letter; a row holds the rest of the mnemonic, the base opcode, the
// set of operand forms that it accepts and the number of its encoder. Rows that share an opcode are
// separate mnemonics on purpose.
#pragma once

#include <cstddef>
#include <cstdint>

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

// Coder number of the current mnemonic while there is no instruction.
inline constexpr std::uint16_t kNoCoder = 65535;

// Longest mnemonic without its first letter, in characters.
inline constexpr std::size_t kTailLimit = 4;

// A row of the table.
struct InstructionEntry {
    consteval InstructionEntry(const char *row_tail, std::uint32_t row_opcode,
                               std::uint64_t row_mode_mask, std::uint32_t row_coder)
        : tail(row_tail), opcode(row_opcode), mode_mask(row_mode_mask), coder(row_coder) {
        for (std::size_t i = 0; row_tail != nullptr && row_tail[i] != '\0'; ++i) {
            key |= static_cast<std::uint32_t>(row_tail[i]) << 8 * i;
        }
    }

    const char *tail;        // mnemonic without its first letter, lower case; none ends a table
    std::uint32_t opcode;    // base opcode, low 8 bits used
    std::uint64_t mode_mask; // accepted operand forms
    std::uint32_t coder;     // 0 to 7
    std::uint32_t key = 0;   // the tail as a number, its first character lowest; 0 ends a table
};

// What a lookup found; TFR and EXG store the opcode they chose here.
struct MnemonicRecord {
    std::uint16_t opcode = 0;
    std::uint64_t mode_mask = 0;
    std::uint16_t coder = kNoCoder;
};

inline constexpr std::size_t kLetters = 26;

// The rows of each letter, a = 0 to z = 25, each table ended by a row without a mnemonic.
extern const InstructionEntry *const optab[kLetters];

// ---- State owned here ----

extern MnemonicRecord mnemonic; // the current mnemonic
extern MnemonicRecord *mp;      // always points at it

// ---- Functions ----

// Looks up the word at the scan position, in any case. 1 and the record filled, with the scan
// position behind the word; or 0, with the scan position one character on.
int ZIRPA_getmnem(MnemonicRecord *record);
