// S-records: the line of a record, and the end.
#include "target/location.h"
#include "target/srecord.h"
#include "tests/unit/support.h"

namespace {

class SRecords : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_output(objectfile, "prog.s19");
        emit_to(nullptr, put_srecord);
        enter_final_pass();
    }

    static std::string object() {
        objectfile.flush();
        return read_text("prog.s19");
    }
};

TEST_F(SRecords, LineHasTypeLengthBytesAndChecksum) {
    put_srecord({1, 4, {0x00, 0x10, 0xF0, 0x05}});
    EXPECT_EQ(object(), "S1050010F005F5\n");
}

TEST_F(SRecords, ChecksumIsThatOfTheLow8Bits) {
    put_srecord({2, 3, {0xFF, 0xFF, 0xFF}});
    EXPECT_EQ(object(), "S204FFFFFFFE\n");
}

TEST_F(SRecords, TypeIsOneDigit) {
    put_srecord({0x1F, 2, {0, 0}});
    EXPECT_EQ(object(), "SF030000FC\n");
}

TEST_F(SRecords, FullRecordIsWrittenWhole) {
    Record record{3, kRecordCapacity, {}};
    record.bytes.fill(1);
    put_srecord(record);
    // The length and 32 ones make 41.
    EXPECT_EQ(
        object(), "S321" + [] {
            std::string ones;
            for (std::size_t i = 0; i < kRecordCapacity; ++i) {
                ones += "01";
            }
            return ones;
        }() + "BE\n");
}

TEST_F(SRecords, EndFollowsWhatIsLeftOfTheData) {
    outrecinit(kDataRecord16, 0x10);
    ebyte(0xF0);
    ebyte(5);
    end_srecords(0x10);
    EXPECT_EQ(object(), "S1050010F005F5\nS9030010EC\n");
}

TEST_F(SRecords, EndStandsAloneWithoutData) {
    outrecinit(kDataRecord16, 0x10);
    end_srecords(0x12345678);
    EXPECT_EQ(object(), "S70512345678E6\n");
}

} // namespace
