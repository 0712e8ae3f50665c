// Two programs side by side.
#include "dis/comparison.h"

#include <gtest/gtest.h>

namespace {

dis::Listing listing_of(const std::vector<unsigned> &bytes) {
    dis::Program program;
    std::uint32_t address = 0x10;
    for (const unsigned byte : bytes) {
        EXPECT_TRUE(program.image.set(address++, static_cast<std::uint8_t>(byte)));
    }
    return dis::list(std::move(program), {});
}

std::string compared(const std::vector<unsigned> &first, const std::vector<unsigned> &second) {
    const dis::Listing one = listing_of(first);
    const dis::Listing other = listing_of(second);
    const dis::Comparison comparison = dis::compare(one, other);
    EXPECT_EQ(comparison.is_same(), first == second);
    return dis::text_of(comparison, one, other);
}

TEST(Comparisons, FindTheSame) {
    EXPECT_EQ(compared({0xF0, 0x05, 0x43}, {0xF0, 0x05, 0x43}), "2 the same\n");
    EXPECT_EQ(compared({}, {}), "no bytes\n");
}

TEST(Comparisons, FindAChangedOperand) {
    EXPECT_EQ(compared({0xF0, 0x05, 0x43}, {0xF0, 0x06, 0x43}),
              "~ 10  LDA   #5                          10  LDA   #6\n"
              "1 changed, 1 the same\n");
}

TEST(Comparisons, FindWhatIsNewAndWhatHasMovedWithIt) {
    // CLRA is put in; the branch to 11 leads to 12 now, and is the same.
    EXPECT_EQ(compared({0x00, 0x07, 0x21, 0xFD}, {0x00, 0x05, 0x07, 0x21, 0xFD}),
              "> " + std::string(38, ' ') +
                  "11  CLRA\n"
                  "@ 11-13 to 12-14\n"
                  "1 new, 2 moved, 1 the same\n");
}

TEST(Comparisons, FindABranchThatLeadsElsewhere) {
    // NOP, INCA, BRA 11; to 10 in the other.
    EXPECT_EQ(compared({0x00, 0x07, 0x21, 0xFD}, {0x00, 0x07, 0x21, 0xFC}),
              "~ 12  BRA   L11                         12  BRA   L10\n"
              "1 changed, 2 the same\n");
}

TEST(Comparisons, FindABranchToTheEndThatIsTheSame) {
    // BRA 12; what stands there differs, and nothing that is the same comes after it.
    EXPECT_EQ(compared({0x21, 0x00, 0x07}, {0x21, 0x00, 0x05}),
              "~ 12  INCA                              12  CLRA\n"
              "1 changed, 1 the same\n");
}

TEST(Comparisons, FindWhatIsTheSameBetweenChanges) {
    // CLRA, INCA; NOP, CLRA, RTS: the CLRA has moved.
    const std::string text = compared({0x05, 0x07}, {0x00, 0x05, 0x43});
    EXPECT_NE(text.find("10  NOP\n"), std::string::npos) << text;
    EXPECT_NE(text.find("@ 10 to 11\n"), std::string::npos) << text;
    EXPECT_NE(text.find("~ 11  INCA"), std::string::npos) << text;
}

// To find what is alike in the middle takes steps for each pair; of so many nothing is looked for.
TEST(Comparisons, OfLongMiddlesCallEverythingChanged) {
    std::vector<unsigned> first(5000, 0x00);
    std::vector<unsigned> second(5000, 0x07);
    first[2500] = 0x05;
    second[2501] = 0x05;
    const std::string text = compared(first, second);
    EXPECT_EQ(text.find('@'), std::string::npos);
    EXPECT_NE(text.find("5000 changed"), std::string::npos) << text.substr(text.size() - 100);
}

TEST(Comparisons, ShowDataInLines) {
    EXPECT_EQ(compared({0x43, 1, 2, 3}, {0x43, 4, 5, 3}),
              "~ 11  FCB   $01,$02                     11  FCB   $04,$05\n"
              "2 changed, 2 the same\n");
    EXPECT_EQ(compared({0x43, 1, 2, 3}, {0x43}), "< 11  FCB   $01,$02,$03\n"
                                                 "3 removed, 1 the same\n");
}

TEST(Comparisons, SayThatTheStartIsAnother) {
    const dis::Listing one = listing_of({0x43, 0x43});
    dis::Listing other = listing_of({0x43, 0x43});
    other.program.entry = 0x11;
    const dis::Comparison comparison = dis::compare(one, other);
    EXPECT_FALSE(comparison.is_same());
    EXPECT_EQ(dis::text_of(comparison, one, other).substr(0, 18), "~ start 10 to 11\n2");
}

} // namespace
