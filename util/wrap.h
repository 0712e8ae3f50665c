// Two's-complement arithmetic that wraps, done on unsigned types so that it is defined for every
// value.
#pragma once

#include <cstdint>

constexpr std::int64_t wrap_add(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrap_subtract(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrap_multiply(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

constexpr std::int64_t wrap_negate(std::int64_t a) { return wrap_subtract(0, a); }

// Truncates toward zero; b is not 0. The most negative value divided by -1 is itself.
constexpr std::int64_t wrap_divide(std::int64_t a, std::int64_t b) {
    return b == -1 ? wrap_negate(a) : a / b;
}

// The remainder of that division; b is not 0.
constexpr std::int64_t wrap_remainder(std::int64_t a, std::int64_t b) {
    return b == -1 ? 0 : a % b;
}

// Shifts by count modulo 64; the right shift copies the sign. Quirk (shift-modulo): so 1<<64 is 1,
// and negative counts are counted down from 64.
constexpr std::int64_t shift_left(std::int64_t a, std::int64_t count) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a)
                                     << (static_cast<std::uint64_t>(count) & 63U));
}

constexpr std::int64_t shift_right(std::int64_t a, std::int64_t count) {
    return a >> (static_cast<std::uint64_t>(count) & 63U);
}

// The low 32 bits, as an unsigned and as a signed number.
constexpr std::uint32_t low_32(std::int64_t a) { return static_cast<std::uint32_t>(a); }

constexpr std::int32_t signed_32(std::int64_t a) { return static_cast<std::int32_t>(low_32(a)); }
