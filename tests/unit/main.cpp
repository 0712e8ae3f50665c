// Runs the unit tests: all of them, or those of the modules that the arguments name. Tests belong
// to a module by their file, <module>_test.cpp, so a new test needs no list.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

// A filter for the tests of one file, empty if there are none.
std::string tests_of(const std::string &module) {
    const ::testing::UnitTest &all = *::testing::UnitTest::GetInstance();
    std::string filter;
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const ::testing::TestSuite &suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const ::testing::TestInfo &test = *suite.GetTestInfo(j);
            if (std::filesystem::path(test.file()).stem() == module + "_test") {
                filter += std::string(test.test_suite_name()) + "." + test.name() + ":";
            }
        }
    }
    return filter;
}

} // namespace

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::string filter;
    for (int i = 1; i < argc; ++i) {
        const std::string tests = tests_of(argv[i]);
        if (tests.empty()) {
            std::fprintf(stderr, "there is no unit test of a module %s\n", argv[i]);
            return 2;
        }
        filter += tests;
    }
    if (!filter.empty()) {
        ::testing::GTEST_FLAG(filter) = filter;
    }
    return RUN_ALL_TESTS();
}
