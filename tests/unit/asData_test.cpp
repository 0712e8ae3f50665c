// Data directives: what they emit, what they report, and the sizes they register for labels.
#include "as/asData.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "tests/unit/support.h"

namespace {

class Data : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        open_source_file("prog.szirpa", "");
        putsym("DATA", 0x10, 1, SYM_DEFINED, 0, nullptr, 0);
    }

    // The final pass at line 1, behind the label DATA.
    static void begin_final_pass() {
        enter_final_pass();
        Line_no = 1;
        SetLastLabel("DATA", 0x10);
    }

    static int define_data(const std::string &operand) {
        begin_line(operand);
        return do_define_data();
    }

    static int define_string(const std::string &operand, int terminate = 0) {
        begin_line(operand);
        return do_define_characters('"', terminate);
    }

    static int reserve(const std::string &operand, int unit = 1) {
        begin_line(operand);
        return do_reserve_memory(unit);
    }

    static std::vector<int> bytes() {
        return {Code.begin(), Code.begin() + static_cast<long>(code_i)};
    }

    std::string error(const std::string &text) const {
        return directory + "/prog.szirpa (1) Error: " + text + "\n";
    }
    std::string warning(const std::string &text) const {
        return directory + "/prog.szirpa (1) Warning: " + text + "\n";
    }
};

using Bytes = std::vector<int>;

// ---- FCB
// --------------------------------------------------------------------------------------------

TEST_F(Data, ByteListEmitsItsItems) {
    begin_final_pass();
    EXPECT_EQ(define_data("1,$FF,'A',-1\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{1, 255, 65, 255}));
    EXPECT_EQ(LC, 4U);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Data, ByteListTakesPlainBytesForWhatTheirLongerFormsAre) {
    begin_final_pass();
    // One, two and three digits, more than are read plainly, and what only begins plainly.
    EXPECT_EQ(define_data("0,7,42,255,0255,00001,$0f,$5,$005,$FF,$10+1,9*2,12-3\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{0, 7, 42, 255, 255, 1, 15, 5, 5, 255, 17, 18, 9}));
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(define_data("256\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{0}));
    EXPECT_EQ(take_output(), error("Value (0x100) is truncated"));
}

TEST_F(Data, ByteListTakesTheSameRoomInEveryPass) {
    EXPECT_EQ(define_data("1,2,3\n"), 1);
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(code_i, 0U);
}

TEST_F(Data, ByteListEndsAtABlank) {
    begin_final_pass();
    EXPECT_EQ(define_data("1 ,2\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{1}));
    EXPECT_EQ(define_data("1\x80,2\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{1}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(Data, ByteListStopsAtABadDelimiterBehindTheItemsBefore) {
    begin_final_pass();
    EXPECT_EQ(define_data("1,2;3\n"), -1);
    EXPECT_EQ(bytes(), (Bytes{1, 2}));
    EXPECT_EQ(take_output(), error("Bad delimiter"));
    EXPECT_EQ(getsym("DATA")->element_count, 0);
}

TEST_F(Data, ByteListCutsAndReportsValuesOutOfRange) {
    begin_final_pass();
    EXPECT_EQ(define_data("$1FF,2\n"), 1);
    EXPECT_EQ(bytes(), (Bytes{0xFF, 2}));
    EXPECT_EQ(take_output(), error("Value (0x1FF) is truncated"));
}

TEST_F(Data, ByteListSelectsTheByteColumns) {
    Byte_Extension = 0;
    set_line("1\n");
    EXPECT_EQ(do_define_data(), 1);
    EXPECT_EQ(Byte_Extension, 1);
}

TEST_F(Data, FaultyItemEndsTheByteList) {
    begin_final_pass();
    EXPECT_EQ(define_data("1,2+\n"), -1);
    EXPECT_EQ(bytes(), (Bytes{1}));
    EXPECT_EQ(getsym("DATA")->element_count, 0);
}

// ---- FCS
// --------------------------------------------------------------------------------------------

TEST_F(Data, StringEmitsItsCharacters) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"AB\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{'A', 'B'}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(Data, StringReportsSuccessDifferentlyInTheFinalPass) {
    EXPECT_EQ(define_string("\"AB\"\n"), 1);
    EXPECT_EQ(LC, 2U);
    begin_final_pass();
    EXPECT_EQ(define_string("\"AB\"\n"), 2);
}

// Quirk (vertical-tab): \t is a vertical tab.
TEST_F(Data, StringTranslatesItsEscapes) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"\\b\\n\\r\\t\\\\\\\"\\'\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{8, 10, 13, 11, 92, 34, 39}));
    EXPECT_EQ(define_string("\"\\0\\9\\65\\q\\B\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{0, 9, 6, '5', 'q', 'B'}));
}

TEST_F(Data, ZeroTerminatedStringEndsInAZeroThatIsNotCounted) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"AB\"\n", 1), 2);
    EXPECT_EQ(bytes(), (Bytes{'A', 'B', 0}));
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(getsym("DATA")->element_count, 2);
    EXPECT_EQ(getsym("DATA")->element_size, 1U);
    EXPECT_EQ(last_seen_label_offset, 2U);
}

TEST_F(Data, ZeroTerminatedStringTakesTheSameRoomInEveryPass) {
    EXPECT_EQ(define_string("\"AB\"\n", 1), 1);
    EXPECT_EQ(LC, 3U);
}

TEST_F(Data, UnclosedZeroTerminatedStringHasNoZero) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"AB", 1), -1);
    EXPECT_EQ(bytes(), (Bytes{'A', 'B'}));
    EXPECT_EQ(take_output(), error("Bad operand syntax"));
}

TEST_F(Data, StringHasTheDelimiterThatIsAskedFor) {
    begin_final_pass();
    begin_line("'A\"B'\n");
    EXPECT_EQ(do_define_characters('\'', 0), 2);
    EXPECT_EQ(bytes(), (Bytes{'A', '"', 'B'}));
    begin_line("\"AB\"\n");
    EXPECT_EQ(do_define_characters('\'', 0), -1);
    EXPECT_EQ(take_output(), error("Bad operand syntax"));
}

TEST_F(Data, StringWithoutItsOpeningDelimiterEmitsNothing) {
    begin_final_pass();
    EXPECT_EQ(define_string("AB\"\n"), -1);
    EXPECT_EQ(bytes(), (Bytes{}));
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(take_output(), error("Bad operand syntax"));
}

// Quirk (first-character): the first character is content even when it is the delimiter.
TEST_F(Data, FirstCharacterIsContentEvenIfItIsTheDelimiter) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"\"A\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{'"', 'A'}));
    EXPECT_EQ(define_string("\"\"\""), 2);
    EXPECT_EQ(bytes(), (Bytes{'"'}));
    EXPECT_EQ(define_string("\"\""), -1);
    EXPECT_EQ(bytes(), (Bytes{'"'}));
}

TEST_F(Data, UnclosedStringEmitsTheLineFeedToo) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"AB\n"), -1);
    EXPECT_EQ(bytes(), (Bytes{'A', 'B', '\n'}));
    EXPECT_EQ(take_output(), error("Bad operand syntax"));
    EXPECT_EQ(getsym("DATA")->element_count, 0);
}

TEST_F(Data, MissingCharacterAtTheEndOfTheTextEmitsNothing) {
    begin_final_pass();
    EXPECT_EQ(define_string("\""), -1);
    EXPECT_EQ(bytes(), (Bytes{}));
    EXPECT_EQ(define_string("\"A\\"), -1);
    EXPECT_EQ(bytes(), (Bytes{'A'}));
    EXPECT_EQ(LC, 1U);
}

TEST_F(Data, HighBytesOfAStringDrawAWarningAndStay) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"\x7F\x80\xFF\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{0x7F, 0x80, 0xFF}));
    EXPECT_EQ(take_output(),
              warning("Illegal ASCII character") + warning("Illegal ASCII character"));
}

TEST_F(Data, EscapedHighByteDrawsNoWarning) {
    begin_final_pass();
    EXPECT_EQ(define_string("\"\\\xE9\"\n"), 2);
    EXPECT_EQ(bytes(), (Bytes{0xE9}));
    EXPECT_EQ(take_output(), "");
}

// ---- RMB
// --------------------------------------------------------------------------------------------

TEST_F(Data, ReservationIsOneOfZeroBytesAndAlwaysFails) {
    begin_final_pass();
    EXPECT_EQ(reserve("3\n"), -1);
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(bytes(), (Bytes{0}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(Data, ReservationTakesTheSameRoomInEveryPass) {
    EXPECT_EQ(reserve("3\n"), -1);
    EXPECT_EQ(LC, 3U);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(Data, ReservationMultipliesByItsUnit) {
    begin_final_pass();
    EXPECT_EQ(reserve("3\n", 4), -1);
    EXPECT_EQ(LC, 12U);
    EXPECT_EQ(getsym("DATA")->element_count, 3);
    EXPECT_EQ(getsym("DATA")->element_size, 4U);
    EXPECT_EQ(last_seen_label_offset, 12U);
}

TEST_F(Data, ReservationOfLessThanOneByteIsUndetermined) {
    begin_final_pass();
    for (const char *operand : {"0\n", "-1\n", "65536*65536+1\n"}) {
        EXPECT_EQ(reserve(operand), -1);
        EXPECT_EQ(take_output(), error("Undetermined size for reservation of storage")) << operand;
    }
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(getsym("DATA")->element_count, 0);
}

TEST_F(Data, ReservationReachesAroundTheWholeAddressSpace) {
    LC = 5;
    EXPECT_EQ(reserve("65536*65536-1\n"), -1);
    EXPECT_EQ(LC, 4U);
    EXPECT_EQ(reserve("65536*65536\n"), -1);
    EXPECT_EQ(LC, 4U);
    EXPECT_EQ(Line_Done, 0);
    EXPECT_EQ(reserve("65536*65536+1\n"), -1);
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(LC, 4U);
}

TEST_F(Data, ReservationNeedsABlankBehindItsSize) {
    begin_final_pass();
    EXPECT_EQ(reserve("3,4\n"), -1);
    EXPECT_EQ(take_output(), error("Bad constant delimiter"));
    EXPECT_EQ(LC, 0U);
    EXPECT_EQ(reserve("3 4\n"), -1);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(LC, 3U);
}

// ---- Registered sizes
// -------------------------------------------------------------------------------

TEST_F(Data, FirstDataBehindALabelSetsItsSizeAndFurtherDataAddsToIt) {
    begin_final_pass();
    define_data("1,2\n");
    EXPECT_EQ(getsym("DATA")->element_count, 2);
    EXPECT_EQ(getsym("DATA")->element_size, 1U);
    EXPECT_EQ(last_seen_label_offset, 2U);
    define_data("3\n");
    EXPECT_EQ(getsym("DATA")->element_count, 3);
    define_string("\"ABCD\"\n");
    EXPECT_EQ(getsym("DATA")->element_count, 7);
    reserve("10\n", 2);
    EXPECT_EQ(getsym("DATA")->element_count, 17);
    EXPECT_EQ(getsym("DATA")->element_size, 1U);
    EXPECT_EQ(last_seen_label_offset, 2U);
}

TEST_F(Data, ReservationRegistersItsCount) {
    begin_final_pass();
    reserve("10\n");
    EXPECT_EQ(getsym("DATA")->element_count, 10);
    EXPECT_EQ(getsym("DATA")->element_size, 1U);
    EXPECT_EQ(last_seen_label_offset, 10U);
}

TEST_F(Data, SizesAreRegisteredInTheFinalPassAlone) {
    SetLastLabel("DATA", 0x10);
    define_data("1,2\n");
    define_string("\"AB\"\n");
    reserve("4\n");
    EXPECT_EQ(getsym("DATA")->element_count, 0);
    EXPECT_EQ(getsym("DATA")->element_size, 0U);
    EXPECT_EQ(last_seen_label_offset, 0U);
}

TEST_F(Data, NothingIsRegisteredWithoutALabel) {
    begin_final_pass();
    resetLabel();
    EXPECT_EQ(define_data("1,2\n"), 1);
    EXPECT_EQ(define_string("\"AB\"\n"), 2);
    EXPECT_EQ(reserve("4\n"), -1);
    EXPECT_EQ(getsym("DATA")->element_count, 0);
    EXPECT_EQ(last_seen_label_offset, 0U);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Data, LabelThatIsNotInTheTableFailsToRegisterButTheDataStand) {
    begin_final_pass();
    SetLastLabel("LOST", 0);
    EXPECT_EQ(define_data("1,2\n"), 1);
    EXPECT_EQ(take_output(), error("RegisterSymSize failed"));
    EXPECT_EQ(define_string("\"AB\"\n"), 2);
    EXPECT_EQ(take_output(), error("RegisterSymSize failed"));
    EXPECT_EQ(reserve("4\n"), -1);
    EXPECT_EQ(take_output(), error("RegisterSymSize failed"));
    EXPECT_EQ(LC, 8U);
    EXPECT_EQ(Errors, 3);
}

TEST_F(Data, LabelOfTheLineIsDefinedAheadOfTheData) {
    LC = 0x20;
    begin_line("NEW: FCB 1,2\n");
    label = IsLabel();
    Col_Ptr += 5;
    EXPECT_EQ(do_define_data(), 1);
    ASSERT_NE(getsym("NEW"), nullptr);
    EXPECT_EQ(getsym("NEW")->value, 0x20);
    EXPECT_EQ(last_seen_label, "NEW");
    EXPECT_EQ(last_seen_label_value, 0x20U);
    EXPECT_EQ(last_seen_label_offset, 0U);
    EXPECT_EQ(IsEqu, 1);
    EXPECT_EQ(LC, 0x22U);
}

TEST_F(Data, LabelOfTheLineRestartsTheRegistration) {
    putsym("NEW", 0, 1, SYM_DEFINED, 0, nullptr, 0);
    begin_final_pass();
    define_data("1,2\n");
    begin_line("NEW FCS \"ABC\"\n");
    label = IsLabel();
    Col_Ptr += 5;
    LC = 0;
    EXPECT_EQ(do_define_characters('"', 0), 2);
    EXPECT_EQ(getsym("NEW")->element_count, 3);
    EXPECT_EQ(getsym("DATA")->element_count, 2);
    EXPECT_EQ(last_seen_label_offset, 3U);
}

TEST_F(Data, LabelOfAFaultyLineIsDefinedAllTheSame) {
    LC = 4;
    begin_line("NEW RMB 0\n");
    label = IsLabel();
    Col_Ptr += 5;
    EXPECT_EQ(do_reserve_memory(1), -1);
    ASSERT_NE(getsym("NEW"), nullptr);
    EXPECT_EQ(getsym("NEW")->value, 4);
    EXPECT_EQ(IsEqu, 1);
}

TEST_F(Data, LineWithoutALabelDefinesNone) {
    SetLastLabel("DATA", 0x10);
    begin_line("X FCB 1\n");
    define_directive_label();
    EXPECT_EQ(getsym("X"), nullptr);
    EXPECT_EQ(IsEqu, 0);
    EXPECT_EQ(last_seen_label, "DATA");
    label = IsLabel();
    define_directive_label();
    EXPECT_NE(getsym("X"), nullptr);
    EXPECT_EQ(last_seen_label, "X");
}

} // namespace
