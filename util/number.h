// Numeric fields: bare numbers outside expressions, such as those of debugger lines.
//
// A field ends at a byte of 32 or below, at a colon or at the end of the text; anything else that
// is no digit of the base makes the conversion fail. The functions print nothing.
#pragma once

#include <cstdint>

// Every function below returns 0 and stores the value, or returns -1 and leaves the value alone.

// 32 bits, base 16, 10 or (anything else) 2; a leading "-" negates; wraps silently. Base 16 accepts
// a prefix "0x", "0X" or "$".
int base_to_number(const char *text, std::uint32_t &value, int base);

// 32 bits, the base chosen by the text: "-" decimal, "0x" and "$" hexadecimal, a digit decimal.
int ascii_to_number(const char *text, std::uint32_t &value);

// 64 bits, no sign; the base as in base_to_number.
int to_ulonglong(const char *text, std::uint64_t &value, int base);
int base_to_ulonglong(const char *text, std::uint64_t &value, int base);

// 64 bits, a leading "-" negates; a magnitude of 2^63 or more fails.
int base_to_longlong(const char *text, std::int64_t &value, int base);

// 64 bits, the base chosen as in ascii_to_number; after "0x" and "$" a "-" negates too; a magnitude
// of 2^63 or more fails.
int ascii_to_longlong(const char *text, std::int64_t &value);
