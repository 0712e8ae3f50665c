// The C array: the bytes of the program, without their addresses, as the initialiser of an array
// for programs that load it themselves.
#pragma once

#include "util/output.h"

#include <cstdint>

// Values of a row.
inline constexpr unsigned kArrayRowValues = 16;

// ---- State owned here ----

extern OutputFile algofile;    // open only with -A, from pass 1 to close-down
extern unsigned algofilecount; // values on the current row; reset when the array begins

// ---- Functions ----

// Writes the line with the declaration.
void begin_array();

// Adds the low 8 bits as a value.
void put_array_value(std::uint32_t value);

// Ends the last row and the array.
void end_array();
