// The C array: its declaration, its rows and its end.
#include "target/carray.h"
#include "target/emit.h"
#include "tests/unit/support.h"

namespace {

class Array : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_output(algofile, "prog_cout.c");
        emit_to(put_array_value, nullptr);
        enter_final_pass();
        algofilecount = 0;
    }

    static std::string rows() {
        algofile.flush();
        return read_text("prog_cout.c");
    }
};

TEST_F(Array, BeginsWithItsDeclarationAndANewRow) {
    algofilecount = 5;
    begin_array();
    EXPECT_EQ(algofilecount, 0U);
    EXPECT_EQ(rows(), "const unsigned char algo[] = {\n");
}

TEST_F(Array, ValueIsTheLow8Bits) {
    put_array_value(0x1A5);
    EXPECT_EQ(rows(), "0xA5");
}

TEST_F(Array, ValuesAreSeparatedByCommas) {
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

TEST_F(Array, RowHoldsSixteenValues) {
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

TEST_F(Array, ArrayEndsOnALineOfItsOwn) {
    end_array();
    EXPECT_EQ(rows(), "};\n");
    ebyte(1);
    end_array();
    EXPECT_EQ(rows(), "};\n0x01\n};\n");
}

TEST_F(Array, FullRowNeedsNoFurtherLineFeedAtTheEnd) {
    emit_zeros(16);
    end_array();
    EXPECT_TRUE(rows().ends_with(",0x00,\n};\n"));
}

} // namespace
