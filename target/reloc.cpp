// A value out of range is reported, but its low bits are emitted all the same, so that the passes
// agree on the size of the statement.
#include "target/reloc.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "expr/record.h"
#include "target/emit.h"
#include "util/bitsize.h"
#include "util/wrap.h"

namespace {

// The check takes the low 32 bits as a signed number: $FFFFFF00 is -256 and fits, like the negative
// literal that it may have been.
void emit_offset_8(std::int64_t value) {
    ebyte(low_32(value));
    if (!fits_byte(signed_32(value))) {
        vpError("Value (0x%X) is truncated", low_32(value));
    }
}

void emit_offset_16(std::int64_t value) {
    eshort(low_32(value));
    if (!fits_word(value)) {
        Warning("Word (16 bit) sized operand/data truncated");
    }
}

void report_displacement(std::int64_t displacement) {
    vpError("Displacement (0x%X) is out of range", low_32(displacement));
}

void emit_displacement_8(std::int64_t displacement) {
    if (Pass2 != 0) {
        if (displacement == 0 && is_nulldisp_allowed() == 0) {
            Error("Short branch displacement is zero");
        } else if (!is_between(displacement, -128, 127)) {
            report_displacement(displacement);
        }
    }
    ebyte(low_32(displacement));
}

void emit_displacement_16(std::int64_t displacement) {
    if (Pass2 != 0 && !fits_word(displacement)) {
        report_displacement(displacement);
    }
    eshort(low_32(displacement));
}

} // namespace

int do_reloc_cmd(const OperandRecord &operand, int command, std::uint32_t location) {
    const std::int64_t value = operand.value;
    // Measured in 64 bits and not modulo the address space, so a branch never wraps around it.
    const std::int64_t displacement =
        wrap_subtract(value, static_cast<std::int64_t>(location) + operand.pc_bias);
    // The commands named for either byte order emit the most significant byte first.
    switch (command) {
    case REL_CMD_OFF_8: emit_offset_8(value); return 0;
    case REL_CMD_OFF_16:
    case REL_CMD_BEOFF_16: emit_offset_16(value); return 0;
    case REL_CMD_OFF_32:
    case REL_CMD_BEOFF_32: elong(low_32(value)); return 0;
    case REL_CMD_PC_8: emit_displacement_8(displacement); return 0;
    case REL_CMD_PC_16:
    case REL_CMD_BEPC_16: emit_displacement_16(displacement); return 0;
    case REL_CMD_PC_32:
    case REL_CMD_BEPC_32: elong(low_32(displacement)); return 0;
    case REL_CMD_OFF_LOW8:
    case REL_CMD_OFF_HIGH8:
    case REL_CMD_ZIRPA_PC9: return 0;
    default: return -1;
    }
}

int is_nulldisp_allowed() { return 1; }
