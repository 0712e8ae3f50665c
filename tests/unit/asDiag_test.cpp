// Diagnostics: both forms of every report, and what each report counts and stops.
#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "tests/unit/support.h"

#include <algorithm>
#include <filesystem>

namespace {

class Diagnostics : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        std::filesystem::create_directory("sub");
    }

    // Opens sub/prog.szirpa and switches to the final pass, in its line 12.
    void begin_reports() {
        open_source_file("sub/prog.szirpa", "");
        enter_final_pass();
        Line_no = 12;
    }

    void open_listing() {
        open_output(listfile, "out.lst");
        O_list = 1;
    }

    static std::string listing() {
        listfile.flush();
        return read_text("out.lst");
    }

    std::string path() const { return directory + "/sub/prog.szirpa"; }
};

// ---- Errors
// -----------------------------------------------------------------------------------------

TEST_F(Diagnostics, ErrorNamesThePathOnStandardOutputAndTheBareNameInTheListing) {
    begin_reports();
    open_listing();
    Error("Bad delimiter");
    EXPECT_EQ(take_output(), path() + " (12) Error: Bad delimiter\n");
    EXPECT_EQ(listing(), "\"prog.szirpa\" line 12, ERROR: Bad delimiter\n");
    EXPECT_EQ(Errors, 1);
    EXPECT_EQ(Warnings, 0);
    EXPECT_EQ(LineError, 1);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(Diagnostics, ErrorOutsideTheFinalPassOnlyEndsTheLine) {
    open_source_file("sub/prog.szirpa", "");
    open_listing();
    O_warn = 1;
    Error("Bad delimiter");
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(LineError, 0);
    EXPECT_EQ(Errors, 0);
    Line_Done = 0;
    vpError("Value %d", 1);
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(listing(), "");
}

TEST_F(Diagnostics, SecondErrorOfALineIsNeitherReportedNorCounted) {
    begin_reports();
    Error("first");
    Error("second");
    EXPECT_EQ(take_output(), path() + " (12) Error: first\n");
    EXPECT_EQ(Errors, 1);
    diag_new_line();
    EXPECT_EQ(Line_Done, 0);
    Error("third");
    EXPECT_EQ(take_output(), path() + " (12) Error: third\n");
    EXPECT_EQ(Errors, 2);
}

TEST_F(Diagnostics, EveryErrorWithValuesIsReportedAndCounted) {
    begin_reports();
    open_listing();
    vpError("symbol '%s' redefined at line %d", "X", 3);
    vpError("Value (0x%X) is truncated", 0x1FFU);
    EXPECT_EQ(take_output(), path() + " (12) Error: symbol 'X' redefined at line 3\n" + path() +
                                 " (12) Error: Value (0x1FF) is truncated\n");
    EXPECT_EQ(listing(), "\"prog.szirpa\" line 12, ERROR: symbol 'X' redefined at line 3\n"
                         "\"prog.szirpa\" line 12, ERROR: Value (0x1FF) is truncated\n");
    EXPECT_EQ(Errors, 2);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(Diagnostics, ErrorWithValuesIsTheLinesErrorForPlainOnes) {
    begin_reports();
    Error("one");
    vpError("%s", "two");
    Error("three");
    EXPECT_EQ(take_output(), path() + " (12) Error: one\n" + path() + " (12) Error: two\n");
    EXPECT_EQ(Errors, 2);
}

TEST_F(Diagnostics, PlainErrorTextIsNoFormat) {
    begin_reports();
    Error("100%s %d");
    EXPECT_EQ(take_output(), path() + " (12) Error: 100%s %d\n");
}

TEST_F(Diagnostics, LongErrorTextsStayWhole) {
    begin_reports();
    const std::string name(1100, 'n');
    vpError("Undefined symbol '%s'", name.c_str());
    EXPECT_EQ(take_output(), path() + " (12) Error: Undefined symbol '" + name + "'\n");
}

// A value of NUL ends a message, whatever its format holds behind it.
TEST_F(Diagnostics, NulAmongTheValuesEndsTheMessage) {
    begin_reports();
    open_listing();
    vpError("type '%c'", '\0');
    vpWarning("type '%c'", '\0');
    EXPECT_EQ(take_output(), path() + " (12) Error: type '\n" + path() + " (12) Warning: type '\n");
    EXPECT_EQ(listing(), "\"prog.szirpa\" line 12, ERROR: type '\n"
                         "\"prog.szirpa\" LINE: 12,WARNING: type '\n");
    EXPECT_EQ(end_status([] { vpFatal("type '%c'", '\0'); }), 1);
    EXPECT_EQ(take_output(), path() + " (12)Fatal error: type '\n");
}

TEST_F(Diagnostics, ErrorCountWrapsAt16Bits) {
    begin_reports();
    Errors = 32766;
    vpError("%d", 1);
    EXPECT_EQ(Errors, 32767);
    vpError("%d", 2);
    EXPECT_EQ(Errors, -32768);
    Errors = -1;
    vpError("%d", 3);
    EXPECT_EQ(Errors, 0);
}

TEST_F(Diagnostics, ListingTakesReportsOnlyWhenItIsWanted) {
    begin_reports();
    open_listing();
    O_list = 0;
    Error("plain");
    Warning("mild");
    ExtendedWarning("elsewhere", "f", 1);
    EXPECT_EQ(listing(), "");
}

TEST_F(Diagnostics, ReportsWithoutAnOpenListingGoToStandardOutputAlone) {
    begin_reports();
    O_list = 1;
    Error("plain");
    EXPECT_EQ(take_output(), path() + " (12) Error: plain\n");
    EXPECT_FALSE(file_exists("out.lst"));
}

TEST_F(Diagnostics, ReportsAfterTheLastFileNameTheFirst) {
    open_source_file("sub/prog.szirpa", "");
    pop_source();
    enter_final_pass();
    Line_no = 3;
    Error("late");
    EXPECT_EQ(take_output(), path() + " (3) Error: late\n");
}

TEST_F(Diagnostics, ReportsNameTheFileBeingRead) {
    open_source_file("sub/prog.szirpa", "one\n");
    open_source_file("part.szirpa", "two\n");
    enter_final_pass();
    Line_no = 1;
    open_listing();
    Error("inside");
    EXPECT_EQ(take_output(), directory + "/part.szirpa (1) Error: inside\n");
    EXPECT_EQ(listing(), "\"part.szirpa\" line 1, ERROR: inside\n");
}

// ---- Phase errors
// -----------------------------------------------------------------------------------

TEST_F(Diagnostics, FirstReportAfterAPhaseErrorIsMade) {
    begin_reports();
    phase_error = 1;
    Error("Phase error between passes");
    EXPECT_EQ(take_output(), path() + " (12) Error: Phase error between passes\n");
    EXPECT_EQ(phase_error, 0);
    EXPECT_EQ(Phase_Error_Written, 1);
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(Errors, 1);
}

TEST_F(Diagnostics, SecondPhaseErrorIsSwallowedAndDoesNotEndTheLine) {
    begin_reports();
    phase_error = 1;
    Error("Phase error between passes");
    take_output();
    diag_new_line();
    phase_error = 1;
    Error("Phase error between passes");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(Errors, 1);
    EXPECT_EQ(Line_Done, 0);
    EXPECT_EQ(LineError, 0);
    EXPECT_EQ(phase_error, 1);
}

// Quirk (second-phase-error): it leaves its flag set, and so silences every later error of the
// pass.
TEST_F(Diagnostics, EveryErrorAfterASecondPhaseErrorIsSwallowed) {
    begin_reports();
    phase_error = 1;
    Phase_Error_Written = 1;
    Error("Illegal mnemonic");
    vpError("Undefined symbol '%s'", "X");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(Diagnostics, OneWrittenPhaseErrorDoesNotSilenceOtherErrors) {
    begin_reports();
    Phase_Error_Written = 1;
    Error("Illegal mnemonic");
    EXPECT_EQ(take_output(), path() + " (12) Error: Illegal mnemonic\n");
}

TEST_F(Diagnostics, PhaseErrorOnALineWithAnErrorIsSpentWithoutAReport) {
    begin_reports();
    Error("first");
    take_output();
    phase_error = 1;
    Error("Phase error between passes");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(phase_error, 0);
    EXPECT_EQ(Phase_Error_Written, 1);
    EXPECT_EQ(Errors, 1);
}

TEST_F(Diagnostics, PhaseErrorsTouchNothingOutsideTheFinalPass) {
    phase_error = 1;
    Error("early");
    EXPECT_EQ(phase_error, 1);
    EXPECT_EQ(Phase_Error_Written, 0);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(Diagnostics, WarningsIgnorePhaseErrors) {
    begin_reports();
    phase_error = 1;
    Phase_Error_Written = 1;
    Warning("mild");
    EXPECT_EQ(take_output(), path() + " (12) Warning: mild\n");
}

// ---- Warnings
// ---------------------------------------------------------------------------------------

TEST_F(Diagnostics, WarningHasItsOwnFormsAndLeavesTheLineAlone) {
    begin_reports();
    open_listing();
    Warning("Illegal ASCII character");
    EXPECT_EQ(take_output(), path() + " (12) Warning: Illegal ASCII character\n");
    EXPECT_EQ(listing(), "\"prog.szirpa\" LINE: 12,WARNING: Illegal ASCII character\n");
    EXPECT_EQ(Warnings, 1);
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(LineError, 0);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(Diagnostics, WarningWithValuesHasTheSameForms) {
    begin_reports();
    open_listing();
    vpWarning("start symbol '%s' is defined", "main");
    vpWarning("%d%c", 4, 'x');
    EXPECT_EQ(take_output(), path() + " (12) Warning: start symbol 'main' is defined\n" + path() +
                                 " (12) Warning: 4x\n");
    EXPECT_EQ(listing(), "\"prog.szirpa\" LINE: 12,WARNING: start symbol 'main' is defined\n"
                         "\"prog.szirpa\" LINE: 12,WARNING: 4x\n");
    EXPECT_EQ(Warnings, 2);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(Diagnostics, WarningKeepsTheErrorOfTheLine) {
    begin_reports();
    Error("first");
    Warning("mild");
    vpWarning("%s", "milder");
    EXPECT_EQ(LineError, 1);
    take_output();
    Error("second");
    EXPECT_EQ(take_output(), "");
}

TEST_F(Diagnostics, ExtendedWarningStandsWhereTheCallerSays) {
    begin_reports();
    open_listing();
    ExtendedWarning("moved", "lib/other.szirpa", 99);
    EXPECT_EQ(take_output(), "lib/other.szirpa (99) Warning: moved\n");
    EXPECT_EQ(listing(), "\"lib/other.szirpa\" LINE: 99,WARNING: moved\n");
    EXPECT_EQ(Warnings, 1);
}

TEST_F(Diagnostics, WarningsNeedTheirOptionAndTheFinalPass) {
    begin_reports();
    open_listing();
    O_warn = 0;
    Warning("a");
    vpWarning("%s", "b");
    ExtendedWarning("c", "f", 1);
    O_warn = 1;
    Pass2 = 0;
    Warning("a");
    vpWarning("%s", "b");
    ExtendedWarning("c", "f", 1);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(listing(), "");
    EXPECT_EQ(Warnings, 0);
}

TEST_F(Diagnostics, WarningCountIsWiderThanTheErrorCount) {
    begin_reports();
    Warnings = 65535;
    Warning("more");
    EXPECT_EQ(Warnings, 65536);
}

// ---- Fatal errors
// -----------------------------------------------------------------------------------

TEST_F(Diagnostics, FatalErrorNamesThePathInBothPlacesAndEndsWithStatusOne) {
    begin_reports();
    open_listing();
    EXPECT_EQ(end_status([] { vpFatal("File '%s' not found", "x"); }), 1);
    EXPECT_EQ(take_output(), path() + " (12)Fatal error: File 'x' not found\n");
    EXPECT_EQ(listing(), "\"" + path() + "\" (12) Fatal error: File 'x' not found\n");
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(Warnings, 0);
}

TEST_F(Diagnostics, FatalErrorIsReportedInEveryPass) {
    open_source_file("sub/prog.szirpa", "");
    Pass = 0;
    EXPECT_EQ(end_status([] { vpFatal("%s", "over"); }), 1);
    EXPECT_EQ(take_output(), path() + " (0)Fatal error: over\n");
}

TEST_F(Diagnostics, FatalErrorWithoutAFileNamesNoneAndIsNotListed) {
    open_listing();
    EXPECT_EQ(end_status([] { vpFatal("Cannot create output fil '%s'", "a.s19"); }), 1);
    EXPECT_EQ(take_output(), "Fatal error: Cannot create output fil 'a.s19'\n");
    EXPECT_EQ(listing(), "");
}

TEST_F(Diagnostics, FatalErrorIsNotSilencedByAnErrorOfTheLine) {
    begin_reports();
    Error("first");
    take_output();
    phase_error = 1;
    Phase_Error_Written = 1;
    EXPECT_EQ(end_status([] { vpFatal("%s", "over"); }), 1);
    EXPECT_EQ(take_output(), path() + " (12)Fatal error: over\n");
}

TEST_F(Diagnostics, FatalTextIsCutTo1024Characters) {
    for (const std::size_t size : {1023U, 1024U, 1025U, 5000U}) {
        const std::string text(size, 'x');
        EXPECT_EQ(end_status([&] { vpFatal("%s", text.c_str()); }), 1);
        const std::string shown(std::min<std::size_t>(size, 1024), 'x');
        EXPECT_EQ(take_output(), "Fatal error: " + shown + "\n") << size;
    }
}

// ---- State
// ------------------------------------------------------------------------------------------

TEST_F(Diagnostics, SkippingALineOnlyMarksItDone) {
    begin_reports();
    SkipLine();
    EXPECT_EQ(Line_Done, 1);
    EXPECT_EQ(LineError, 0);
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(take_output(), "");
}

TEST_F(Diagnostics, NewPassClearsCountersAndPhaseFlags) {
    Errors = 3;
    Warnings = 4;
    phase_error = 1;
    Phase_Error_Written = 1;
    diag_new_pass();
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(Warnings, 0);
    EXPECT_EQ(phase_error, 0);
    EXPECT_EQ(Phase_Error_Written, 0);
}

TEST_F(Diagnostics, FinalPassClearsTheCountersAlone) {
    Errors = 3;
    Warnings = 4;
    phase_error = 1;
    Phase_Error_Written = 1;
    diag_new_counts();
    EXPECT_EQ(Errors, 0);
    EXPECT_EQ(Warnings, 0);
    EXPECT_EQ(phase_error, 1);
    EXPECT_EQ(Phase_Error_Written, 1);
}

} // namespace
