#include "util/number.h"

#include "util/text.h"

namespace {

constexpr int kHexadecimal = 16;
constexpr int kDecimal = 10;
constexpr int kBinary = 2;
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63U;

bool ends_field(char ch) { return isblanc(ch) || ch == ':'; }

// Reads digits up to the field's end; no digit at all is the value 0. Wraps at 64 bits, of which
// the low 32 are the same as those of a 32-bit accumulation.
int read_digits(const char *p, unsigned base, std::uint64_t &value) {
    std::uint64_t sum = 0;
    for (; !ends_field(*p); ++p) {
        const unsigned digit = digit_value(*p);
        if (digit >= base) {
            return -1;
        }
        sum = sum * base + digit;
    }
    value = sum;
    return 0;
}

const char *skip_hex_prefix(const char *p) {
    if (*p == '$') {
        return p + 1;
    }
    return p[0] == '0' && (p[1] == 'x' || p[1] == 'X') ? p + 2 : p;
}

// The digits of a field of the given base.
int read_field(const char *text, int base, std::uint64_t &value) {
    if (base == kHexadecimal) {
        return read_digits(skip_hex_prefix(text), kHexadecimal, value);
    }
    return read_digits(text, base == kDecimal ? kDecimal : kBinary, value);
}

// An empty text fails; a "-" alone is 0 like any field without digits.
int read_signed(const char *text, int base, bool &negative, std::uint64_t &magnitude) {
    if (*text == '\0') {
        return -1;
    }
    negative = *text == '-';
    return read_field(negative ? text + 1 : text, base, magnitude);
}

// A field whose text chooses the base; after "0x" and "$" a "-" is accepted where sign_after_prefix
// says so.
int read_chosen(const char *text, bool sign_after_prefix, bool &negative, std::uint64_t &value) {
    negative = *text == '-';
    if (negative) {
        return read_digits(text + 1, kDecimal, value);
    }
    // Only the lower-case "x" opens hexadecimal here; "0X1F" is decimal text and fails.
    const bool prefix_0x = text[0] == '0' && text[1] == 'x';
    if (prefix_0x || *text == '$') {
        const char *p = text + (prefix_0x ? 2 : 1);
        negative = sign_after_prefix && *p == '-';
        return read_digits(negative ? p + 1 : p, kHexadecimal, value);
    }
    return is_digit(*text) ? read_digits(text, kDecimal, value) : -1;
}

int store_signed(std::uint64_t magnitude, bool negative, std::int64_t &value) {
    if ((magnitude & kSignBit) != 0) {
        return -1;
    }
    const auto number = static_cast<std::int64_t>(magnitude);
    value = negative ? -number : number;
    return 0;
}

} // namespace

int base_to_number(const char *text, std::uint32_t &value, int base) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (read_signed(text, base, negative, magnitude) != 0) {
        return -1;
    }
    value = static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude);
    return 0;
}

int ascii_to_number(const char *text, std::uint32_t &value) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (read_chosen(text, false, negative, magnitude) != 0) {
        return -1;
    }
    value = static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude);
    return 0;
}

int to_ulonglong(const char *text, std::uint64_t &value, int base) {
    return *text == '\0' ? -1 : read_field(text, base, value);
}

int base_to_ulonglong(const char *text, std::uint64_t &value, int base) {
    return to_ulonglong(text, value, base);
}

int base_to_longlong(const char *text, std::int64_t &value, int base) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (read_signed(text, base, negative, magnitude) != 0) {
        return -1;
    }
    return store_signed(magnitude, negative, value);
}

int ascii_to_longlong(const char *text, std::int64_t &value) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (read_chosen(text, true, negative, magnitude) != 0) {
        return -1;
    }
    return store_signed(magnitude, negative, value);
}
