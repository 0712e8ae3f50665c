#include "target/encode.h"

#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "target/emit.h"
#include "target/operand.h"
#include "target/optab.h"
#include "target/reloc.h"
#include "target/scan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

int isinstruction = 0;

namespace {

constexpr int kFault = -1;

// What a mode adds to the base opcode.
struct ModeOpcode {
    std::uint64_t mode;
    std::uint8_t bits;
};

constexpr std::array<ModeOpcode, 15> kLoadStoreModes = {{
    {ADR_IMM, 0},
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
    {ADR_Y_PREDEC, 14},
}};

constexpr std::array<ModeOpcode, 6> kMemoryModes = {{
    {ADR_ABS, 0x30},
    {ADR_SP_OFF, 0x40},
    {ADR_X_OFF, 0x50},
    {ADR_A_X, 0x60},
    {ADR_Y_OFF, 0x70},
    {ADR_A_Y, 0x80},
}};

constexpr std::array<ModeOpcode, 5> kByteModes = {{
    {ADR_IMM, 0x90},
    {ADR_ABS, 0xA0},
    {ADR_SP_OFF, 0xB0},
    {ADR_X_OFF, 0xC0},
    {ADR_Y_OFF, 0xD0},
}};

constexpr std::array<ModeOpcode, 3> kLeaModes = {{
    {ADR_X_OFF, 0xC0},
    {ADR_Y_OFF, 0xC0},
    {ADR_SP_OFF, 0xD0},
}};

// A register pair and its opcode.
struct RegisterPair {
    int first;
    int second;
    std::uint16_t opcode;
};

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

// What each mode adds, by the number of its bit; 0 for modes without a row.
using ModeBits = std::array<std::uint8_t, std::bit_width(std::uint64_t{ADR_Y_PREDEC})>;

template <std::size_t count> consteval ModeBits by_mode(const std::array<ModeOpcode, count> &rows) {
    ModeBits bits{};
    for (const ModeOpcode &row : rows) {
        bits[static_cast<std::size_t>(std::countr_zero(row.mode))] = row.bits;
    }
    return bits;
}

constexpr ModeBits kLoadStoreBits = by_mode(kLoadStoreModes);
constexpr ModeBits kMemoryBits = by_mode(kMemoryModes);
constexpr ModeBits kByteBits = by_mode(kByteModes);
constexpr ModeBits kLeaBits = by_mode(kLeaModes);

bool mode_is_allowed() { return (opnd1.mode & mp->mode_mask) != 0; }

// The common encoder: opcode byte, then the operand byte of the forms that carry one.
int code_operand(const ModeBits &bits) {
    if (Parse_Operand(opnd1) != 0) {
        return fail("Syntax Error");
    }
    if (!mode_is_allowed()) {
        return fail("Illegal Addressing Mode");
    }
    ebyte(mp->opcode | bits[static_cast<std::size_t>(std::countr_zero(opnd1.mode))]);
    return (opnd1.mode & kByteOperandModes) != 0 ? do_reloc_cmd(opnd1, REL_CMD_OFF_8, LC) : 0;
}

template <typename Pairs> int code_register_pair(const Pairs &pairs) {
    int first = 0;
    int second = 0;
    if (ParseReglist(first, second) == 0) {
        return fail("Bad register pair");
    }
    const auto *pair = std::find_if(pairs.begin(), pairs.end(), [=](const RegisterPair &row) {
        return row.first == first && row.second == second;
    });
    if (pair == pairs.end()) {
        return fail("Illegal register combination");
    }
    mp->opcode = pair->opcode;
    ebyte(mp->opcode);
    return 1;
}

} // namespace

int coder0() {
    ebyte(mp->opcode);
    return 1;
}

int coder1() { return code_operand(kLoadStoreBits); }

// Quirk (branch-messages): the branches word their faults differently from all other instructions,
// and tools that read messages know both wordings.
int coder2() {
    if (Parse_Operand(opnd1) != 0) {
        return fail("Bad operand syntax");
    }
    if (!mode_is_allowed()) {
        return fail("Illegal addressing mode");
    }
    ebyte(mp->opcode);
    opnd1.pc_bias = 1;
    return do_reloc_cmd(opnd1, REL_CMD_PC_8, LC);
}

int coder3() { return code_operand(kMemoryBits); }

int coder4() { return code_operand(kByteBits); }

int coder5() { return code_register_pair(kTransferPairs); }

int coder6() { return code_register_pair(kExchangePairs); }

int coder7() { return code_operand(kLeaBits); }

int CodeLine() {
    static constexpr std::array<int (*)(), 8> kCoders = {coder0, coder1, coder2, coder3,
                                                         coder4, coder5, coder6, coder7};
    if (mp->coder >= kCoders.size()) {
        return fail("(F1016)");
    }
    const int result = kCoders[mp->coder]();
    if (result == kFault) {
        drop_listed_bytes();
    }
    // Quirk (text-after-operand): the rest of the line is a comment, with a ";" or without.
    SkipLine();
    if (Pass2 != 0 && O_symdebug != 0) {
        isinstruction = 1;
    }
    return result;
}
