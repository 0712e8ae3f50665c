// The names of the value emission commands, and the size check of data items.
#include "target/reloc_unused.h"

#include "as/asDiag.h"
#include "tests/unit/support.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

// ---- The names of the commands ----

const std::vector<std::pair<int, const char *>> kCommands = {
    {5, "REL_CMD_OFF_8"},      {6, "REL_CMD_OFF_16"},     {7, "REL_CMD_BEOFF_16"},
    {8, "REL_CMD_OFF_32"},     {9, "REL_CMD_BEOFF_32"},   {10, "REL_CMD_OFF_64"},
    {11, "REL_CMD_BEOFF_64"},  {12, "REL_CMD_PC_8"},      {13, "REL_CMD_PC_16"},
    {14, "REL_CMD_BEPC_16"},   {15, "REL_CMD_PC_32"},     {16, "REL_CMD_BEPC_32"},
    {17, "REL_CMD_PC_64"},     {18, "REL_CMD_BEPC_64"},   {19, "REL_CMD_OFF_LOW8"},
    {20, "REL_CMD_OFF_HIGH8"}, {21, "REL_CMD_ZIRPA_PC9"}, {22, "UNDEFINED"}};

TEST(RelocNames, CommandsAreFoundByNameAndById) {
    for (const auto &[id, name] : kCommands) {
        EXPECT_EQ(get_reloc_id(name), id);
        EXPECT_STREQ(get_reloc_typename(id), name);
    }
}

TEST(RelocNames, CommandNamesAreComparedExactly) {
    for (const char *name :
         {"", "rel_cmd_off_8", "REL_CMD_OFF", "REL_CMD_OFF_8 ", "REL_CMD_OFF_88", "undefined"}) {
        EXPECT_EQ(get_reloc_id(name), -1) << name;
    }
}

TEST(RelocNames, OtherIdsHaveNoName) {
    for (const int id : {-1, 0, 4, 23}) {
        EXPECT_EQ(get_reloc_typename(id), nullptr) << id;
    }
}

// ---- Sizes ----

class DataItemSize : public ReportTest {
  protected:
    void SetUp() override {
        ReportTest::SetUp();
        begin_reports();
    }
};

TEST_F(DataItemSize, OneByteHoldsMinus256To255) {
    EXPECT_EQ(checkopsize(255, 1), 0);
    EXPECT_EQ(checkopsize(256, 1), 1);
    EXPECT_EQ(checkopsize(-256, 1), 0);
    EXPECT_EQ(checkopsize(-257, 1), 1);
}

TEST_F(DataItemSize, TwoBytesHoldMinus32768To65535) {
    EXPECT_EQ(checkopsize(65535, 2), 0);
    EXPECT_EQ(checkopsize(65536, 2), 1);
    EXPECT_EQ(checkopsize(-32768, 2), 0);
    EXPECT_EQ(checkopsize(-32769, 2), 1);
}

TEST_F(DataItemSize, FourBytesHoldEverything) {
    for (const std::int64_t value : {std::int64_t{0}, std::numeric_limits<std::int64_t>::max(),
                                     std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(checkopsize(value, 4), 0);
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(DataItemSize, AnyOtherIsAnInternalFault) {
    for (const int size : {0, 3, 5, 8, -1}) {
        diag_new_line();
        EXPECT_EQ(checkopsize(0, size), -1) << size;
        EXPECT_EQ(take_output(), error("(F1017)")) << size;
    }
}

} // namespace
