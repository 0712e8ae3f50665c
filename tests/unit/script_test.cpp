// The simulator memory script: its head and its commands.
#include "target/location.h"
#include "target/script.h"
#include "tests/unit/support.h"

namespace {

class Script : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_output(zirpafile, "prog.fmem");
        emit_to(nullptr, put_script_lines);
    }

    // The final pass, with a record begun at an address.
    static void begin_final_pass(std::uint32_t address) {
        enter_final_pass();
        LC = address;
        outrecinit(kDataRecord16, address);
    }

    static std::string script() {
        zirpafile.flush();
        return read_text("prog.fmem");
    }

    static void put_end_record(std::uint32_t address) {
        outrecinit(kEndRecord16, address);
        putout();
    }
};

TEST_F(Script, HeadNamesItAndClearsTheSimulator) {
    begin_script("some.fmem");
    EXPECT_EQ(script(), "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
                        "Free software under the MIT License.\n"
                        "File: some.fmem\n"
                        "\n # ClearAllMemory\n # ClearAllRegisters");
}

TEST_F(Script, ScriptSetsEveryByteOfAWrittenRecord) {
    begin_final_pass(0x10);
    ebyte(0xF0);
    ebyte(5);
    EXPECT_EQ(script(), "");
    putout();
    EXPECT_EQ(script(), "\n #setMemory  10=F0\n #setMemory  11=05");
}

TEST_F(Script, ScriptAddressesAreOneByteWide) {
    begin_final_pass(0x12FF);
    ebyte(1);
    ebyte(2);
    putout();
    EXPECT_EQ(script(), "\n #setMemory  FF=01\n #setMemory  00=02");
}

// Quirk (wide-script): the script assumes two address bytes, so further ones become memory
// contents.
TEST_F(Script, SurplusAddressBytesBecomeMemoryContents) {
    begin_final_pass(0x12345);
    ebyte(0xAA);
    putout();
    EXPECT_EQ(script(), "\n #setMemory  23=45\n #setMemory  24=AA");
}

TEST_F(Script, SurplusAddressBytesOfAnEndRecordDoSoToo) {
    enter_final_pass();
    put_end_record(0x1234);
    EXPECT_EQ(script(), "");
    put_end_record(0x12345);
    EXPECT_EQ(script(), "\n #setMemory  23=45");
    put_end_record(0x12345678);
    EXPECT_EQ(script(), "\n #setMemory  23=45\n #setMemory  34=56\n #setMemory  35=78");
}

} // namespace
