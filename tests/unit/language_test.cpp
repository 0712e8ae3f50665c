// What the door tells of words and fields for lines that no run has told.
#include "door/door.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const door::Place &place) {
    return std::to_string(place.first) + "-" + std::to_string(place.last);
}

TEST(Language, RegistersAreNamed) {
    EXPECT_EQ(door::registers(), (std::vector<std::string_view>{"A", "X", "Y", "SP", "CC"}));
}

TEST(Language, FieldsOfALineAreFound) {
    const door::LineFields fields = door::fields_of("loop: LDA #5 ; five");
    EXPECT_EQ(shown(fields.label), "1-4");
    EXPECT_EQ(shown(fields.operation), "7-9");
    EXPECT_EQ(shown(fields.operand), "11-12");
    EXPECT_FALSE(fields.is_conditional);
}

TEST(Language, FieldsThatAreMissingHaveNoColumns) {
    const door::LineFields fields = door::fields_of("; nothing");
    EXPECT_FALSE(fields.label.has_column());
    EXPECT_FALSE(fields.operation.has_column());
    EXPECT_TRUE(door::fields_of("# else").is_conditional);
}

TEST(Language, ARunMayReserveLess) {
    const auto size_with = [](std::int64_t most) {
        std::uint64_t size = 0;
        door::Listener listener;
        listener.line = [&](const door::Line &line) { size += line.size; };
        (void)door::run({{}, "p.szirpa", " RMB 11\n", door::Outputs::kNowhere, most}, listener);
        return size;
    };
    EXPECT_EQ(size_with(10), 0U);
    EXPECT_EQ(size_with(11), 11U);
    EXPECT_EQ(size_with(0), 11U); // the limit is that of one run
}

} // namespace
