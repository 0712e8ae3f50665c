// The listing of a line: its address, its bytes in both layouts, its continuation lines.
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/location.h"
#include "tests/unit/support.h"

#include <algorithm>

namespace {

std::string blanks(std::size_t count) { return std::string(count, ' '); }

class Listing : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("prog.szirpa", "");
        enter_final_pass();
        open_output(listfile, "prog.lst");
        O_list = 1;
        listing_on = 1;
        newuse = 0;
        listline = 7;
    }

    // A line that has generated the bytes 1, 2, 3 ... at address 5.
    static void begin(std::size_t count, const std::string &text = " FCB 1\n") {
        begin_line(text);
        for (std::size_t index = 0; index < Code.size(); ++index) {
            Code[index] = static_cast<std::uint8_t>(index < count ? index + 1 : 0);
        }
        code_i = count;
        pending_listLC = 1;
        listLC = 5;
    }

    // What has been written to the listing since the last call.
    std::string take_listing() {
        listfile.flush();
        const std::string whole = read_text("prog.lst");
        const std::string text = whole.substr(taken_);
        taken_ = whole.size();
        return text;
    }

    // Lists the line and returns what was written.
    std::string list(bool is_skipped = false) {
        as_write_listline(is_skipped);
        return take_listing();
    }

  private:
    std::size_t taken_ = 0;
};

TEST_F(Listing, LineShowsItsAddressBytesNumberAndText) {
    begin(2);
    EXPECT_EQ(list(), "05 01 02" + blanks(12) + "    7.  FCB 1\n");
}

TEST_F(Listing, LineWithoutBytesShowsSixEmptyColumns) {
    begin(0, " ORG 5\n");
    EXPECT_EQ(list(), "05" + blanks(18) + "    7.  ORG 5\n");
}

TEST_F(Listing, AddressIsOneByteWide) {
    begin(0, "X\n");
    listLC = 0x12345;
    EXPECT_EQ(list(), "45" + blanks(18) + "    7. X\n");
}

TEST_F(Listing, LineWithoutAnAddressShowsBlanks) {
    begin(1, "; note\n");
    pending_listLC = 0;
    EXPECT_EQ(list(), "   01" + blanks(15) + "    7. ; note\n");
}

TEST_F(Listing, LineNumberTakesAtLeastFourColumns) {
    begin(0, "X\n");
    listline = 1234;
    EXPECT_EQ(list(), "05" + blanks(18) + " 1234. X\n");
    listline = 12345;
    EXPECT_EQ(list(), "05" + blanks(18) + " 12345. X\n");
}

TEST_F(Listing, LineNumberIsThatOfTheListing) {
    begin(0, "X\n");
    Line_no = 99;
    realline = 98;
    EXPECT_EQ(list(), "05" + blanks(18) + "    7. X\n");
}

TEST_F(Listing, TextWithoutALineFeedEndsAsItIs) {
    begin(0, " NOP");
    EXPECT_EQ(list(), "05" + blanks(18) + "    7.  NOP");
}

TEST_F(Listing, SixBytesFillTheLine) {
    begin(5);
    EXPECT_EQ(list(), "05 01 02 03 04 05       7.  FCB 1\n");
    begin(6);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n");
}

TEST_F(Listing, FurtherBytesStandOnContinuationLines) {
    begin(7);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07" +
                          blanks(15) + "\n");
    begin(11);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07 08 09 0A 0B   \n");
    begin(13);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07 08 09 0A 0B 0C\n"
                      "     0D" +
                          blanks(15) + "\n");
}

// Quirk (blank-row): a multiple of six from 12 on is followed by a line of blanks, six itself is
// not.
TEST_F(Listing, WholeContinuationLinesAreFollowedByABlankOne) {
    begin(12);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07 08 09 0A 0B 0C\n" +
                          blanks(22) + "\n");
    begin(18);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07 08 09 0A 0B 0C\n"
                      "     0D 0E 0F 10 11 12\n" +
                          blanks(22) + "\n");
}

TEST_F(Listing, FullestLineListsAllItsBytes) {
    begin(124);
    const std::string text = list();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 21);
    EXPECT_TRUE(text.ends_with("\n     73 74 75 76 77 78\n     79 7A 7B 7C      \n"));
    begin(120);
    EXPECT_TRUE(list().ends_with("\n     73 74 75 76 77 78\n" + blanks(22) + "\n"));
}

// ---- The word layout, which no source line selects
// --------------------------------------------------

TEST_F(Listing, WordLayoutShowsBytesInPairs) {
    begin(4);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05 0102 0304" + blanks(8) + "    7.  FCB 1\n");
    begin(6);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05 0102 0304 0506       7.  FCB 1\n");
    begin(0);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05" + blanks(18) + "    7.  FCB 1\n");
}

TEST_F(Listing, WordLayoutShowsAPairAsSoonAsItHasAByte) {
    begin(3);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05 0102 0300" + blanks(8) + "    7.  FCB 1\n");
}

TEST_F(Listing, WordLayoutContinuesInWords) {
    begin(8);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05 0102 0304 0506       7.  FCB 1\n"
                      "     0708" +
                          blanks(13) + "\n");
    begin(12);
    Byte_Extension = 0;
    EXPECT_EQ(list(), "05 0102 0304 0506       7.  FCB 1\n"
                      "     0708 090A 0B0C   \n" +
                          blanks(22) + "\n");
}

TEST_F(Listing, WordLayoutWithoutAnAddressKeepsItsColumns) {
    begin(2, "X\n");
    Byte_Extension = 0;
    pending_listLC = 0;
    EXPECT_EQ(list(), "   0102" + blanks(13) + "    7. X\n");
}

// ---- EQU
// --------------------------------------------------------------------------------------------

TEST_F(Listing, EquShowsTheLowByteOfItsValue) {
    begin(2, "X EQU 5\n");
    Code[0] = 0x12;
    Code[1] = 0xAB;
    pending_listLC = 0;
    IsEquDirective = 1;
    EXPECT_EQ(list(), "AB" + blanks(18) + "    7. X EQU 5\n");
}

TEST_F(Listing, EquHasNoContinuationLines) {
    begin(12, "X EQU 5\n");
    pending_listLC = 0;
    IsEquDirective = 1;
    EXPECT_EQ(list(), "02" + blanks(18) + "    7. X EQU 5\n");
}

TEST_F(Listing, AddressWinsOverTheValueOfAnEqu) {
    begin(2, "X EQU 5\n");
    IsEquDirective = 1;
    EXPECT_EQ(list(), "05 01 02" + blanks(12) + "    7. X EQU 5\n");
}

// ---- The file header
// --------------------------------------------------------------------------------

TEST_F(Listing, FileHeaderFollowsTheFirstLineListedAfterAChange) {
    newuse = 1;
    begin(7);
    EXPECT_EQ(list(), "05 01 02 03 04 05 06    7.  FCB 1\n"
                      "     07" +
                          blanks(15) + "\n---- File: \"prog.szirpa\"\n");
    EXPECT_EQ(newuse, 0);
    begin(0, "X\n");
    EXPECT_EQ(list(), "05" + blanks(18) + "    7. X\n");
}

TEST_F(Listing, FileHeaderFollowsAnEquToo) {
    newuse = 1;
    begin(2, "X EQU 5\n");
    pending_listLC = 0;
    IsEquDirective = 1;
    EXPECT_EQ(list(), "02" + blanks(18) + "    7. X EQU 5\n---- File: \"prog.szirpa\"\n");
}

TEST_F(Listing, FileHeaderNamesTheFirstFileBehindTheLast) {
    pop_source();
    newuse = 1;
    begin(0, "X\n");
    EXPECT_EQ(list(), "05" + blanks(18) + "    7. X\n---- File: \"prog.szirpa\"\n");
}

TEST_F(Listing, ChangeOfFileWaitsWhileLinesAreNotListed) {
    newuse = 1;
    listing_on = 0;
    begin(0, "X\n");
    EXPECT_EQ(list(), "");
    EXPECT_EQ(newuse, 1);
}

// ---- When lines are listed
// --------------------------------------------------------------------------

TEST_F(Listing, LinesAreListedInTheFinalPassWithTheListingOn) {
    begin(0, "X\n");
    Pass2 = 0;
    EXPECT_EQ(list(), "");
    Pass2 = 1;
    O_list = 0;
    EXPECT_EQ(list(), "");
    O_list = 1;
    listing_on = 0;
    EXPECT_EQ(list(), "");
    listing_on = 1;
    EXPECT_NE(list(), "");
}

TEST_F(Listing, SkippedLinesAreListedOnRequest) {
    begin(0, "X\n");
    EXPECT_EQ(list(true), "");
    uncond_listing_on = 1;
    EXPECT_EQ(list(true), "05" + blanks(18) + "    7. X\n");
    listing_on = 0;
    EXPECT_EQ(list(true), "");
}

TEST_F(Listing, SwitchesAreOffInANewRunAndTheOneForSkippedLinesInANewPass) {
    uncond_listing_on = 1;
    listing_new_pass();
    EXPECT_EQ(uncond_listing_on, 0);
    EXPECT_EQ(listing_on, 1);
    listing_new_run();
    EXPECT_EQ(listing_on, 0);
}

// ---- Head and tail
// --------------------------------------------------------------------------------------

TEST_F(Listing, HeadNamesTheListingAndSwitchesItOn) {
    listing_on = 0;
    begin_listing("some.lst");
    EXPECT_EQ(listing_on, 1);
    EXPECT_EQ(take_listing(), "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
                              "Free software under the MIT License.\n\n"
                              "\nFile: some.lst\n");
}

TEST_F(Listing, TailIsTheNumberOfErrorsIfThereAreAny) {
    end_listing();
    EXPECT_EQ(take_listing(), "");
    Errors = 12;
    end_listing();
    EXPECT_EQ(take_listing(), "\n\n****** Total Errors: 12\n");
}

// ---- Records of instructions
// ------------------------------------------------------------------------

TEST_F(Listing, InstructionIsRecordedWithOrWithoutAListing) {
    O_symdebug = 1;
    O_list = 0;
    begin(1, " NOP\n");
    isinstruction = 1;
    Line_no = 12;
    listLC = 0x100;
    LC = 0x101;
    as_write_listline(false);
    EXPECT_EQ(debug_text(), "SY:C:X:prog.szirpa:12:1::100\n");
    EXPECT_EQ(take_listing(), "");
}

TEST_F(Listing, OtherLinesAreNotRecorded) {
    begin(1, " NOP\n");
    O_symdebug = 1;
    as_write_listline(false);
    isinstruction = 1;
    O_symdebug = 0;
    as_write_listline(false);
    O_symdebug = 1;
    O_compiler_generated_input = 1;
    as_write_listline(false);
    EXPECT_EQ(debug_text(), "");
    O_compiler_generated_input = 0;
    as_write_listline(false);
    EXPECT_NE(debug_text(), "");
}

} // namespace
