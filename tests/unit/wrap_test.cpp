// Arithmetic that wraps.
#include "util/wrap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(Wrap, SumsDifferencesAndProductsWrap) {
    EXPECT_EQ(wrap_add(2, -5), -3);
    EXPECT_EQ(wrap_add(kMost, 1), kLeast);
    EXPECT_EQ(wrap_subtract(2, 5), -3);
    EXPECT_EQ(wrap_subtract(kLeast, 1), kMost);
    EXPECT_EQ(wrap_multiply(-3, 5), -15);
    EXPECT_EQ(wrap_multiply(kMost, 2), -2);
    EXPECT_EQ(wrap_multiply(kLeast, -1), kLeast);
}

TEST(Wrap, TheMostNegativeValueIsItsOwnNegation) {
    EXPECT_EQ(wrap_negate(5), -5);
    EXPECT_EQ(wrap_negate(kMost), -kMost);
    EXPECT_EQ(wrap_negate(kLeast), kLeast);
}

TEST(Wrap, DivisionTruncatesTowardZero) {
    EXPECT_EQ(wrap_divide(7, 2), 3);
    EXPECT_EQ(wrap_divide(-7, 2), -3);
    EXPECT_EQ(wrap_divide(7, -2), -3);
    EXPECT_EQ(wrap_divide(-7, -2), 3);
    EXPECT_EQ(wrap_divide(7, -1), -7);
}

TEST(Wrap, TheRemainderHasTheDividendsSign) {
    EXPECT_EQ(wrap_remainder(7, 4), 3);
    EXPECT_EQ(wrap_remainder(-7, 4), -3);
    EXPECT_EQ(wrap_remainder(7, -4), 3);
    EXPECT_EQ(wrap_remainder(7, -1), 0);
}

TEST(Wrap, TheMostNegativeValueDividedByMinus1DoesNotTrap) {
    EXPECT_EQ(wrap_divide(kLeast, -1), kLeast);
    EXPECT_EQ(wrap_remainder(kLeast, -1), 0);
}

TEST(Wrap, ShiftsTakeTheirCountModulo64) {
    EXPECT_EQ(shift_left(1, 0), 1);
    EXPECT_EQ(shift_left(1, 63), kLeast);
    EXPECT_EQ(shift_left(1, 64), 1);
    EXPECT_EQ(shift_left(1, 65), 2);
    EXPECT_EQ(shift_left(1, -1), kLeast);
    EXPECT_EQ(shift_left(-1, 4), -16);
    EXPECT_EQ(shift_right(256, 64), 256);
    EXPECT_EQ(shift_right(256, 68), 16);
    EXPECT_EQ(shift_right(kLeast, -1), -1);
}

TEST(Wrap, TheRightShiftCopiesTheSign) {
    EXPECT_EQ(shift_right(-16, 2), -4);
    EXPECT_EQ(shift_right(-1, 63), -1);
    EXPECT_EQ(shift_right(kMost, 62), 1);
}

TEST(Wrap, TheLow32BitsAreUnsignedOrSigned) {
    EXPECT_EQ(low_32(-1), 0xFFFFFFFFU);
    EXPECT_EQ(low_32(0x123456789), 0x23456789U);
    EXPECT_EQ(signed_32(0x7FFFFFFF), 2147483647);
    EXPECT_EQ(signed_32(0x80000000), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(signed_32(0x1FFFFFFFF), -1);
    EXPECT_EQ(signed_32(0x100000000), 0);
}

} // namespace
