// An encoder reads its operand, checks the form against the instruction's and only then emits: the
// opcode byte first, so that the operand's byte knows its own address. Which bytes these are stands
// in the instruction table; the encoders differ in how an operand is read and how its faults are
// worded.
#include "target/encode.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "expr/record.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/operand.h"
#include "target/optab.h"
#include "target/reloc.h"
#include "target/scan.h"

#include <algorithm>
#include <array>
#include <span>

int isinstruction = 0;

namespace {

constexpr int kFault = -1;

bool mode_is_allowed() { return (opnd1.mode & mp->mode_mask) != 0; }

// The common encoder: opcode byte, then the operand byte of the forms that carry one.
int code_operand(Coder coder) {
    if (Parse_Operand(opnd1) != 0) {
        return fail("Syntax Error");
    }
    if (!mode_is_allowed()) {
        return fail("Illegal Addressing Mode");
    }
    ebyte(mp->opcode | mode_bits(coder, opnd1.mode));
    return (opnd1.mode & kByteOperandModes) != 0 ? do_reloc_cmd(opnd1, REL_CMD_OFF_8, LC) : 0;
}

// The common encoder of register pairs. The opcode goes into mp as well, so that the line is known
// by the instruction that it has become.
int code_register_pair(Coder coder) {
    int first = 0;
    int second = 0;
    if (ParseReglist(first, second) == 0) {
        return fail("Bad register pair");
    }
    const std::span pairs = register_pairs(coder);
    const auto pair = std::find_if(pairs.begin(), pairs.end(), [=](const RegisterPair &row) {
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

// Nothing is read: whatever stands in the operand field is a comment.
int coder0() {
    ebyte(mp->opcode);
    return 1;
}

int coder1() { return code_operand(kCodeLoadStore); }

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
    // The distance counts from the next instruction, one byte after the distance itself.
    opnd1.pc_bias = 1;
    return do_reloc_cmd(opnd1, REL_CMD_PC_8, LC);
}

int coder3() { return code_operand(kCodeMemory); }

int coder4() { return code_operand(kCodeByte); }

int coder5() { return code_register_pair(kCodeTransfer); }

int coder6() { return code_register_pair(kCodeExchange); }

int coder7() { return code_operand(kCodeAddress); }

int CodeLine() {
    static constexpr std::array<int (*)(), kCoders> kFunctions = {coder0, coder1, coder2, coder3,
                                                                  coder4, coder5, coder6, coder7};
    // No row of the table has such a number; a record that no look-up has filled has.
    if (mp->coder >= kFunctions.size()) {
        return fail("(F1016)");
    }
    const int result = kFunctions[mp->coder]();
    // A faulty line shows no bytes in the listing.
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
