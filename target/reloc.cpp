#include "target/reloc.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "target/emit.h"
#include "target/operand.h"
#include "util/wrap.h"

#include <array>
#include <cstring>

namespace {

struct RelocEntry {
    std::uint32_t id;
    const char *name;
};

constexpr std::array<RelocEntry, 18> reloc_table = {{
    {REL_CMD_OFF_8, "REL_CMD_OFF_8"},
    {REL_CMD_OFF_16, "REL_CMD_OFF_16"},
    {REL_CMD_BEOFF_16, "REL_CMD_BEOFF_16"},
    {REL_CMD_OFF_32, "REL_CMD_OFF_32"},
    {REL_CMD_BEOFF_32, "REL_CMD_BEOFF_32"},
    {REL_CMD_OFF_64, "REL_CMD_OFF_64"},
    {REL_CMD_BEOFF_64, "REL_CMD_BEOFF_64"},
    {REL_CMD_PC_8, "REL_CMD_PC_8"},
    {REL_CMD_PC_16, "REL_CMD_PC_16"},
    {REL_CMD_BEPC_16, "REL_CMD_BEPC_16"},
    {REL_CMD_PC_32, "REL_CMD_PC_32"},
    {REL_CMD_BEPC_32, "REL_CMD_BEPC_32"},
    {REL_CMD_PC_64, "REL_CMD_PC_64"},
    {REL_CMD_BEPC_64, "REL_CMD_BEPC_64"},
    {REL_CMD_OFF_LOW8, "REL_CMD_OFF_LOW8"},
    {REL_CMD_OFF_HIGH8, "REL_CMD_OFF_HIGH8"},
    {REL_CMD_ZIRPA_PC9, "REL_CMD_ZIRPA_PC9"},
    {REL_CMD_UNDEFINED, "UNDEFINED"},
}};

bool is_between(std::int64_t value, std::int64_t low, std::int64_t high) {
    return value >= low && value <= high;
}

bool fits_byte(std::int64_t value) { return is_between(value, -256, 255); }

bool fits_word(std::int64_t value) { return is_between(value, -32768, 65535); }

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

int get_reloc_id(const char *name) {
    for (const RelocEntry &entry : reloc_table) {
        if (std::strcmp(entry.name, name) == 0) {
            return static_cast<int>(entry.id);
        }
    }
    return -1;
}

const char *get_reloc_typename(int id) {
    for (const RelocEntry &entry : reloc_table) {
        if (static_cast<int>(entry.id) == id) {
            return entry.name;
        }
    }
    return nullptr;
}

int is_nulldisp_allowed() { return 1; }

int checkopsize(std::int64_t value, int size) {
    switch (size) {
    case 1: return fits_byte(value) ? 0 : 1;
    case 2: return fits_word(value) ? 0 : 1;
    case 4: return 0;
    default: Error("(F1017)"); return -1;
    }
}

int bitsize(std::int64_t value) {
    if (value == 0) {
        return 0;
    }
    if (is_between(value, -16, 15)) {
        return 5;
    }
    if (is_between(value, -128, 127)) {
        return 8;
    }
    if (is_between(value, -256, 255)) {
        return 9;
    }
    return is_between(value, -32768, 32767) ? 16 : 32;
}
