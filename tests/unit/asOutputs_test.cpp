// The output files of a run: their names, their creation, headers and close-down.
#include "as/asCommand.h"
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asOutputs.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "target/carray.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/script.h"
#include "target/srecord.h"
#include "tests/unit/support.h"

#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace {

class OutputFiles : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        std::filesystem::create_directory("src");
        std::filesystem::create_directory("out");
        write_file("src/a.szirpa", " NOP\n");
        write_file("a.szirpa", " NOP\n");
    }

    static void name_output(const std::string &name) {
        O_oflag = 1;
        OutputTitle = name;
    }

    // Opens everything in pass 1 and begins the final pass.
    static void begin_final_pass() {
        ASSERT_EQ(openfiles("a.szirpa"), 1);
        enter_final_pass();
        outrecinit(record_type, LC);
    }

    static std::string refused(const std::string &name) {
        return "Cannot create output fil '" + name + "'\n";
    }
};

// ---- Names
// ------------------------------------------------------------------------------------------

TEST_F(OutputFiles, NamesComeFromTheSourceInTheWorkingDirectory) {
    O_list = 1;
    ASSERT_EQ(openfiles("src/a.szirpa"), 1);
    EXPECT_EQ(File_name, "a.szirpa");
    EXPECT_EQ(FileTitle, "a");
    EXPECT_EQ(Object_name, "a.s19");
    EXPECT_EQ(List_name, "a.lst");
    EXPECT_EQ(zirpafilename, "a.fmem");
    close_outputs();
    for (const char *name : {"a.s19", "a.lst", "a.fmem"}) {
        EXPECT_TRUE(file_exists(name)) << name;
    }
    EXPECT_FALSE(file_exists("src/a.s19"));
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/src/a.szirpa");
}

TEST_F(OutputFiles, GivenNameServesTheRecordsAndItsTitleTheListing) {
    O_list = 1;
    O_cout = 1;
    name_output("out/prog.v2.s19");
    ASSERT_EQ(openfiles("src/a.szirpa"), 1);
    EXPECT_EQ(Object_name, "out/prog.v2.s19");
    EXPECT_EQ(List_name, "prog.v2.lst");
    EXPECT_EQ(zirpafilename, "a.fmem");
    close_outputs();
    for (const char *name : {"out/prog.v2.s19", "prog.v2.lst", "prog.v2_cout.c", "a.fmem"}) {
        EXPECT_TRUE(file_exists(name)) << name;
    }
    EXPECT_FALSE(file_exists("a.s19"));
}

TEST_F(OutputFiles, SourceWithoutAnExtensionKeepsItsName) {
    write_file("plain", " NOP\n");
    ASSERT_EQ(openfiles("plain"), 1);
    EXPECT_EQ(FileTitle, "plain");
    EXPECT_EQ(Object_name, "plain.s19");
}

TEST_F(OutputFiles, OptionalFilesAreCreatedOnRequestAlone) {
    ASSERT_EQ(openfiles("a.szirpa"), 1);
    EXPECT_TRUE(objectfile.is_open());
    EXPECT_TRUE(zirpafile.is_open());
    EXPECT_FALSE(listfile.is_open());
    EXPECT_FALSE(algofile.is_open());
    close_outputs();
    EXPECT_FALSE(file_exists("a.lst"));
    EXPECT_FALSE(file_exists("a_cout.c"));
}

TEST_F(OutputFiles, OldOutputsAreReplacedAtTheEnd) {
    O_list = 1;
    O_cout = 1;
    for (const char *name : {"a.s19", "a.lst", "a_cout.c", "a.fmem"}) {
        write_file(name, "old");
    }
    begin_final_pass();
    for (const char *name : {"a.s19", "a.lst", "a_cout.c", "a.fmem"}) {
        EXPECT_EQ(read_text(name), "old") << name;
    }
    CloseDown();
    for (const char *name : {"a.lst", "a.fmem"}) {
        EXPECT_EQ(read_text(name), "") << name;
    }
    EXPECT_EQ(read_text("a.s19"), "S9030000FC\n");
    EXPECT_EQ(read_text("a_cout.c"), "const unsigned char algo[] = {\n};\n");
}

TEST_F(OutputFiles, StandardStreamsThatAreFilesAreRefusedAsOutputs) {
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        write_file("a.fmem", "printed");
        const int saved = ::dup(stream);
        const int descriptor = ::open("a.fmem", O_WRONLY | O_APPEND | O_CLOEXEC);
        ASSERT_EQ(::dup2(descriptor, stream), stream);
        ::close(descriptor);
        const int status = end_status([] { openfiles("a.szirpa"); });
        ::dup2(saved, stream);
        ::close(saved);
        EXPECT_EQ(status, 1);
        EXPECT_EQ(take_output(), directory + "/a.szirpa (0)Fatal error: " + refused("a.fmem"));
        EXPECT_EQ(read_text("a.fmem"), "printed");
        EXPECT_FALSE(file_exists("a.s19"));
        source_new_pass();
    }
}

TEST_F(OutputFiles, NewRunForgetsTheNames) {
    O_list = 1;
    ASSERT_EQ(openfiles("a.szirpa"), 1);
    outputs_new_run();
    EXPECT_EQ(File_name, "");
    EXPECT_EQ(FileTitle, "");
    EXPECT_EQ(Object_name, "");
    EXPECT_EQ(List_name, "");
    EXPECT_EQ(zirpafilename, "");
}

// ---- Failures
// ---------------------------------------------------------------------------------------

TEST_F(OutputFiles, SourceThatCannotBeOpenedCreatesNothing) {
    write_file("lost.s19", "old");
    EXPECT_EQ(openfiles("lost.szirpa"), 0);
    EXPECT_EQ(openfiles("src"), 0);
    EXPECT_EQ(read_text("lost.s19"), "old");
    EXPECT_FALSE(file_exists("lost.fmem"));
    EXPECT_FALSE(file_exists("src.fmem"));
}

TEST_F(OutputFiles, SourceNameOfMoreThan1023CharactersCannotBeOpened) {
    EXPECT_EQ(openfiles((std::string(1016, '/') + "a.szirpa").c_str()), 0);
    EXPECT_FALSE(file_exists("a.s19"));
}

TEST_F(OutputFiles, RecordsThatCannotBeCreatedEndTheRun) {
    name_output("none/prog.s19");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_EQ(take_output(), directory + "/a.szirpa (0)Fatal error: " + refused("none/prog.s19"));
}

TEST_F(OutputFiles, ListingThatCannotBeCreatedIsSwitchedOffSilently) {
    std::filesystem::create_directories("a.lst/full");
    O_list = 1;
    O_warn = 1;
    EXPECT_EQ(openfiles("a.szirpa"), 1);
    EXPECT_EQ(O_list, 0);
    EXPECT_FALSE(listfile.is_open());
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(Warnings, 0);
}

// Quirk (array-needs-listing): the listing is tested in place of the array's own file.
TEST_F(OutputFiles, ArrayWithoutAListingIsSwitchedOffAndItsFileStaysEmpty) {
    O_cout = 1;
    EXPECT_EQ(openfiles("a.szirpa"), 1);
    EXPECT_EQ(O_cout, 0);
    CloseDown();
    EXPECT_TRUE(file_exists("a_cout.c"));
    EXPECT_EQ(read_text("a_cout.c"), "");
    EXPECT_EQ(take_output(), "");
}

TEST_F(OutputFiles, ScriptThatCannotBeCreatedDoesNotMatter) {
    std::filesystem::create_directories("a.fmem/full");
    begin_final_pass();
    write_headers();
    ebyte(1);
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S104000001FA\nS9030001FB\n");
}

TEST_F(OutputFiles, OutputThatWouldOverwriteTheSourceIsRefused) {
    write_file("prog.s19", " NOP\n");
    EXPECT_EQ(end_status([] { openfiles("prog.s19"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("prog.s19")));
    EXPECT_EQ(read_text("prog.s19"), " NOP\n");
    EXPECT_FALSE(file_exists("prog.fmem"));
}

TEST_F(OutputFiles, OutputThatIsTheSourceByAnotherSpellingIsRefused) {
    name_output("src/../a.szirpa");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("src/../a.szirpa")));
    EXPECT_EQ(read_text("a.szirpa"), " NOP\n");
}

TEST_F(OutputFiles, OutputThatIsALinkToTheSourceIsRefused) {
    std::filesystem::create_symlink("a.szirpa", "a.s19");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("a.s19")));
    std::filesystem::remove("a.s19");
    std::filesystem::create_hard_link("a.szirpa", "a.fmem");
    source_new_pass();
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("a.fmem")));
    EXPECT_EQ(read_text("a.szirpa"), " NOP\n");
    EXPECT_FALSE(file_exists("a.s19"));
}

TEST_F(OutputFiles, TwoOutputsThatAreOneFileAreRefused) {
    write_file("a.fmem", "old");
    name_output("a.fmem");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("a.fmem")));
    EXPECT_EQ(read_text("a.fmem"), "old");
}

TEST_F(OutputFiles, ListingThatIsTheRecordsIsRefused) {
    O_list = 1;
    name_output("prog.lst");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("prog.lst")));
    EXPECT_FALSE(file_exists("prog.lst"));
    EXPECT_FALSE(file_exists("a.fmem"));
}

// Such links lead to no file that could be lost.
TEST_F(OutputFiles, LinkThatLeadsNowhereIsReplacedByTheOutput) {
    O_list = 1;
    for (const std::string &target :
         {std::string("missing"), std::string("a.lst"), std::string("a.szirpa/x"),
          std::string("missing/x"), std::string(300, 'n')}) {
        std::filesystem::remove("a.lst");
        std::filesystem::create_symlink(target, "a.lst");
        EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), -1) << target;
        EXPECT_TRUE(listfile.is_open()) << target;
        close_outputs();
        EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status("a.lst")));
        EXPECT_EQ(take_output(), "");
        source_new_pass();
    }
}

TEST_F(OutputFiles, LinkToANameOfOneCharacterIsFollowed) {
    O_list = 1;
    name_output("y");
    std::filesystem::create_symlink("y", "y.lst");
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("y.lst")));
}

// As many links as the system follows.
TEST_F(OutputFiles, FortyLinksAreFollowedToAnOutputThatDoesNotExist) {
    constexpr int kLinks = 40;
    O_list = 1;
    for (int i = 1; i < kLinks; ++i) {
        const std::string name = i == 1 ? "a.s19" : "l" + std::to_string(i);
        std::filesystem::create_symlink("l" + std::to_string(i + 1), name);
    }
    std::filesystem::create_symlink("a.lst", "l" + std::to_string(kLinks));
    EXPECT_EQ(end_status([] { openfiles("a.szirpa"); }), 1);
    EXPECT_TRUE(take_output().ends_with("Fatal error: " + refused("a.lst")));
}

// ---- Headers
// ----------------------------------------------------------------------------------------

TEST_F(OutputFiles, HeadersNameTheirFiles) {
    O_list = 1;
    name_output("out/prog.s19");
    begin_final_pass();
    write_headers();
    close_outputs();
    EXPECT_EQ(read_text("prog.lst"), "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
                                     "Free software under the MIT License.\n"
                                     "\n"
                                     "\n"
                                     "File: prog.lst\n");
    EXPECT_EQ(read_text("a.fmem"), "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
                                   "Free software under the MIT License.\n"
                                   "File: a.fmem\n"
                                   "\n"
                                   " # ClearAllMemory\n"
                                   " # ClearAllRegisters");
}

// ---- Close-down
// -------------------------------------------------------------------------------------

TEST_F(OutputFiles, EndRecordHoldsTheLocationCounterAtLast) {
    begin_final_pass();
    LC = 5;
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S9030005F7\n");
    EXPECT_FALSE(objectfile.is_open());
    EXPECT_FALSE(zirpafile.is_open());
}

TEST_F(OutputFiles, EndRecordHoldsTheFirstOriginBeforeThat) {
    begin_final_pass();
    LC = 5;
    default_entry_seen = 1;
    defaultentryLC = 0x20;
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S9030020DC\n");
}

TEST_F(OutputFiles, EndRecordHoldsTheEntryBeforeAll) {
    begin_final_pass();
    default_entry_seen = 1;
    defaultentryLC = 0x20;
    entry_is_defined = 1;
    entryLC = 0x30;
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S9030030CC\n");
}

TEST_F(OutputFiles, NegativeEntryTakes32Bits) {
    begin_final_pass();
    entry_is_defined = 1;
    entryLC = -1;
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S705FFFFFFFFFE\n");
}

TEST_F(OutputFiles, DebugRecordsFollowTheEndRecord) {
    O_symdebug = 1;
    begin_final_pass();
    symdebfile = "SY:one\nST:two\n";
    startsymname = "begin";
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S9030000FC\nSX:C:s:begin\nSY:one\nST:two\n");
}

TEST_F(OutputFiles, DebugRecordsNeedTheirOption) {
    begin_final_pass();
    symdebfile = "SY:one\n";
    CloseDown();
    EXPECT_EQ(read_text("a.s19"), "S9030000FC\n");
}

TEST_F(OutputFiles, ArrayIsEndedAtTheLast) {
    O_list = 1;
    O_cout = 1;
    begin_final_pass();
    ebyte(7);
    CloseDown();
    EXPECT_EQ(read_text("a_cout.c"), "const unsigned char algo[] = {\n0x07\n};\n");
    EXPECT_FALSE(algofile.is_open());
}

TEST_F(OutputFiles, ErrorsDeleteTheRecordsAndAreCountedInTheListing) {
    O_list = 1;
    begin_final_pass();
    ebyte(7);
    Errors = 2;
    CloseDown();
    EXPECT_FALSE(file_exists("a.s19"));
    EXPECT_EQ(read_text("a.lst"), "\n\n****** Total Errors: 2\n");
    EXPECT_EQ(read_text("a.fmem"), "\n #setMemory  00=07");
    EXPECT_FALSE(listfile.is_open());
}

TEST_F(OutputFiles, ErrorsWithoutAListingDeleteTheRecords) {
    begin_final_pass();
    Errors = 1;
    CloseDown();
    EXPECT_FALSE(file_exists("a.s19"));
    EXPECT_TRUE(file_exists("a.fmem"));
}

TEST_F(OutputFiles, ListingWithoutErrorsHasNoTotal) {
    O_list = 1;
    begin_final_pass();
    CloseDown();
    EXPECT_EQ(read_text("a.lst"), "");
    EXPECT_TRUE(file_exists("a.s19"));
}

// ---- Writes that fail
// -------------------------------------------------------------------------------

TEST_F(OutputFiles, RunWithoutWriteFailuresReportsNone) {
    O_list = 1;
    begin_final_pass();
    write_headers();
    CloseDown();
    EXPECT_FALSE(report_write_failures());
    EXPECT_EQ(take_output(), "");
    EXPECT_TRUE(file_exists("a.s19"));
}

TEST_F(OutputFiles, RecordsThatCannotBeWrittenAreReported) {
    name_output("/dev/full");
    begin_final_pass();
    CloseDown();
    EXPECT_TRUE(report_write_failures());
    EXPECT_EQ(take_output(), "HXzirpa: Can't write '/dev/full'\n");
    EXPECT_TRUE(file_exists("/dev/full"));
}

TEST_F(OutputFiles, ListingThatCannotBeWrittenTakesTheRecordsWithIt) {
    O_list = 1;
    std::filesystem::create_symlink("/dev/full", "a.lst");
    begin_final_pass();
    listfile.put("text");
    CloseDown();
    EXPECT_TRUE(report_write_failures());
    EXPECT_EQ(take_output(), "HXzirpa: Can't write 'a.lst'\n");
    EXPECT_FALSE(file_exists("a.s19"));
}

// ---- Runs that end early
// ---------------------------------------------------------------------------------

class EarlyEnd : public OutputFiles {
  protected:
    void SetUp() override {
        OutputFiles::SetUp();
        O_list = 1;
        O_cout = 1;
        begin_final_pass();
        objectfile.put("one");
        listfile.put("two");
        algofile.put("three");
        zirpafile.put("four");
    }

    static void expect_side_outputs() {
        EXPECT_EQ(read_text("a.lst"), "two");
        EXPECT_EQ(read_text("a_cout.c"), "const unsigned char algo[] = {\nthree");
        EXPECT_EQ(read_text("a.fmem"), "four");
    }
};

TEST_F(EarlyEnd, ClosedOutputsHoldWhatHasBeenWritten) {
    close_outputs();
    EXPECT_EQ(read_text("a.s19"), "one");
    expect_side_outputs();
}

TEST_F(EarlyEnd, AbandonedOutputsDoTooButTheRecordsAreDeleted) {
    abandon_outputs();
    EXPECT_FALSE(file_exists("a.s19"));
    expect_side_outputs();
}

// What is not open is not this run's.
TEST_F(EarlyEnd, AbandonedRunWithoutRecordsDeletesNone) {
    close_outputs();
    abandon_outputs();
    EXPECT_EQ(read_text("a.s19"), "one");
}

TEST_F(EarlyEnd, NewRunClosesWhatAnEarlierRunLeftOpen) {
    outputs_new_run();
    for (const OutputFile *file : {&objectfile, &listfile, &algofile, &zirpafile}) {
        EXPECT_FALSE(file->is_open());
    }
    EXPECT_FALSE(file_exists("a.s19"));
    expect_side_outputs();
}

TEST_F(OutputFiles, NewRunForgetsTheFailuresOfAnEarlierOne) {
    ASSERT_TRUE(create_output(listfile, "/dev/full", OldFile::kReplaced));
    listfile.put("text");
    outputs_new_run();
    EXPECT_FALSE(listfile.has_failed());
}

} // namespace
