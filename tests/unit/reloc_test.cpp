// Value emission: commands and their range checks.
#include "target/reloc.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "expr/record.h"
#include "target/emit.h"
#include "target/location.h"
#include "tests/unit/support.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<unsigned>;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

class ValueEmission : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("t.szirpa", "");
        enter_final_pass();
        location_new_pass();
        outrecinit(kDataRecord16, LC);
    }

    // Runs a command on a value at location 0, or at the one given.
    static int run(int command, std::int64_t value, std::uint32_t location = 0,
                   std::int32_t pc_bias = 0) {
        diag_new_line();
        emit_new_line();
        OperandRecord operand;
        operand.value = value;
        operand.pc_bias = pc_bias;
        return do_reloc_cmd(operand, command, location);
    }

    static Bytes emitted() {
        return {Code.begin(), Code.begin() + static_cast<std::ptrdiff_t>(code_i)};
    }

    // The bytes of a command that is done, whatever it reports.
    static Bytes bytes(int command, std::int64_t value, std::uint32_t location = 0,
                       std::int32_t pc_bias = 0) {
        EXPECT_EQ(run(command, value, location, pc_bias), 0);
        return emitted();
    }

    std::string report(const std::string &text) const {
        return directory + "/t.szirpa (0) " + text + "\n";
    }

    std::string displacement_error(const std::string &digits) const {
        return report("Error: Displacement (0x" + digits + ") is out of range");
    }
};

const std::string kWordTruncated = "Warning: Word (16 bit) sized operand/data truncated";

// ---- Plain values ----

TEST_F(ValueEmission, AByteIsTheLow8Bits) {
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 5), (Bytes{0x05}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, -1), (Bytes{0xFF}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, -200), (Bytes{0x38}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AByteHoldsMinus256To255) {
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 254), (Bytes{0xFE}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 255), (Bytes{0xFF}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, -255), (Bytes{0x01}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, -256), (Bytes{0x00}));
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 256), (Bytes{0x00}));
    EXPECT_EQ(take_output(), report("Error: Value (0x100) is truncated"));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, -257), (Bytes{0xFF}));
    EXPECT_EQ(take_output(), report("Error: Value (0xFFFFFEFF) is truncated"));
}

TEST_F(ValueEmission, AByteIsCheckedByItsLow32Bits) {
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 0x100000005), (Bytes{0x05}));
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 0x1FFFFFFFF), (Bytes{0xFF}));
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(bytes(REL_CMD_OFF_8, 0x512345678), (Bytes{0x78}));
    EXPECT_EQ(take_output(), report("Error: Value (0x12345678) is truncated"));
}

TEST_F(ValueEmission, AWordIsEmittedHighByteFirst) {
    for (const int command : {REL_CMD_OFF_16, REL_CMD_BEOFF_16}) {
        EXPECT_EQ(bytes(command, 0x1234), (Bytes{0x12, 0x34})) << command;
        EXPECT_EQ(bytes(command, -2), (Bytes{0xFF, 0xFE})) << command;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AWordHoldsMinus32768To65535) {
    for (const int command : {REL_CMD_OFF_16, REL_CMD_BEOFF_16}) {
        EXPECT_EQ(bytes(command, 65534), (Bytes{0xFF, 0xFE}));
        EXPECT_EQ(bytes(command, 65535), (Bytes{0xFF, 0xFF}));
        EXPECT_EQ(bytes(command, -32767), (Bytes{0x80, 0x01}));
        EXPECT_EQ(bytes(command, -32768), (Bytes{0x80, 0x00}));
        EXPECT_EQ(take_output(), "");
        EXPECT_EQ(bytes(command, 65536), (Bytes{0x00, 0x00}));
        EXPECT_EQ(take_output(), report(kWordTruncated));
        EXPECT_EQ(bytes(command, -32769), (Bytes{0x7F, 0xFF}));
        EXPECT_EQ(take_output(), report(kWordTruncated));
    }
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(ValueEmission, ALongWordIsEmittedHighByteFirstAndNeverChecked) {
    for (const int command : {REL_CMD_OFF_32, REL_CMD_BEOFF_32}) {
        EXPECT_EQ(bytes(command, 0x12345678), (Bytes{0x12, 0x34, 0x56, 0x78}));
        EXPECT_EQ(bytes(command, -2), (Bytes{0xFF, 0xFF, 0xFF, 0xFE}));
        EXPECT_EQ(bytes(command, 0x912345678), (Bytes{0x12, 0x34, 0x56, 0x78}));
        EXPECT_EQ(bytes(command, kLeast), (Bytes{0, 0, 0, 0}));
    }
    EXPECT_EQ(take_output(), "");
}

// ---- Displacements ----

TEST_F(ValueEmission, AShortDisplacementIsMeasuredFromLocationPlusBias) {
    EXPECT_EQ(bytes(REL_CMD_PC_8, 20, 11, 1), (Bytes{8}));
    EXPECT_EQ(bytes(REL_CMD_PC_8, 20, 11, 0), (Bytes{9}));
    EXPECT_EQ(bytes(REL_CMD_PC_8, 8, 11, 1), (Bytes{0xFC}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AShortDisplacementOfZeroIsLegal) {
    EXPECT_EQ(bytes(REL_CMD_PC_8, 12, 11, 1), (Bytes{0}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AShortDisplacementHoldsMinus128To127) {
    EXPECT_EQ(bytes(REL_CMD_PC_8, 126 + 300, 299, 1), (Bytes{0x7E}));
    EXPECT_EQ(bytes(REL_CMD_PC_8, 127 + 300, 299, 1), (Bytes{0x7F}));
    EXPECT_EQ(bytes(REL_CMD_PC_8, -127 + 300, 299, 1), (Bytes{0x81}));
    EXPECT_EQ(bytes(REL_CMD_PC_8, -128 + 300, 299, 1), (Bytes{0x80}));
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(bytes(REL_CMD_PC_8, 128 + 300, 299, 1), (Bytes{0x80}));
    EXPECT_EQ(take_output(), displacement_error("80"));
    EXPECT_EQ(bytes(REL_CMD_PC_8, -129 + 300, 299, 1), (Bytes{0x7F}));
    EXPECT_EQ(take_output(), displacement_error("FFFFFF7F"));
}

TEST_F(ValueEmission, AShortDisplacementIsComputedIn64Bits) {
    EXPECT_EQ(bytes(REL_CMD_PC_8, 0x100000005, 4, 1), (Bytes{0}));
    EXPECT_EQ(take_output(), displacement_error("0"));
    EXPECT_EQ(bytes(REL_CMD_PC_8, 0x100000000, 0xFFFFFFFF, 1), (Bytes{0}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AWordDisplacementIsEmittedHighByteFirst) {
    for (const int command : {REL_CMD_PC_16, REL_CMD_BEPC_16}) {
        EXPECT_EQ(bytes(command, 0x1234 + 10, 8, 2), (Bytes{0x12, 0x34})) << command;
        EXPECT_EQ(bytes(command, 0, 1, 0), (Bytes{0xFF, 0xFF})) << command;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AWordDisplacementHoldsMinus32768To65535) {
    for (const int command : {REL_CMD_PC_16, REL_CMD_BEPC_16}) {
        EXPECT_EQ(bytes(command, 65535 + 10, 10), (Bytes{0xFF, 0xFF}));
        EXPECT_EQ(bytes(command, -32768 + 10, 10), (Bytes{0x80, 0x00}));
        EXPECT_EQ(take_output(), "");
        EXPECT_EQ(bytes(command, 65536 + 10, 10), (Bytes{0x00, 0x00}));
        EXPECT_EQ(take_output(), displacement_error("10000"));
        EXPECT_EQ(bytes(command, -32769 + 10, 10), (Bytes{0x7F, 0xFF}));
        EXPECT_EQ(take_output(), displacement_error("FFFF7FFF"));
    }
}

TEST_F(ValueEmission, ALongDisplacementIsNeverChecked) {
    for (const int command : {REL_CMD_PC_32, REL_CMD_BEPC_32}) {
        EXPECT_EQ(bytes(command, 0x12345678 + 10, 10), (Bytes{0x12, 0x34, 0x56, 0x78}));
        EXPECT_EQ(bytes(command, 5, 10), (Bytes{0xFF, 0xFF, 0xFF, 0xFB}));
        EXPECT_EQ(bytes(command, 5, 10, 1), (Bytes{0xFF, 0xFF, 0xFF, 0xFA}));
    }
    EXPECT_EQ(take_output(), "");
}

// ---- Commands that emit nothing ----

TEST_F(ValueEmission, UnsupportedCommandsEmitNothing) {
    for (const int command : {-1, 0, 4, 10, 11, 17, 18, 22, 23, 100}) {
        EXPECT_EQ(run(command, 5), -1) << command;
        EXPECT_EQ(emitted(), Bytes{}) << command;
    }
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, CommandsOfOtherTargetsDoNothingSilently) {
    for (const int command : {REL_CMD_OFF_LOW8, REL_CMD_OFF_HIGH8, REL_CMD_ZIRPA_PC9}) {
        EXPECT_EQ(bytes(command, 100000), Bytes{}) << command;
    }
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, AdvancesTheLocationCounterAlikeInEveryPass) {
    const std::vector<std::pair<int, unsigned>> sizes = {
        {5, 1},  {6, 2},  {7, 2},  {8, 4},  {9, 4},  {10, 0}, {11, 0}, {12, 1}, {13, 2},
        {14, 2}, {15, 4}, {16, 4}, {17, 0}, {18, 0}, {19, 0}, {20, 0}, {21, 0}, {22, 0}};
    for (const int final_pass : {1, 0}) {
        Pass2 = final_pass;
        for (const auto &[command, size] : sizes) {
            const std::uint32_t before = LC;
            run(command, 0x100000, LC);
            EXPECT_EQ(LC - before, size) << command << " in pass " << 1 + final_pass;
        }
    }
}

TEST_F(ValueEmission, ReportsNothingBeforeTheFinalPass) {
    Pass = 1;
    Pass2 = 0;
    for (int command = 4; command <= 23; ++command) {
        const bool unsupported = command == 4 || command == 10 || command == 11 || command == 17 ||
                                 command == 18 || command > 21;
        EXPECT_EQ(run(command, 1000000), unsupported ? -1 : 0) << command;
        EXPECT_EQ(code_i, 0U) << command;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(ValueEmission, ABranchToTheNextInstructionIsLegal) { EXPECT_EQ(is_nulldisp_allowed(), 1); }

} // namespace
