// The directives that put bytes into the program: FCB, FCS and RMB.
//
// Each also records how much data follows a label, for the types of debug records.
#pragma once

#include <cstdint>

// ---- State owned here ----

extern std::int64_t reservation_limit; // largest block in bytes: 2^32, unless a run is to be short

// ---- Functions ----

// FCB: a list of byte values. 1, or -1 after an error.
int do_define_data();

// FCS: a string in delimiters, with a 0 byte after it if terminate is set. 1 before the final
// pass, 2 in it, or -1 after an error.
int do_define_characters(char delimiter, int terminate);

// RMB: as many zero units as the operand says; unit is in bytes. Always -1.
int do_reserve_memory(int unit);
