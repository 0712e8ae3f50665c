// Debug records: text lines that let a debugger map addresses to source lines and find symbols.
//
// They gather in symdebfile during the final pass, one for each instruction and those that ".stab"
// lines of a compiler ask for, and follow the end record of the S-record file. Every record names
// the file being read and the current segment.
#pragma once

#include <cstdint>

// Makes room for the records of a source of that many lines, so that they need not be moved as they
// grow in number.
void reserve_debug_records(int lines);

// Records that an instruction or statement stands at an address.
void asm_write_sd_exec(int line, std::int32_t count, std::uint32_t address);

// Carries out the ".stab" line in Line, with its continuation lines where it has any.
void ProcessStab();
