// Emission: the primitives in both kinds of pass, the listing copy, records, script lines and C
// rows.
#include "as/asOptions.h"
#include "as/asOutput.h"
#include "target/emit.h"
#include "target/location.h"
#include "tests/unit/support.h"

#include <vector>

namespace {

using Bytes = std::vector<int>;

class Emission : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_output(objectfile, "prog.s19");
        open_output(zirpafile, "prog.fmem");
    }

    // The final pass, with a record begun at an address.
    static void begin_final_pass(std::uint32_t address = 0) {
        enter_final_pass();
        LC = address;
        outrecinit(record_type, address);
    }

    static Bytes listed() { return {Code.begin(), Code.begin() + static_cast<long>(code_i)}; }

    static std::string object() {
        objectfile.flush();
        return read_text("prog.s19");
    }

    static std::string script() {
        zirpafile.flush();
        return read_text("prog.fmem");
    }

    // The record of a type and address, with bytes behind it.
    std::string record(int type, std::uint32_t address, const Bytes &bytes = {}) {
        objectfile.flush();
        const std::size_t before = object().size();
        outrecinit(type, address);
        for (const int byte : bytes) {
            ebyte(static_cast<std::uint32_t>(byte));
        }
        putout();
        return object().substr(before);
    }
};

// ---- The primitives
// ---------------------------------------------------------------------------------

TEST_F(Emission, PrimitivesOnlyAdvanceTheLocationCounterBeforeTheFinalPass) {
    Byte_Extension = 0;
    ebyte(1);
    EXPECT_EQ(LC, 1U);
    eshort(1);
    EXPECT_EQ(LC, 3U);
    ecode(1);
    EXPECT_EQ(LC, 5U);
    elong(1);
    EXPECT_EQ(LC, 9U);
    outcode(1);
    EXPECT_EQ(LC, 9U);
    emit_zeros(10);
    EXPECT_EQ(LC, 19U);
    outrecinit(1, 0);
    putout();
    EXPECT_EQ(record_type, 2);
    EXPECT_EQ(code_i, 0U);
    EXPECT_EQ(Byte_Extension, 0);
    EXPECT_EQ(object(), "");
    EXPECT_EQ(script(), "");
}

TEST_F(Emission, ByteIsTheLow8Bits) {
    begin_final_pass(0x10);
    Byte_Extension = 0;
    ebyte(0x12F0);
    EXPECT_EQ(listed(), (Bytes{0xF0}));
    EXPECT_EQ(Byte_Extension, 1);
    ebyte(5);
    EXPECT_EQ(LC, 0x12U);
    putout();
    EXPECT_EQ(object(), "S1050010F005F5\n");
}

TEST_F(Emission, ShortIsTheLow16BitsHighByteFirst) {
    begin_final_pass(0x20);
    Byte_Extension = 0;
    eshort(0x991234);
    ecode(0x5678);
    EXPECT_EQ(listed(), (Bytes{0x12, 0x34, 0x56, 0x78}));
    EXPECT_EQ(LC, 0x24U);
    EXPECT_EQ(Byte_Extension, 0);
    ebyte(9);
    putout();
    EXPECT_EQ(object(), "S10800201234567809BA\n");
}

TEST_F(Emission, LongIsFourBytesHighByteFirst) {
    begin_final_pass(0x20);
    Byte_Extension = 0;
    elong(0x12345678);
    EXPECT_EQ(listed(), (Bytes{0x12, 0x34, 0x56, 0x78}));
    EXPECT_EQ(LC, 0x24U);
    EXPECT_EQ(Byte_Extension, 0);
    ebyte(9);
    putout();
    EXPECT_EQ(object(), "S10800201234567809BA\n");
}

TEST_F(Emission, CodeByteIsNotListed) {
    begin_final_pass(0x1234);
    Byte_Extension = 0;
    outcode(0xF12);
    EXPECT_EQ(code_i, 0U);
    EXPECT_EQ(Byte_Extension, 0);
    EXPECT_EQ(LC, 0x1235U);
    putout();
    EXPECT_EQ(object(), "S104123412A3\n");
}

TEST_F(Emission, ZeroesLeaveOneByteInTheListing) {
    begin_final_pass();
    ebyte(1);
    ebyte(2);
    emit_zeros(40);
    EXPECT_EQ(listed(), (Bytes{0}));
    EXPECT_EQ(LC, 42U);
    putout();
    EXPECT_EQ(object(), "S12100000102" + std::string(56, '0') +
                            "DB\n"
                            "S10F001E" +
                            std::string(24, '0') + "D2\n");
}

TEST_F(Emission, ListedByteIsNotEmitted) {
    begin_final_pass();
    list_byte(0x1AB);
    EXPECT_EQ(listed(), (Bytes{0xAB}));
    EXPECT_EQ(LC, 0U);
    putout();
    EXPECT_EQ(object(), "");
}

TEST_F(Emission, LocationCounterWrapsAt32Bits) {
    LC = 0xFFFFFFFFU;
    ebyte(1);
    EXPECT_EQ(LC, 0U);
    LC = 0xFFFFFFFEU;
    elong(1);
    EXPECT_EQ(LC, 2U);
}

// ---- The listing copy
// -------------------------------------------------------------------------------

TEST_F(Emission, SingleBytesAreListedUpTo120) {
    begin_final_pass();
    for (int byte = 1; byte <= 119; ++byte) {
        ebyte(1);
    }
    EXPECT_EQ(code_i, 119U);
    ebyte(2);
    EXPECT_EQ(code_i, 120U);
    ebyte(3);
    EXPECT_EQ(code_i, 120U);
    EXPECT_EQ(Code[119], 2);
    EXPECT_EQ(LC, 121U);
}

TEST_F(Emission, ShortsAreListedWhileTheCountIsBelow120) {
    begin_final_pass();
    code_i = 118;
    eshort(0x0102);
    EXPECT_EQ(code_i, 120U);
    EXPECT_EQ(Code[118], 1);
    EXPECT_EQ(Code[119], 2);
    eshort(0x0304);
    EXPECT_EQ(code_i, 120U);
    EXPECT_EQ(LC, 4U);
    code_i = 119;
    ecode(0x0506);
    EXPECT_EQ(code_i, 121U);
    EXPECT_EQ(Code[120], 6);
}

TEST_F(Emission, LongsAreListedWhileTheCountIsAtMost120) {
    begin_final_pass();
    code_i = 120;
    elong(0x01020304);
    EXPECT_EQ(code_i, 124U);
    EXPECT_EQ(Code[120], 1);
    EXPECT_EQ(Code[123], 4);
    elong(0x05060708);
    EXPECT_EQ(code_i, 124U);
    code_i = 121;
    elong(0x05060708);
    EXPECT_EQ(code_i, 121U);
    EXPECT_EQ(LC, 12U);
}

TEST_F(Emission, NewLineEmptiesTheListingCopyAndSelectsTheByteColumns) {
    code_i = 5;
    Byte_Extension = 0;
    emit_new_line();
    EXPECT_EQ(code_i, 0U);
    EXPECT_EQ(Byte_Extension, 1);
}

// ---- Records
// ----------------------------------------------------------------------------------------

TEST_F(Emission, FullRecordIsFollowedByOneAtTheNextAddress) {
    begin_final_pass();
    for (std::uint32_t byte = 0; byte < 30; ++byte) {
        ebyte(byte);
    }
    EXPECT_EQ(object(), "");
    ebyte(30);
    const std::string full =
        "S1210000000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D2B\n";
    EXPECT_EQ(object(), full);
    putout();
    EXPECT_EQ(object(), full + "S104001E1EBF\n");
}

TEST_F(Emission, WideAddressesLeaveRoomForFewerBytes) {
    begin_final_pass(0x12345);
    for (std::uint32_t byte = 0; byte < 29; ++byte) {
        ebyte(byte);
    }
    EXPECT_EQ(object(), "");
    outcode(0xAA);
    EXPECT_EQ(object(), "S221012345000102030405060708090A0B0C0D0E0F101112131415161718191A1B1CDF\n");
}

TEST_F(Emission, WidestAddressesLeaveRoomFor28Bytes) {
    begin_final_pass(0x1000000);
    for (std::uint32_t byte = 0; byte < 28; ++byte) {
        ebyte(byte);
    }
    EXPECT_EQ(object(), "");
    eshort(0xAAAA);
    EXPECT_EQ(object(), "S32101000000000102030405060708090A0B0C0D0E0F101112131415161718191A1B63\n");
}

TEST_F(Emission, AddressAloneChoosesAmongTheDataTypes) {
    enter_final_pass();
    for (const int asked : {1, 2, 3}) {
        EXPECT_EQ(record(asked, 0xFFFF, {1}), "S104FFFF01FC\n");
        EXPECT_EQ(record_type, 1);
        EXPECT_EQ(record(asked, 0x10000, {1}), "S20501000001F8\n");
        EXPECT_EQ(record_type, 2);
        EXPECT_EQ(record(asked, 0xFFFFFF, {1}), "S205FFFFFF01FC\n");
        EXPECT_EQ(record_type, 2);
        EXPECT_EQ(record(asked, 0x1000000, {1}), "S3060100000001F7\n");
        EXPECT_EQ(record_type, 3);
    }
}

TEST_F(Emission, AddressAloneChoosesAmongTheEndTypes) {
    enter_final_pass();
    for (const int asked : {7, 8, 9}) {
        EXPECT_EQ(record(asked, 0), "S9030000FC\n");
        EXPECT_EQ(record(asked, 0xFFFF), "S903FFFFFE\n");
        EXPECT_EQ(record(asked, 0x10000), "S804010000FA\n");
        EXPECT_EQ(record(asked, 0xFFFFFF), "S804FFFFFFFE\n");
        EXPECT_EQ(record(asked, 0x1000000), "S70501000000F9\n");
    }
    EXPECT_EQ(record_type, 2);
}

TEST_F(Emission, OtherTypesKeepTheirNumberAndTakeTheAddressWidthOfTheDataRecords) {
    enter_final_pass();
    record_type = 1;
    EXPECT_EQ(record(0, 0x1234), "S0031234B6\n");
    EXPECT_EQ(record(5, 0x1234), "S5031234B6\n");
    record_type = 2;
    EXPECT_EQ(record(0, 0x1234), "S004001234B5\n");
    record_type = 3;
    EXPECT_EQ(record(0, 0x1234), "S00500001234B4\n");
    EXPECT_EQ(record_type, 3);
}

TEST_F(Emission, OtherTypesHaveTwoAddressBytesForAnyOtherDataType) {
    enter_final_pass();
    record_type = 0;
    EXPECT_EQ(record(0, 0x1234), "S0031234B6\n");
}

TEST_F(Emission, DataRecordsWithoutDataAreNotWritten) {
    enter_final_pass();
    EXPECT_EQ(record(1, 0), "");
    EXPECT_EQ(record(1, 0x12345), "");
    EXPECT_EQ(record(1, 0x1000000), "");
    outrecinit(1, 0x10);
    putout1();
    EXPECT_EQ(object(), "S1030010EC\n");
}

TEST_F(Emission, RecordBegunByAFullOneHasTheTypeOfItsOwnAddress) {
    begin_final_pass(0xFFF0);
    for (int byte = 0; byte < 31; ++byte) {
        ebyte(0);
    }
    EXPECT_EQ(record_type, 2);
    putout();
    EXPECT_TRUE(object().ends_with("\nS20501000E00EB\n"));
}

// ---- The script
// -------------------------------------------------------------------------------------

TEST_F(Emission, ScriptSetsEveryByteOfAWrittenRecord) {
    begin_final_pass(0x10);
    ebyte(0xF0);
    ebyte(5);
    EXPECT_EQ(script(), "");
    putout();
    EXPECT_EQ(script(), "\n #setMemory  10=F0\n #setMemory  11=05");
}

TEST_F(Emission, ScriptAddressesAreOneByteWide) {
    begin_final_pass(0x12FF);
    ebyte(1);
    ebyte(2);
    putout();
    EXPECT_EQ(script(), "\n #setMemory  FF=01\n #setMemory  00=02");
}

// Quirk (wide-script): the script assumes two address bytes, so further ones become memory
// contents.
TEST_F(Emission, SurplusAddressBytesBecomeMemoryContents) {
    begin_final_pass(0x12345);
    ebyte(0xAA);
    putout();
    EXPECT_EQ(object(), "S205012345AAE7\n");
    EXPECT_EQ(script(), "\n #setMemory  23=45\n #setMemory  24=AA");
}

TEST_F(Emission, SurplusAddressBytesOfAnEndRecordDoSoToo) {
    enter_final_pass();
    record(9, 0x1234);
    EXPECT_EQ(script(), "");
    EXPECT_EQ(record(9, 0x12345), "S80401234592\n");
    EXPECT_EQ(script(), "\n #setMemory  23=45");
    EXPECT_EQ(record(9, 0x12345678), "S70512345678E6\n");
    EXPECT_EQ(script(), "\n #setMemory  23=45\n #setMemory  34=56\n #setMemory  35=78");
}

TEST_F(Emission, EmissionGoesOnWithoutAScript) {
    zirpafile.close();
    begin_final_pass(0x10);
    ebyte(0xF0);
    ebyte(5);
    putout();
    EXPECT_EQ(object(), "S1050010F005F5\n");
}

// ---- The C array
// ------------------------------------------------------------------------------------

class ArrayRows : public Emission {
  protected:
    void SetUp() override {
        Emission::SetUp();
        open_output(algofile, "prog_cout.c");
        O_cout = 1;
    }

    static std::string rows() {
        algofile.flush();
        return read_text("prog_cout.c");
    }
};

TEST_F(ArrayRows, ValuesAreSeparatedByCommas) {
    begin_final_pass();
    ebyte(0xAB);
    EXPECT_EQ(algofilecount, 1U);
    eshort(0x0102);
    ecode(0x0304);
    EXPECT_EQ(rows(), "0xAB,0x01,0x02,0x03,0x04");
    elong(0x05060708);
    outcode(9);
    EXPECT_EQ(rows(), "0xAB,0x01,0x02,0x03,0x04,0x05,0x06,0x07,0x08,0x09");
    EXPECT_EQ(algofilecount, 10U);
}

TEST_F(ArrayRows, RowHoldsSixteenValues) {
    begin_final_pass();
    for (int byte = 0; byte < 15; ++byte) {
        ebyte(0);
    }
    EXPECT_FALSE(rows().ends_with("\n"));
    ebyte(1);
    EXPECT_TRUE(rows().ends_with(",0x00,0x01,\n"));
    EXPECT_EQ(algofilecount, 0U);
    ebyte(2);
    EXPECT_TRUE(rows().ends_with(",0x01,\n0x02"));
}

TEST_F(ArrayRows, ArrayEndsOnALineOfItsOwn) {
    begin_final_pass();
    end_array();
    EXPECT_EQ(rows(), "};\n");
    ebyte(1);
    end_array();
    EXPECT_EQ(rows(), "};\n0x01\n};\n");
}

TEST_F(ArrayRows, FullRowNeedsNoFurtherLineFeedAtTheEnd) {
    begin_final_pass();
    emit_zeros(16);
    end_array();
    EXPECT_TRUE(rows().ends_with(",0x00,\n};\n"));
}

TEST_F(ArrayRows, NothingIsAddedBeforeTheFinalPassOrWithoutTheOption) {
    ebyte(1);
    elong(1);
    EXPECT_EQ(rows(), "");
    O_cout = 0;
    begin_final_pass();
    ebyte(1);
    elong(1);
    outcode(1);
    EXPECT_EQ(rows(), "");
}

TEST_F(ArrayRows, NewRunBeginsARow) {
    algofilecount = 5;
    code_i = 7;
    emit_new_run();
    EXPECT_EQ(algofilecount, 0U);
    EXPECT_EQ(code_i, 0U);
}

} // namespace
