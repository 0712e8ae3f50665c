// The output streams and the end of a run.
#include "as/asOutput.h"
#include "tests/unit/support.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

class Output : public RunTest {
  protected:
    static void create_outputs() {
        ASSERT_TRUE(create_output(objectfile, "a.s19", OldFile::kRewritten));
        ASSERT_TRUE(create_output(listfile, "a.lst", OldFile::kReplaced));
        ASSERT_TRUE(create_output(algofile, "a_cout.c", OldFile::kReplaced));
        ASSERT_TRUE(create_output(zirpafile, "a.fmem", OldFile::kReplaced));
    }
};

TEST_F(Output, NewRunClosesWhatAnEarlierRunLeftOpen) {
    create_outputs();
    objectfile.put("S9\n");
    symdebfile = "SY\n";
    output_new_run();
    EXPECT_FALSE(objectfile.is_open());
    EXPECT_FALSE(listfile.is_open());
    EXPECT_FALSE(algofile.is_open());
    EXPECT_FALSE(zirpafile.is_open());
    EXPECT_EQ(symdebfile, "");
    EXPECT_TRUE(standard_output.is_open());
    EXPECT_FALSE(file_exists("a.s19"));
}

TEST_F(Output, NewRunForgetsTheFailuresOfAnEarlierOne) {
    ASSERT_TRUE(create_output(listfile, "/dev/full", OldFile::kReplaced));
    listfile.put("text");
    output_new_run();
    EXPECT_FALSE(listfile.has_failed());
}

TEST_F(Output, AbandonedOutputsAreClosedAndTheRecordsDeleted) {
    write_file("a.s19", "old");
    create_outputs();
    objectfile.put("one");
    listfile.put("two");
    algofile.put("three");
    zirpafile.put("four");
    abandon_outputs();
    EXPECT_FALSE(file_exists("a.s19"));
    EXPECT_EQ(read_text("a.lst"), "two");
    EXPECT_EQ(read_text("a_cout.c"), "three");
    EXPECT_EQ(read_text("a.fmem"), "four");
}

// What is not open is not this run's.
TEST_F(Output, AbandonedRunWithoutRecordsDeletesNone) {
    write_file("a.s19", "old");
    ASSERT_TRUE(objectfile.destination().look_up("a.s19", OldFile::kRewritten));
    abandon_outputs();
    EXPECT_EQ(read_text("a.s19"), "old");
}

TEST_F(Output, EndOfARunGoesThroughTheHookWithItsStatus) {
    EXPECT_EQ(end_status([] { end_run(0); }), 0);
    EXPECT_EQ(end_status([] { end_run(255); }), 255);
}

TEST_F(Output, EndOfARunWritesOutEveryBuffer) {
    create_outputs();
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
