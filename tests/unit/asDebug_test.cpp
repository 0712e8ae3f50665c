// Debug records: their fields, and their part of the S-record file.
#include "as/asDebug.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "target/srecord.h"
#include "tests/unit/support.h"

namespace {

class DebugRecords : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("prog.szirpa", "+part\n");
    }

    void TearDown() override {
        current_seg = nullptr;
        RunTest::TearDown();
    }
};

TEST_F(DebugRecords, ExecutionRecordHoldsFileLineCountSegmentAndAddress) {
    asm_write_sd_exec(12, 1, 0x100);
    asm_write_sd_exec(3, -5, 0xFFFFFFFFU);
    EXPECT_EQ(debug_text(), "SY:C:X:prog.szirpa:12:1::100\nSY:C:X:prog.szirpa:3:-5::FFFFFFFF\n");
}

TEST_F(DebugRecords, FunctionHoldsThreeNumbersAndThreeAddresses) {
    asm_write_sd_function("main", {1, -2, 30}, {0x10, 0x1234, -1});
    EXPECT_EQ(debug_text(),
              "SY:C:f:prog.szirpa::main:1:-2:30:00000010:00001234:FFFFFFFFFFFFFFFF\n");
}

TEST_F(DebugRecords, SymbolsHoldTheirFieldsInOrder) {
    asm_write_sd_global_symbol("a", "b", -5, "x:y");
    asm_write_sd_static_symbol("a", "b", 0x1F, 5, "");
    asm_write_sd_local_symbol({"a", "b", "c"}, 5, "rest");
    EXPECT_EQ(debug_text(), "SY:C:S:V:prog.szirpa::a:b:-5:x:y\n"
                            "SY:C:S:v:prog.szirpa::a:b:0000001F:5:\n"
                            "SY:C:S:L:prog.szirpa::a:b:c:5:rest\n");
}

TEST_F(DebugRecords, TypeIsLeftOpen) {
    begin_type_record("t(1)");
    EXPECT_EQ(debug_text(), "ST:prog.szirpa:t(1)");
}

TEST_F(DebugRecords, RecordsNameTheCurrentSegment) {
    current_seg = LookupSegment("code", 1);
    asm_write_sd_exec(12, 1, 0);
    asm_write_sd_global_symbol("a", "b", 5, "");
    EXPECT_EQ(debug_text(), "SY:C:X:prog.szirpa:12:1:code:0\nSY:C:S:V:prog.szirpa:code:a:b:5:\n");
}

TEST_F(DebugRecords, RecordsNameTheFileBeingRead) {
    write_file("part", "p\n");
    ASSERT_EQ(as_read_line(), 1);
    ASSERT_EQ(push_source("part"), 1);
    asm_write_sd_exec(1, 1, 0);
    pop_source();
    asm_write_sd_exec(1, 1, 0);
    EXPECT_EQ(debug_text(), "SY:C:X:part:1:1::0\nSY:C:X:prog.szirpa:1:1::0\n");
}

TEST_F(DebugRecords, FollowTheStartSymbolInTheRecordsFileAndAreForgotten) {
    open_output(objectfile, "prog.s19");
    symdebfile = "SY:one\nST:two\n";
    startsymname = "begin";
    write_debug_part();
    objectfile.flush();
    EXPECT_EQ(read_text("prog.s19"), "SX:C:s:begin\nSY:one\nST:two\n");
    EXPECT_EQ(debug_text(), "");
}

TEST_F(DebugRecords, NewRunHasNoneAndTheUsualStartSymbol) {
    symdebfile = "SY\n";
    startsymname = "begin";
    debug_new_run();
    EXPECT_EQ(debug_text(), "");
    EXPECT_EQ(startsymname, "start");
}

TEST_F(DebugRecords, KeepTheirOrderWhetherNumbersOrText) {
    open_output(objectfile, "prog.s19");
    asm_write_sd_exec(1, 1, 0);
    asm_write_sd_exec(2, 5, 1);
    asm_write_sd_exec(3, 1, 2);
    add_debug_text("ST:x\n");
    asm_write_sd_exec(4, 1, 0xFFFFFFFF);
    add_debug_text("");
    asm_write_sd_exec(-5, 1, 0x10);
    write_debug_part();
    objectfile.flush();
    EXPECT_EQ(read_text("prog.s19"), "SX:C:s:start\n"
                                     "SY:C:X:prog.szirpa:1:1::0\n"
                                     "SY:C:X:prog.szirpa:2:5::1\n"
                                     "SY:C:X:prog.szirpa:3:1::2\n"
                                     "ST:x\n"
                                     "SY:C:X:prog.szirpa:4:1::FFFFFFFF\n"
                                     "SY:C:X:prog.szirpa:-5:1::10\n");
    EXPECT_EQ(debug_text(), "");
}

TEST_F(DebugRecords, NewRunForgetsInstructions) {
    asm_write_sd_exec(1, 1, 0);
    debug_new_run();
    EXPECT_EQ(debug_text(), "");
}

} // namespace
