// What size of field a value needs: the ranges that operands and data items are held against, and
// the width class that a constant is recorded with.
#pragma once

#include <cstdint>

constexpr bool is_between(std::int64_t value, std::int64_t low, std::int64_t high) {
    return value >= low && value <= high;
}

// Both readings of a byte, signed and unsigned; down to -256, so that the complement of any byte
// (~$FF is -256) is accepted as one.
constexpr bool fits_byte(std::int64_t value) { return is_between(value, -256, 255); }

// Both readings of a word.
constexpr bool fits_word(std::int64_t value) { return is_between(value, -32768, 65535); }

// The smallest signed field that holds a value, in bits: 0, 5, 8, 9, 16 or 32 (and 32 for all
// that need more).
constexpr int bitsize(std::int64_t value) {
    if (value == 0) {
        return 0;
    }
    if (is_between(value, -16, 15)) {
        return 5;
    }
    if (is_between(value, -128, 127)) {
        return 8;
    }
    if (is_between(value, -256, 255)) {
        return 9;
    }
    return is_between(value, -32768, 32767) ? 16 : 32;
}
