// Value emission: the commands that put an operand's value into the program, with their range
// checks.
//
// The commands come from a relocatable design. In this absolute assembler the little- and
// big-endian ones do the same, the instruction encoders use two of them and the rest serve the data
// directives.
#pragma once

#include <cstdint>

struct OperandRecord;

enum RelocCommand : int {
    REL_CMD_OFF_8 = 5,
    REL_CMD_OFF_16 = 6,
    REL_CMD_BEOFF_16 = 7,
    REL_CMD_OFF_32 = 8,
    REL_CMD_BEOFF_32 = 9,
    REL_CMD_OFF_64 = 10,
    REL_CMD_BEOFF_64 = 11,
    REL_CMD_PC_8 = 12,
    REL_CMD_PC_16 = 13,
    REL_CMD_BEPC_16 = 14,
    REL_CMD_PC_32 = 15,
    REL_CMD_BEPC_32 = 16,
    REL_CMD_PC_64 = 17,
    REL_CMD_BEPC_64 = 18,
    REL_CMD_OFF_LOW8 = 19,
    REL_CMD_OFF_HIGH8 = 20,
    REL_CMD_ZIRPA_PC9 = 21,
    REL_CMD_UNDEFINED = 22,
};

// Emits the operand's value by a command; displacements are measured from location plus the
// operand's PC bias. 0 when done, -1 for a command that is not supported. Values out of range are
// reported and emitted truncated.
int do_reloc_cmd(const OperandRecord &operand, int command, std::uint32_t location);

// 1: a branch to the next instruction is legal on this target.
int is_nulldisp_allowed();
