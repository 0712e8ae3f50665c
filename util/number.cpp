// All bases and widths are read by one loop in 64 bits; what differs is which signs and prefixes
// are taken off first, and that is spelled out function by function.
#include "util/number.h"

#include "util/text.h"

namespace {

constexpr int kHexadecimal = 16;
constexpr int kDecimal = 10;
constexpr int kBinary = 2;

bool ends_field(char ch) { return isblanc(ch) || ch == ':'; }

// Reads digits up to the field's end; no digit at all is the value 0. A number that is too wide
// wraps around: the fields come from a compiler and hold what fits.
int read_digits(const char *p, unsigned base, std::uint64_t &magnitude) {
    std::uint64_t sum = 0;
    for (; !ends_field(*p); ++p) {
        const unsigned digit = digit_value(*p);
        if (digit >= base) {
            return -1;
        }
        sum = sum * base + digit;
    }
    magnitude = sum;
    return 0;
}

const char *skip_hex_prefix(const char *p) {
    if (*p == '$') {
        return p + 1;
    }
    return p[0] == '0' && (p[1] == 'x' || p[1] == 'X') ? p + 2 : p;
}

std::uint32_t value_of(const NumberField &field) {
    return static_cast<std::uint32_t>(field.is_negative ? 0 - field.magnitude : field.magnitude);
}

} // namespace

int base_to_number(const char *text, std::uint32_t &value, int base) {
    NumberField field;
    if (read_signed_field(text, base, field) != 0) {
        return -1;
    }
    value = value_of(field);
    return 0;
}

int ascii_to_number(const char *text, std::uint32_t &value) {
    NumberField field;
    if (read_chosen_field(text, false, field) != 0) {
        return -1;
    }
    value = value_of(field);
    return 0;
}

int read_field(const char *text, int base, std::uint64_t &magnitude) {
    if (base == kHexadecimal) {
        return read_digits(skip_hex_prefix(text), kHexadecimal, magnitude);
    }
    return read_digits(text, base == kDecimal ? kDecimal : kBinary, magnitude);
}

int read_signed_field(const char *text, int base, NumberField &field) {
    if (*text == '\0') {
        return -1;
    }
    field.is_negative = *text == '-';
    return read_field(field.is_negative ? text + 1 : text, base, field.magnitude);
}

int read_chosen_field(const char *text, bool sign_after_prefix, NumberField &field) {
    field.is_negative = *text == '-';
    if (field.is_negative) {
        return read_digits(text + 1, kDecimal, field.magnitude);
    }
    // Only the lower-case "x" opens hexadecimal here; "0X1F" is decimal text and fails.
    const bool prefix_0x = text[0] == '0' && text[1] == 'x';
    if (prefix_0x || *text == '$') {
        const char *p = text + (prefix_0x ? 2 : 1);
        field.is_negative = sign_after_prefix && *p == '-';
        return read_digits(field.is_negative ? p + 1 : p, kHexadecimal, field.magnitude);
    }
    return is_digit(*text) ? read_digits(text, kDecimal, field.magnitude) : -1;
}
