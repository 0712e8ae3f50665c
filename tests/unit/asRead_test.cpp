// The line reader: each line begins with the state of a line reset, in every module.
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/operand.h"
#include "target/scan.h"
#include "tests/unit/support.h"

#include <algorithm>

namespace {

class LineReader : public RunTest {};

TEST_F(LineReader, EveryLineBeginsWithItsStateReset) {
    open_source_file("main", "one\n");
    Line_Done = 1;
    LineError = 1;
    label = 1;
    IsEqu = 1;
    IsEquDirective = 1;
    pending_listLC = 1;
    code_i = 5;
    isinstruction = 1;
    ctoken = 9;
    commadel = 1;
    Byte_Extension = 0;
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line_Done, 0);
    EXPECT_EQ(LineError, 0);
    EXPECT_EQ(label, 0);
    EXPECT_EQ(IsEqu, 0);
    EXPECT_EQ(IsEquDirective, 0);
    EXPECT_EQ(pending_listLC, 0);
    EXPECT_EQ(code_i, 0U);
    EXPECT_EQ(isinstruction, 0);
    EXPECT_EQ(ctoken, 0);
    EXPECT_EQ(commadel, 0);
    EXPECT_EQ(Byte_Extension, 1);
}

TEST_F(LineReader, EveryLineBeginsWithoutForwardReferences) {
    open_source_file("main", "one\n");
    forwardref = 3;
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(forwardref, 0);
}

TEST_F(LineReader, EveryLineBeginsWithItsBytesCleared) {
    open_source_file("main", "one\n");
    Code.fill(0xEE);
    code_i = Code.size();
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_TRUE(std::all_of(Code.begin(), Code.end(), [](std::uint8_t byte) { return byte == 0; }));
}

// END leaves the state of its line to what comes after the last one.
TEST_F(LineReader, NothingIsResetWhenTheSourceHasEnded) {
    open_source_file("main", "one\ntwo\n");
    ASSERT_EQ(as_read_line(), 1);
    label = 1;
    endflag = 1;
    EXPECT_EQ(as_read_line(), 0);
    EXPECT_EQ(label, 1);
}

} // namespace
