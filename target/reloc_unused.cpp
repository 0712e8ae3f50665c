// The names are those under which a relocatable object would hold the commands; this assembler
// writes no object.
#include "target/reloc_unused.h"

#include "as/asDiag.h"
#include "target/reloc.h"
#include "util/bitsize.h"

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

} // namespace

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

int checkopsize(std::int64_t value, int size) {
    switch (size) {
    case 1: return fits_byte(value) ? 0 : 1;
    case 2: return fits_word(value) ? 0 : 1;
    case 4: return 0;
    default: Error("(F1017)"); return -1;
    }
}
