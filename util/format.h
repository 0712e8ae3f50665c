// Numbers to text by hand. The digits are written into a buffer of the caller's; the result is the
// part of it that they take.
#pragma once

#include "util/text.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

inline constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// Room for any 64-bit number, its sign included.
using NumberText = std::array<char, 20>;

consteval std::array<char, 512> make_hex_bytes() {
    std::array<char, 512> digits{};
    for (unsigned value = 0; value < 256; ++value) {
        digits[std::size_t{2} * value] = kHexDigits[value >> 4U];
        digits[std::size_t{2} * value + 1] = kHexDigits[value & 0xFU];
    }
    return digits;
}

// The two digits of each byte, one after the other.
inline constexpr std::array<char, 512> kHexBytes = make_hex_bytes();

// The low 8 bits as two upper-case hexadecimal digits.
constexpr std::string_view hex_byte_text(unsigned value) {
    return {&kHexBytes[std::size_t{2} * (value & 0xFFU)], 2};
}

// Writes those digits; returns the position after them.
inline char *hex_byte(char *text, unsigned value) {
    std::memcpy(text, hex_byte_text(value).data(), 2);
    return text + 2;
}

// Upper-case hexadecimal with at least min_digits (1 to 16) digits, zero-padded.
inline std::string_view hex_text(NumberText &text, std::uint64_t value, unsigned min_digits) {
    std::size_t first = text.size();
    while (value != 0 || text.size() - first < min_digits) {
        text[--first] = kHexDigits[value & 0xFU];
        value >>= 4U;
    }
    return {&text[first], text.size() - first};
}

// Signed decimal.
inline std::string_view decimal_text(NumberText &text, std::int64_t value) {
    return text_between(text.data(), std::to_chars(text.begin(), text.end(), value).ptr);
}
