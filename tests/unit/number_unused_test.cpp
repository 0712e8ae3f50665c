// The 64-bit conversions of numeric fields.
#include "util/number_unused.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace {

constexpr std::uint64_t kUntouched64 = 0xDEADBEEFDEADBEEF;
constexpr std::int64_t kUntouchedSigned = -1234567890123;

using Value64 = std::optional<std::uint64_t>;
using SignedValue = std::optional<std::int64_t>;

// Each of these gives the value, or nothing after checking that a failure is -1 and stores nothing.
Value64 unsigned_64(const std::string &text, int base) {
    std::uint64_t value = kUntouched64;
    const int result = to_ulonglong(text.c_str(), value, base);
    std::uint64_t other_value = kUntouched64;
    EXPECT_EQ(base_to_ulonglong(text.c_str(), other_value, base), result) << text;
    EXPECT_EQ(other_value, value) << text;
    if (result == 0) {
        return value;
    }
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(value, kUntouched64) << text;
    return {};
}

SignedValue signed_64(const std::string &text, int base) {
    std::int64_t value = kUntouchedSigned;
    const int result = base_to_longlong(text.c_str(), value, base);
    if (result == 0) {
        return value;
    }
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(value, kUntouchedSigned) << text;
    return {};
}

SignedValue chosen_64(const std::string &text) {
    std::int64_t value = kUntouchedSigned;
    const int result = ascii_to_longlong(text.c_str(), value);
    if (result == 0) {
        return value;
    }
    EXPECT_EQ(result, -1) << text;
    EXPECT_EQ(value, kUntouchedSigned) << text;
    return {};
}

const std::string k63Ones(63, '1');
const std::string k64Ones(64, '1');
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

// ---- to_ulonglong, base_to_ulonglong ----

TEST(ToUlonglong, ReadsEachBaseIn64Bits) {
    EXPECT_EQ(unsigned_64("FFFFFFFFffffffff", 16), Value64(~std::uint64_t{0}));
    EXPECT_EQ(unsigned_64("18446744073709551615", 10), Value64(~std::uint64_t{0}));
    EXPECT_EQ(unsigned_64(k64Ones, 2), Value64(~std::uint64_t{0}));
    EXPECT_EQ(unsigned_64("101", 8), Value64(5));
}

TEST(ToUlonglong, AcceptsEachHexadecimalPrefix) {
    EXPECT_EQ(unsigned_64("$1F", 16), Value64(31));
    EXPECT_EQ(unsigned_64("0x1F", 16), Value64(31));
    EXPECT_EQ(unsigned_64("0X1F", 16), Value64(31));
}

TEST(ToUlonglong, AcceptsNoSign) {
    for (const int base : {16, 10, 2}) {
        EXPECT_EQ(unsigned_64("-1", base), Value64()) << base;
    }
}

TEST(ToUlonglong, WrapsSilentlyAt64Bits) {
    EXPECT_EQ(unsigned_64("18446744073709551616", 10), Value64(0));
    EXPECT_EQ(unsigned_64("10000000000000001", 16), Value64(1));
}

TEST(ToUlonglong, FollowsTheFieldRules) {
    EXPECT_EQ(unsigned_64("", 10), Value64());
    EXPECT_EQ(unsigned_64(":", 10), Value64(0));
    EXPECT_EQ(unsigned_64("12:3", 10), Value64(12));
    EXPECT_EQ(unsigned_64("12 3", 10), Value64(12));
    EXPECT_EQ(unsigned_64("12A", 10), Value64());
    EXPECT_EQ(unsigned_64("1G", 16), Value64());
    EXPECT_EQ(unsigned_64("12", 2), Value64());
}

// ---- base_to_longlong ----

TEST(BaseToLonglong, FailsFromTwoToThe63Up) {
    EXPECT_EQ(signed_64("9223372036854775807", 10), SignedValue(kLargest));
    EXPECT_EQ(signed_64("9223372036854775808", 10), SignedValue());
    EXPECT_EQ(signed_64("7FFFFFFFFFFFFFFF", 16), SignedValue(kLargest));
    EXPECT_EQ(signed_64("8000000000000000", 16), SignedValue());
    EXPECT_EQ(signed_64(k63Ones, 2), SignedValue(kLargest));
    EXPECT_EQ(signed_64(k64Ones, 2), SignedValue());
}

TEST(BaseToLonglong, ALeadingMinusNegates) {
    EXPECT_EQ(signed_64("-10", 10), SignedValue(-10));
    EXPECT_EQ(signed_64("-10", 16), SignedValue(-16));
    EXPECT_EQ(signed_64("-$10", 16), SignedValue(-16));
    EXPECT_EQ(signed_64("-10", 2), SignedValue(-2));
}

TEST(BaseToLonglong, TheLimitHoldsForTheMagnitude) {
    EXPECT_EQ(signed_64("-9223372036854775807", 10), SignedValue(-kLargest));
    EXPECT_EQ(signed_64("-9223372036854775808", 10), SignedValue());
}

TEST(BaseToLonglong, FollowsTheFieldRules) {
    EXPECT_EQ(signed_64("", 10), SignedValue());
    EXPECT_EQ(signed_64("12:3", 10), SignedValue(12));
    EXPECT_EQ(signed_64("12;3", 10), SignedValue());
    EXPECT_EQ(signed_64("0X1F", 16), SignedValue(31));
}

// ---- ascii_to_longlong ----

TEST(AsciiToLonglong, AMinusMayFollowAHexadecimalPrefix) {
    EXPECT_EQ(chosen_64("$-10"), SignedValue(-16));
    EXPECT_EQ(chosen_64("0x-10"), SignedValue(-16));
    EXPECT_EQ(chosen_64("$10"), SignedValue(16));
    EXPECT_EQ(chosen_64("0x10"), SignedValue(16));
}

TEST(AsciiToLonglong, ChoosesTheBaseFromTheText) {
    EXPECT_EQ(chosen_64("-5"), SignedValue(-5));
    EXPECT_EQ(chosen_64("-$5"), SignedValue());
    EXPECT_EQ(chosen_64("-0x5"), SignedValue());
    EXPECT_EQ(chosen_64("010"), SignedValue(10));
    EXPECT_EQ(chosen_64("0X10"), SignedValue());
    EXPECT_EQ(chosen_64("12:3"), SignedValue(12));
    EXPECT_EQ(chosen_64("-:"), SignedValue(0));
    EXPECT_EQ(chosen_64("4294967296"), SignedValue(4294967296));
}

TEST(AsciiToLonglong, FailsForAMagnitudeWithItsTopBitInEveryForm) {
    EXPECT_EQ(chosen_64("9223372036854775807"), SignedValue(kLargest));
    EXPECT_EQ(chosen_64("9223372036854775808"), SignedValue());
    EXPECT_EQ(chosen_64("09223372036854775808"), SignedValue());
    EXPECT_EQ(chosen_64("-9223372036854775807"), SignedValue(-kLargest));
    EXPECT_EQ(chosen_64("-9223372036854775808"), SignedValue());
    EXPECT_EQ(chosen_64("$7FFFFFFFFFFFFFFF"), SignedValue(kLargest));
    EXPECT_EQ(chosen_64("$8000000000000000"), SignedValue());
    EXPECT_EQ(chosen_64("$-8000000000000000"), SignedValue());
    EXPECT_EQ(chosen_64("0x8000000000000000"), SignedValue());
    EXPECT_EQ(chosen_64("0x-8000000000000000"), SignedValue());
}

TEST(AsciiToLonglong, AnythingElseFails) {
    for (const char *text : {"", "abc", ":", " 5", "%101", "12A", "$1G", "$--1"}) {
        EXPECT_EQ(chosen_64(text), SignedValue()) << text;
    }
}

} // namespace
