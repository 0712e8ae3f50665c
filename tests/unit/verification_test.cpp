// What is said of a source that is not what the program says.
#include "dis/verification.h"

#include <gtest/gtest.h>

namespace {

// A program of one byte, 01 at 10.
dis::Program one_byte() {
    dis::Program program;
    EXPECT_TRUE(program.image.set(0x10, 0x01));
    return program;
}

TEST(Verification, FindsNoDifference) {
    EXPECT_EQ(dis::difference(" ORG $10\n FCB 1\n", one_byte()), "");
}

TEST(Verification, ComparesBytesAndAddresses) {
    EXPECT_NE(dis::difference(" ORG $10\n FCB 2\n", one_byte()).find("at 10"), std::string::npos);
    EXPECT_NE(dis::difference(" ORG $11\n FCB 1\n", one_byte()).find("at 10"), std::string::npos);
    EXPECT_NE(dis::difference(" ORG $10\n FCB 1,2\n", one_byte()).find("at 11"), std::string::npos);
}

TEST(Verification, ComparesTheStart) {
    dis::Program program = one_byte();
    program.entry = 0x11;
    EXPECT_EQ(dis::difference(" ORG $10\n FCB 1\n", program), "it starts at 10, not 11");
}

TEST(Verification, ShowsTheFirstError) {
    EXPECT_EQ(dis::difference(" ORG $10\n FCB 1\n NONE\n", one_byte()).substr(0, 8), "line 3: ");
}

TEST(Verification, RefusesAddressesThatNoProgramHas) {
    const std::string found = dis::difference(" ORG $12345\n FCB 1\n", one_byte());
    EXPECT_NE(found.find("FFFF"), std::string::npos) << found;
}

} // namespace
