// S-records: the program as lines of hexadecimal digits, for loaders and simulators.
//
// There is no head. Each record that emission has finished is a line; the end record names the
// address at which the program starts.
#pragma once

#include "target/emit.h"
#include "util/output.h"

#include <cstdint>

// ---- State owned here ----

extern OutputFile objectfile; // open from pass 1 to close-down

// ---- Functions ----

// Writes a record's line: type, length, address and data, checksum.
void put_srecord(const Record &record);

// Writes what is left of the data, and the end record.
void end_srecords(std::uint32_t entry);
