// What the design of value emission has and this assembler does not call: the commands' names,
// which a relocatable object file would show, and the size check of a data form that no word leads
// to. Tested like all others; nothing else includes this file.
#pragma once

#include <cstdint>

// The id of a command's name, or -1.
int get_reloc_id(const char *name);

// The name of a command's id, or null.
const char *get_reloc_typename(int id);

// 0 when a value fits a data item of 1, 2 or 4 bytes, 1 when it does not; any other size is
// reported as "(F1017)" and gives -1.
int checkopsize(std::int64_t value, int size);
