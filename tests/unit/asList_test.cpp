// The list of segments.
#include "as/asList.h"
#include "tests/unit/support.h"

namespace {

class SegmentList : public RunTest {};

TEST_F(SegmentList, CreatesASegmentOnceAndFindsItAfterwards) {
    Segment *created = LookupSegment("abs", 1);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->name, "abs");
    EXPECT_EQ(LookupSegment("abs", 1), created);
    EXPECT_EQ(LookupSegment("abs", 0), created);
}

TEST_F(SegmentList, TheAbsoluteSegmentIsMadeOnceInEachList) {
    LookupSegment("code", 1);
    EXPECT_EQ(LookupSegment("abs", 0), nullptr);
    const Segment *made = absolute_segment();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name, "abs");
    EXPECT_EQ(LookupSegment("abs", 0), made);
    EXPECT_EQ(absolute_segment(), made);
    InitSegmentList();
    EXPECT_EQ(LookupSegment("abs", 0), nullptr);
    made = absolute_segment();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(LookupSegment("abs", 0), made);
}

TEST_F(SegmentList, BeginsASegmentAtZeroWithNoOutput) {
    Segment *created = LookupSegment("abs", 1);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->location, 0);
    EXPECT_EQ(created->output_count, 0);
}

TEST_F(SegmentList, LooksNamesUpExactly) {
    LookupSegment("abs", 1);
    EXPECT_EQ(LookupSegment("ABS", 0), nullptr);
    EXPECT_EQ(LookupSegment("ab", 0), nullptr);
}

TEST_F(SegmentList, CreatesNothingWithoutANameOrWithoutBeingAsked) {
    EXPECT_EQ(LookupSegment("code", 0), nullptr);
    EXPECT_EQ(LookupSegment("", 1), nullptr);
    EXPECT_EQ(LookupSegment(nullptr, 1), nullptr);
    EXPECT_EQ(EnumSegmentList(), nullptr);
}

TEST_F(SegmentList, CutsNamesTo126Characters) {
    EXPECT_EQ(LookupSegment(std::string(125, 'a').c_str(), 1)->name, std::string(125, 'a'));
    EXPECT_EQ(LookupSegment(std::string(126, 'b').c_str(), 1)->name, std::string(126, 'b'));
    EXPECT_EQ(LookupSegment(std::string(127, 'c').c_str(), 1)->name, std::string(126, 'c'));
}

TEST_F(SegmentList, EnumeratesInOrderOfCreationAndLinksBackwards) {
    LookupSegment("one", 1);
    LookupSegment("two", 1);
    LookupSegment("three", 1);
    ListItem *first = EnumSegmentList();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->previous, nullptr);
    EXPECT_EQ(first->next->previous, first);
    EXPECT_EQ(GetNextSegmentItem()->name, "one");
    EXPECT_EQ(GetNextSegmentItem()->name, "two");
    EXPECT_EQ(GetNextSegmentItem()->name, "three");
    EXPECT_EQ(GetNextSegmentItem(), nullptr);
    EXPECT_EQ(GetNextSegmentItem(), nullptr);
}

TEST_F(SegmentList, Pass2ResetsEveryLocationAndNothingElse) {
    Segment *segment = LookupSegment("abs", 1);
    segment->location = 5;
    segment->output_count = 7;
    InitSegmentListPass2();
    EXPECT_EQ(segment->location, 0);
    EXPECT_EQ(segment->output_count, 7);
}

TEST_F(SegmentList, EmptiesCompletely) {
    LookupSegment("abs", 1);
    EnumSegmentList();
    InitSegmentList();
    EXPECT_EQ(GetNextSegmentItem(), nullptr);
    EXPECT_EQ(EnumSegmentList(), nullptr);
    EXPECT_EQ(LookupSegment("abs", 0), nullptr);
}

TEST_F(SegmentList, ThereIsNoCurrentSegment) { EXPECT_EQ(current_seg, nullptr); }

using SegmentListDeathTest = SegmentList;

TEST_F(SegmentListDeathTest, GuardsItsTypeByAssertions) {
    EXPECT_DEATH(EnumListType(1002), "as/asList.*EnumListType.*startptr");
    EXPECT_DEATH((lists.type = 1, LookupSegment("abs", 1)), "EnumListType.*startptr");
    EXPECT_DEATH((lists.type = 1, InitSegmentList()), "InitList.*startptr");
}

} // namespace
