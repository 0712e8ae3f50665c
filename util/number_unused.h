// The 64-bit conversions of numeric fields, which this assembler does not call: the numbers of
// debugger lines fit 32 bits. Kept beside the others because both read fields by the same rules.
#pragma once

#include <cstdint>

// Every function below returns 0 and stores the value, or returns -1 and leaves the value alone.

// No sign; the base as in base_to_number. Wraps silently.
int to_ulonglong(const char *text, std::uint64_t &value, int base);
int base_to_ulonglong(const char *text, std::uint64_t &value, int base);

// A leading "-" negates; a magnitude of 2^63 or more fails.
int base_to_longlong(const char *text, std::int64_t &value, int base);

// The base chosen as in ascii_to_number; after "0x" and "$" a "-" negates too; a magnitude
// of 2^63 or more fails.
int ascii_to_longlong(const char *text, std::int64_t &value);
