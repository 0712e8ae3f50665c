// Emission: the primitives in both kinds of pass, the listing copy, records, and what formats take.
#include "as/asOptions.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/srecord.h"
#include "tests/unit/support.h"

#include <vector>

namespace {

using Bytes = std::vector<int>;

class Emission : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_output(objectfile, "prog.s19");
        emit_to(nullptr, put_srecord);
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

// ---- The formats
// -------------------------------------------------------------------------------------

std::vector<std::uint32_t> bytes_taken;
std::vector<Record> records_taken;

void take_byte(std::uint32_t value) { bytes_taken.push_back(value & 0xFF); }
void take_record(const Record &record) { records_taken.push_back(record); }

class Formats : public Emission {
  protected:
    void SetUp() override {
        Emission::SetUp();
        bytes_taken.clear();
        records_taken.clear();
    }
};

TEST_F(Formats, TakeBytesAtOnceAndRecordsWhenTheyAreFinished) {
    emit_to(take_byte, take_record);
    begin_final_pass(0x1234);
    ebyte(0x1F0);
    eshort(0x0102);
    elong(0x03040506);
    outcode(7);
    EXPECT_EQ(bytes_taken, (std::vector<std::uint32_t>{0xF0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_TRUE(records_taken.empty());
    putout();
    ASSERT_EQ(records_taken.size(), 1U);
    EXPECT_EQ(records_taken[0].type, 1);
    ASSERT_EQ(records_taken[0].count, 10U);
    EXPECT_EQ(records_taken[0].bytes[0], 0x12);
    EXPECT_EQ(records_taken[0].bytes[1], 0x34);
    EXPECT_EQ(records_taken[0].bytes[2], 0xF0);
    EXPECT_EQ(records_taken[0].bytes[9], 7);
}

TEST_F(Formats, TakeNothingBeforeTheFinalPass) {
    emit_to(take_byte, take_record);
    ebyte(1);
    elong(1);
    putout();
    EXPECT_TRUE(bytes_taken.empty());
    EXPECT_TRUE(records_taken.empty());
}

TEST_F(Formats, TakeWhatTheyHaveAskedFor) {
    emit_to(take_byte, nullptr);
    begin_final_pass();
    ebyte(1);
    putout();
    EXPECT_EQ(bytes_taken.size(), 1U);
    EXPECT_TRUE(records_taken.empty());
}

TEST_F(Formats, AreForgottenByANewRun) {
    emit_to(take_byte, take_record);
    code_i = 7;
    emit_new_run();
    EXPECT_EQ(code_i, 0U);
    begin_final_pass();
    ebyte(1);
    putout();
    EXPECT_TRUE(bytes_taken.empty());
    EXPECT_TRUE(records_taken.empty());
    EXPECT_EQ(object(), "");
}

} // namespace
