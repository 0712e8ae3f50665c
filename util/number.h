// Numeric fields: bare numbers outside expressions, such as those of debugger lines.
//
// A field ends at a byte of 32 or below, at a colon or at the end of the text; anything else that
// is no digit of the base makes the conversion fail. The functions print nothing. The 64-bit ones,
// which this assembler does not call, are in util/number_unused.h and read fields by the same code.
#pragma once

#include <cstdint>

// Every function below returns 0 and stores the value, or returns -1 and leaves the value alone.

// ---- The conversions ----

// 32 bits, base 16, 10 or (anything else) 2; a leading "-" negates; wraps silently. Base 16 accepts
// a prefix "0x", "0X" or "$".
int base_to_number(const char *text, std::uint32_t &value, int base);

// 32 bits, the base chosen by the text: "-" decimal, "0x" and "$" hexadecimal, a digit decimal.
int ascii_to_number(const char *text, std::uint32_t &value);

// ---- What they and the 64-bit ones are made of ----

// A field's digits in 64 bits, and whether a "-" stood ahead of them. The digits wrap silently; the
// low 32 bits are the same as those of a 32-bit accumulation.
struct NumberField {
    bool is_negative = false;
    std::uint64_t magnitude = 0;
};

// Reads the digits of a field without a sign. Base 16 skips its prefix.
int read_field(const char *text, int base, std::uint64_t &magnitude);

// Reads a field that may begin with "-". An empty text fails; a "-" alone is 0, like any field
// without digits.
int read_signed_field(const char *text, int base, NumberField &field);

// Reads a field whose text chooses the base. After "0x" and "$" a "-" is accepted where
// sign_after_prefix says so.
int read_chosen_field(const char *text, bool sign_after_prefix, NumberField &field);
