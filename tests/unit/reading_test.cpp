// The readers of programs: what they take, and what they say of faulty files.
#include "dis/reading.h"

#include <gtest/gtest.h>

namespace {

using dis::InputFormat;

dis::Reading records(std::string_view content) {
    return dis::read(content, InputFormat::kRecords, 0);
}

// "id line:first-last message", or nothing.
std::string fault(const dis::Reading &reading) {
    if (reading.faults.empty()) {
        return {};
    }
    const dis::Fault &first = reading.faults.front();
    return std::string(first.id) + " " + std::to_string(first.line) + ":" +
           std::to_string(first.first) + "-" + std::to_string(first.last) + " " + first.message;
}

// "AA=BB" for each byte.
std::string bytes(const dis::Program &program) {
    std::string text;
    for (std::uint32_t address = 0; address < dis::kAddresses; ++address) {
        if (program.image.holds(address)) {
            char pair[16];
            (void)std::snprintf(pair, sizeof pair, "%s%02X=%02X", text.empty() ? "" : " ", address,
                                unsigned{program.image.at(address)});
            text += pair;
        }
    }
    return text;
}

// ---- S-records ----

TEST(Records, GiveBytesAndTheStart) {
    const dis::Reading reading = records("S1050010F005F5\nS9030010EC\n");
    EXPECT_EQ(fault(reading), "");
    EXPECT_EQ(bytes(reading.program), "10=F0 11=05");
    EXPECT_EQ(reading.program.entry, 0x10U);
}

TEST(Records, OfAllWidthsAreRead) {
    // 05+00+01+00+AA = B0, 06+00+00+02+00+BB = C3, 07 of a start of 32 bits: 05.
    const dis::Reading reading = records("S0030000FC\r\nS2050001"
                                         "00AA4F\r\nS30600000200BB3C\r\nS5030002FA\r\n"
                                         "S6040000"
                                         "02F9\r\nS70500000100F9");
    EXPECT_EQ(fault(reading), "");
    EXPECT_EQ(bytes(reading.program), "100=AA 200=BB");
    EXPECT_EQ(reading.program.entry, 0x100U);
}

TEST(Records, MayBeInLowerCaseAndInAnyOrder) {
    const dis::Reading reading = records("S1050010f005f5\nS104000011EA\nS9030000FC\n");
    EXPECT_EQ(fault(reading), "");
    EXPECT_EQ(bytes(reading.program), "00=11 10=F0 11=05");
}

TEST(Records, WithAWrongChecksumAreRefused) {
    EXPECT_EQ(fault(records("S1050010F005F4\nS9030010EC\n")),
              "record-checksum 1:13-14 the checksum is F4, but F5 by the bytes");
}

TEST(Records, WithAWrongLengthAreRefused) {
    EXPECT_EQ(fault(records("S1060010F005F5\nS9030010EC\n")),
              "record-length 1:3-4 the length is 6, but 5 bytes follow");
    EXPECT_EQ(fault(records("S1020010\n")),
              "record-length 1:3-4 a record of this type has 2 bytes of address");
    EXPECT_EQ(fault(records("S9040010FFEC\n")),
              "record-length 1:3-4 a record of this type has 2 bytes of address and nothing more");
    EXPECT_EQ(fault(records("S1050010F005F\n")),
              "record-length 1:13-13 the line ends within a byte");
    EXPECT_EQ(fault(records("S1\n")), "record-length 1:2-2 the line ends within a byte");
}

TEST(Records, OfOtherCharactersAreRefused) {
    EXPECT_EQ(fault(records("S10500x0F005F5\n")), "bad-record 1:7-7 this is no hexadecimal digit");
    EXPECT_EQ(fault(records("S4030000FC\n")), "bad-record 1:1-2 the type S4 is not used");
    EXPECT_EQ(fault(records("S104001001EA\nhello\nS9030010EC\n")),
              "bad-record 2:1-2 a record begins with S and a digit");
}

TEST(Records, ThatAreMissingAreNoticed) {
    EXPECT_EQ(fault(records("S104001001EA\nS5030002FA\nS9030010EC\n")),
              "record-count 2:5-8 the count is 2, but there are 1 data records");
    EXPECT_EQ(fault(records("S104001001EA\n")),
              "cut-file 1:13-13 the file ends without an end record (S7, S8 or S9)");
    EXPECT_EQ(fault(records("")),
              "cut-file 0:1-1 the file ends without an end record (S7, S8 or S9)");
}

TEST(Records, OutOfOrderAreRefused) {
    EXPECT_EQ(fault(records("S104001001EA\nS0030000FC\nS9030010EC\n")),
              "record-order 2:1-2 a header comes after other records");
    EXPECT_EQ(fault(records("S9030010EC\nS104001001EA\n")),
              "record-order 2:1-2 a record comes after the end record");
    EXPECT_EQ(fault(records("S9030010EC\nhello\n")),
              "record-order 2:1-5 after the end record come debug records alone");
}

TEST(Records, ThatOverlapAreRefused) {
    EXPECT_EQ(fault(records("S1050010F005F5\nS104001101E9\nS9030010EC\n")),
              "set-twice 2:9-10 the byte at 11 is given a second time");
}

TEST(Records, BeyondTheAddressesAreRefused) {
    EXPECT_EQ(fault(records("S2050123450190\nS9030000FC\n")),
              "address-beyond-ffff 1:5-10 the address 12345 is beyond FFFF");
    // The second byte of a record at FFFF.
    EXPECT_EQ(fault(records("S105FFFF0102F9\nS9030000FC\n")),
              "address-beyond-ffff 1:11-12 the address 10000 is beyond FFFF");
    EXPECT_EQ(fault(records("S80401234592\n")),
              "address-beyond-ffff 1:5-10 the address 12345 is beyond FFFF");
}

TEST(Records, HaveAtMostTwentyFaults) {
    std::string content;
    for (int i = 0; i < 100; ++i) {
        content += "Sx\n";
    }
    EXPECT_EQ(records(content).faults.size(), 20U);
}

TEST(Records, BringLinesAndNames) {
    const dis::Reading reading = records("S9030010EC\n"
                                         "SX:C:s:start\n"
                                         "SY:C:X:a:b.szirpa:8:1::1C\n"
                                         "SY:C:f:f.c:seg:main:1:2:3:00000010:00000020:0000002F\n"
                                         "SY:C:S:v:f.c:seg:x1:count:00000030:7:rest\n"
                                         "ST:f.c:anything\n"
                                         "a line of the type\n");
    EXPECT_EQ(fault(reading), "");
    ASSERT_EQ(reading.program.lines.size(), 1U);
    EXPECT_EQ(reading.program.lines[0].file, "a:b.szirpa");
    EXPECT_EQ(reading.program.lines[0].line, 8);
    EXPECT_EQ(reading.program.lines[0].address, 0x1CU);
    ASSERT_EQ(reading.program.names.size(), 2U);
    EXPECT_EQ(reading.program.names[0].text, "main");
    EXPECT_EQ(reading.program.names[0].address, 0x10U);
    EXPECT_EQ(reading.program.names[1].text, "count");
    EXPECT_EQ(reading.program.names[1].address, 0x30U);
}

// ---- Other formats ----

TEST(Images, BeginAtTheirBase) {
    const dis::Reading reading = dis::read("\x01\xFF", InputFormat::kImage, 0xFE);
    EXPECT_EQ(bytes(reading.program), "FE=01 FF=FF");
    EXPECT_EQ(fault(dis::read("abc", InputFormat::kImage, 0xFFFE)),
              "address-beyond-ffff 0:0-0 3 bytes from FFFE on go beyond FFFF");
    EXPECT_EQ(fault(dis::read("ab", InputFormat::kImage, 0xFFFE)), "");
}

TEST(Scripts, SetMemory) {
    const dis::Reading reading = dis::read("Any text\nFile: x\n\n # ClearAllMemory\n"
                                           " # ClearAllRegisters\n #setMemory  10=F0\n"
                                           " #setMemory  11=05",
                                           InputFormat::kScript, 0);
    EXPECT_EQ(fault(reading), "");
    EXPECT_EQ(bytes(reading.program), "10=F0 11=05");
}

TEST(Scripts, WithOtherLinesAreRefused) {
    const auto script = [](std::string_view text) {
        return fault(dis::read(text, InputFormat::kScript, 0));
    };
    EXPECT_EQ(script(" #setMemory  1"),
              "bad-command 1:14-14 an address and a byte are expected: AA=BB");
    EXPECT_EQ(script(" #setMemory  10=100"),
              "bad-command 1:14-19 an address and a byte are expected: AA=BB");
    EXPECT_EQ(script(" #setMemory"),
              "bad-command 1:12-12 an address and a byte are expected: AA=BB");
    EXPECT_EQ(script(" #run 10"), "bad-command 1:2-8 this command is not known");
    EXPECT_EQ(script(" #setMemory  10=01\ntext"), "bad-command 2:1-4 this command is not known");
    EXPECT_EQ(script("a\x01"), "bad-command 1:2-2 this is no text");
    EXPECT_EQ(script(" #setMemory  10=01\n #setMemory  10=01"),
              "set-twice 2:14-15 the byte at 10 is given a second time");
    EXPECT_EQ(script(" #setMemory  12345=01"),
              "address-beyond-ffff 1:14-18 the address 12345 is beyond FFFF");
}

TEST(Arrays, AreReadAsACompilerDoes) {
    const dis::Reading reading =
        dis::read("/* the program */\nstatic const uint8_t code[4] = { // four\n"
                  "0x01, 255,\n010 /* eight */, 0X0a,\n};\n",
                  InputFormat::kArray, 0x20);
    EXPECT_EQ(fault(reading), "");
    EXPECT_EQ(bytes(reading.program), "20=01 21=FF 22=08 23=0A");
}

TEST(Arrays, OfOtherThingsAreRefused) {
    const auto array = [](std::string_view text, std::uint32_t base = 0) {
        return fault(dis::read(text, InputFormat::kArray, base));
    };
    EXPECT_EQ(array("char a[] = {1,\n256};"), "bad-array 2:1-3 a value from 0 to 255 is expected");
    EXPECT_EQ(array("char a[] = {08};"), "bad-array 1:13-14 a value from 0 to 255 is expected");
    EXPECT_EQ(array("char a[] = {1 2};"), "bad-array 1:15-15 a comma or } is expected");
    EXPECT_EQ(array("char a[] = {,};"), "bad-array 1:13-13 a value is expected");
    EXPECT_EQ(array("char a[] = {1}; char b"),
              "bad-array 1:17-17 after the array comes something else");
    EXPECT_EQ(array("char a[] = {1,"), "cut-file 1:15-15 the array is not closed by }");
    EXPECT_EQ(array("char a[] = {1}; /*"), "cut-file 1:19-19 the array is not closed by }");
    EXPECT_EQ(array("!"), "bad-array 1:1-1 this does not belong to the head of an array");
    EXPECT_EQ(array("char a[] = {1,2};", 0xFFFF),
              "address-beyond-ffff 1:15-15 the address 10000 is beyond FFFF");
}

TEST(InputFormats, AreToldApart) {
    EXPECT_EQ(dis::format_of("S1050010F005F5\n"), InputFormat::kRecords);
    EXPECT_EQ(dis::format_of("\nS9030010EC\n"), InputFormat::kRecords);
    EXPECT_EQ(dis::format_of("text\n # ClearAllMemory"), InputFormat::kScript);
    EXPECT_EQ(dis::format_of("const unsigned char algo[] = {\n"), InputFormat::kArray);
    EXPECT_EQ(dis::format_of("{ = "), InputFormat::kUnknown);
    EXPECT_EQ(dis::format_of(std::string_view("\0 = {", 5)), InputFormat::kUnknown);
    EXPECT_EQ(dis::format_of(""), InputFormat::kUnknown);
    EXPECT_EQ(
        fault(dis::read("x", InputFormat::kUnknown, 0)),
        "unknown-format 0:0-0 neither S-records nor a script nor a C array; --base tells where "
        "plain bytes begin");
}

TEST(SymbolTables, AreReadFromTheirTitleOn) {
    std::vector<dis::Name> names;
    EXPECT_TRUE(dis::read_symbols("listing\n\n--\tSYMBOL TABLE:\n--\tVALUE\tSYMBOL \n"
                                  "\t0010\tstart\n\t12345\tfar\n\t0028\tlast\n\n****** Total\n"
                                  "\t0030\tbelow\n",
                                  names)
                    .empty());
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0].text, "start");
    EXPECT_EQ(names[0].address, 0x10U);
    EXPECT_EQ(names[1].text, "last");
    EXPECT_EQ(dis::read_symbols("nothing", names).front().id, "bad-symbols");
}

} // namespace
