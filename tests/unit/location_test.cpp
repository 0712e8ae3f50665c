// The location counters.
#include "target/location.h"
#include "tests/unit/support.h"

namespace {

using Location = RunTest;

TEST_F(Location, NewPassBeginsAtZero) {
    LC = 5;
    dotLC = 3;
    location_new_pass();
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(dotLC, 0U);
}

} // namespace
