// Hints, as options and files have them.
#include "dis/hints.h"

#include <gtest/gtest.h>

namespace {

using dis::HintKind;

TEST(Hints, AreWrittenAsTheyAreRead) {
    const std::string text = "code   $1C\n"
                             "data   $20-$2F\n"
                             "string $30-$35\n"
                             "table  $0140-$0143\n"
                             "label  start=$10\n";
    dis::Hints hints;
    EXPECT_TRUE(dis::read_hints(text, hints).empty());
    EXPECT_EQ(dis::text_of(hints), text);
}

TEST(Hints, MayHaveCommentsAndOtherNumbers) {
    dis::Hints hints;
    EXPECT_TRUE(dis::read_hints("; mine\n\n  code 28 ; here\ndata 0x20 \r\n", hints).empty());
    EXPECT_EQ(dis::text_of(hints), "code   $1C\ndata   $20-$20\n");
}

TEST(Hints, AreRefusedWithTheirPlace) {
    dis::Hints hints;
    const auto faults = dis::read_hints("coda $1C\ncode zz\n data $30-$20\nlabel X=$10\n", hints);
    ASSERT_EQ(faults.size(), 4U);
    const auto place = [&](std::size_t i) {
        return std::to_string(faults[i].line) + ":" + std::to_string(faults[i].first) + "-" +
               std::to_string(faults[i].last);
    };
    EXPECT_EQ(place(0), "1:1-4");
    EXPECT_EQ(place(1), "2:6-7");
    EXPECT_EQ(place(2), "3:7-13");
    EXPECT_EQ(place(3), "4:7-11");
    EXPECT_EQ(faults[2].message, "the range ends before it begins");
}

TEST(Hints, OfAddressesThatAreNoneAreRefused) {
    dis::Hints hints;
    for (const char *operand : {"", "$", "0x", "$10000", "65536", "$1C-", "-", "1G"}) {
        EXPECT_NE(dis::add_hint(HintKind::kCode, operand, hints), "") << operand;
        EXPECT_NE(dis::add_hint(HintKind::kData, operand, hints), "") << operand;
        EXPECT_NE(dis::add_hint(HintKind::kLabel, operand, hints), "") << operand;
    }
    EXPECT_EQ(dis::add_hint(HintKind::kCode, "$FFFF", hints), "");
}

TEST(Labels, AreNoRegistersAndDoNotBeginWithOne) {
    for (const char *good : {"start", "_", "L1C", "a1", "XX", "SPX", "CC1", "L$", "end.", "A_"}) {
        EXPECT_TRUE(dis::is_label(good)) << good;
    }
    for (const char *bad :
         {"", "1a", "a", "X", "y", "sp", "Cc", "A.b", "X$", "SP.x", "cc$", "a b", ".L", "\xE4"}) {
        EXPECT_FALSE(dis::is_label(bad)) << bad;
    }
    EXPECT_TRUE(dis::is_label(std::string(127, 'L')));
    EXPECT_FALSE(dis::is_label(std::string(128, 'L')));
}

TEST(Labels, OfAStartAreOfLettersAndDigits) {
    EXPECT_TRUE(dis::is_start_label("start_1"));
    EXPECT_FALSE(dis::is_start_label("end."));
    EXPECT_FALSE(dis::is_start_label("L$"));
}

} // namespace
