// The ranges of fields and the width classes of values.
#include "util/bitsize.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(Bitsize, AByteHoldsMinus256To255) {
    EXPECT_TRUE(fits_byte(-256));
    EXPECT_TRUE(fits_byte(255));
    EXPECT_FALSE(fits_byte(-257));
    EXPECT_FALSE(fits_byte(256));
}

TEST(Bitsize, AWordHoldsMinus32768To65535) {
    EXPECT_TRUE(fits_word(-32768));
    EXPECT_TRUE(fits_word(65535));
    EXPECT_FALSE(fits_word(-32769));
    EXPECT_FALSE(fits_word(65536));
}

TEST(Bitsize, IsTheSmallestSignedField) {
    const std::vector<std::pair<std::int64_t, int>> sizes = {
        {0, 0},       {1, 5},       {15, 5},      {16, 8},     {127, 8},    {128, 9},
        {255, 9},     {256, 16},    {32767, 16},  {32768, 32}, {kMost, 32}, {-1, 5},
        {-16, 5},     {-17, 8},     {-128, 8},    {-129, 9},   {-256, 9},   {-257, 16},
        {-32768, 16}, {-32769, 32}, {kLeast, 32}, {65535, 32}, {65536, 32}};
    for (const auto &[value, size] : sizes) {
        EXPECT_EQ(bitsize(value), size) << value;
    }
}

} // namespace
