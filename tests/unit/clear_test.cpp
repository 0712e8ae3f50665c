// Clearing the used part of an array.
#include "util/clear.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

TEST(ClearUsed, LeavesOnlyZeroes) {
    for (std::size_t used = 0; used <= 10; ++used) {
        std::array<int, 10> elements{};
        std::fill_n(elements.begin(), used, 7);
        clear_used<4>(elements, used);
        EXPECT_EQ(elements, (std::array<int, 10>{})) << used;
    }
}

TEST(ClearUsed, MayTakeAllForFew) {
    std::array<int, 4> elements{1, 2, 3, 4};
    clear_used<4>(elements, 4);
    EXPECT_EQ(elements, (std::array<int, 4>{}));
}

} // namespace
