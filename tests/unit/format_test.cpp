// Numbers to text.
#include "util/format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

std::string hex(std::uint64_t value, unsigned min_digits) {
    NumberText text;
    return std::string(hex_text(text, value, min_digits));
}

std::string decimal(std::int64_t value) {
    NumberText text;
    return std::string(decimal_text(text, value));
}

TEST(HexText, PadsWithZeros) {
    EXPECT_EQ(hex(0, 1), "0");
    EXPECT_EQ(hex(0, 4), "0000");
    EXPECT_EQ(hex(0xA, 2), "0A");
    EXPECT_EQ(hex(0xAB, 4), "00AB");
    EXPECT_EQ(hex(0, 16), "0000000000000000");
}

TEST(HexText, GrowsBeyondTheMinimum) {
    EXPECT_EQ(hex(0xFFFF, 4), "FFFF");
    EXPECT_EQ(hex(0x10000, 4), "10000");
    EXPECT_EQ(hex(0x123456789ABCDEF0, 1), "123456789ABCDEF0");
    EXPECT_EQ(hex(~std::uint64_t{0}, 16), "FFFFFFFFFFFFFFFF");
}

TEST(DecimalText, WritesEverySign) {
    EXPECT_EQ(decimal(0), "0");
    EXPECT_EQ(decimal(7), "7");
    EXPECT_EQ(decimal(-7), "-7");
    EXPECT_EQ(decimal(1234567890), "1234567890");
    EXPECT_EQ(decimal(-10), "-10");
}

TEST(DecimalText, HoldsTheExtremes) {
    EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(NumberText, IsWrittenIntoTheCallersBuffer) {
    NumberText text;
    const std::string_view written = decimal_text(text, 42);
    EXPECT_GE(written.data(), text.data());
    EXPECT_LE(written.data() + written.size(), text.data() + text.size());
}

} // namespace
