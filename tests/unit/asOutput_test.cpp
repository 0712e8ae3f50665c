// The output streams and the end of a run.
#include "as/asOutput.h"
#include "tests/unit/support.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

class Output : public RunTest {};

TEST_F(Output, NewRunClosesWhatAnEarlierRunLeftOpen) {
    ASSERT_TRUE(objectfile.create("a.s19"));
    ASSERT_TRUE(listfile.create("a.lst"));
    ASSERT_TRUE(algofile.create("a_cout.c"));
    ASSERT_TRUE(zirpafile.create("a.fmem"));
    objectfile.put("S9\n");
    symdebfile = "SY\n";
    output_new_run();
    EXPECT_FALSE(objectfile.is_open());
    EXPECT_FALSE(listfile.is_open());
    EXPECT_FALSE(algofile.is_open());
    EXPECT_FALSE(zirpafile.is_open());
    EXPECT_EQ(symdebfile, "");
    EXPECT_TRUE(standard_output.is_open());
}

TEST_F(Output, EndOfARunGoesThroughTheHookWithItsStatus) {
    EXPECT_EQ(end_status([] { end_run(0); }), 0);
    EXPECT_EQ(end_status([] { end_run(255); }), 255);
}

TEST_F(Output, EndOfARunWritesOutEveryBuffer) {
    ASSERT_TRUE(objectfile.create("a.s19"));
    ASSERT_TRUE(listfile.create("a.lst"));
    ASSERT_TRUE(algofile.create("a_cout.c"));
    ASSERT_TRUE(zirpafile.create("a.fmem"));
    objectfile.put("one");
    listfile.put("two");
    algofile.put("three");
    zirpafile.put("four");
    standard_output.put("five");
    EXPECT_EQ(end_status([] { end_run(1); }), 1);
    EXPECT_EQ(read_text("a.s19"), "one");
    EXPECT_EQ(read_text("a.lst"), "two");
    EXPECT_EQ(read_text("a_cout.c"), "three");
    EXPECT_EQ(read_text("a.fmem"), "four");
    EXPECT_EQ(take_output(), "five");
}

using OutputDeathTest = Output;

TEST_F(OutputDeathTest, EndOfARunLeavesTheProcessWithItsStatus) {
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT((end_run_hook = nullptr, end_run(3)), ::testing::ExitedWithCode(3), "");
    EXPECT_EXIT((end_run_hook = nullptr, end_run(255)), ::testing::ExitedWithCode(255), "");
}

TEST_F(OutputDeathTest, LeavingTheProcessWritesOutEveryBuffer) {
    GTEST_FLAG_SET(death_test_style, "fast");
    const auto leave = [] {
        end_run_hook = nullptr;
        standard_output.attach(STDERR_FILENO);
        standard_output.put("last words");
        end_run(1);
    };
    EXPECT_EXIT(leave(), ::testing::ExitedWithCode(1), "last words");
}

} // namespace
