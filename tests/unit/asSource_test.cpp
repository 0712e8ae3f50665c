// Source files: nesting and its replay, the search for a file, and the reader of lines.
#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "tests/unit/support.h"

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

namespace {

std::string line_text() { return std::string(Line.view()); }

class Source : public RunTest {
  protected:
    // Reads the rest of the pass, one entry a line: "path:line text".
    static std::vector<std::string> read_all() {
        std::vector<std::string> lines;
        while (as_read_line() == 1) {
            lines.push_back(current_place() + " " + line_text());
        }
        return lines;
    }

    static std::string current_place() {
        return getCurrentFileInfo(-1)->name + ":" + std::to_string(Line_no);
    }

    // Reads a pass in which a line "+name" opens the file of that name.
    static std::vector<std::string> read_with_inclusions() {
        std::vector<std::string> lines;
        while (as_read_line() == 1) {
            lines.push_back(current_place() + " " + line_text());
            if (line_text().starts_with("+")) {
                const std::string name = line_text().substr(1, Line.length() - 2);
                EXPECT_EQ(push_source(name.c_str()), 1);
            }
        }
        return lines;
    }
};

using Lines = std::vector<std::string>;

// ---- The text of a line
// -----------------------------------------------------------------------------

TEST_F(Source, LineBufferHoldsUpTo4095CharactersAndATerminator) {
    const std::string longest(4095, 'a');
    for (const std::size_t size : {4094U, 4095U, 4096U}) {
        const std::string text(size, 'a');
        Line.assign(text.data(), text.size());
        EXPECT_EQ(Line.length(), std::min<std::size_t>(size, 4095)) << size;
        EXPECT_EQ(Line.begin()[Line.length()], '\0') << size;
    }
}

TEST_F(Source, LineBufferEndsAtANul) {
    Line.assign("AB\0CD\n", 6);
    EXPECT_EQ(Line.view(), "AB");
    EXPECT_EQ(Line.begin()[2], '\0');
    EXPECT_EQ(Line.begin()[3], '\0');
}

TEST_F(Source, ShorterLineLeavesNothingOfALongerOneReadable) {
    Line.assign("ABCDEFGH\n", 9);
    Line.assign("X\n", 2);
    EXPECT_EQ(Line.view(), "X\n");
    EXPECT_EQ(Line.begin()[2], '\0');
    EXPECT_EQ(Line.begin()[3], '\0');
}

TEST_F(Source, LineBufferReplacesItsLastTwoCharactersByALineFeed) {
    Line.assign("AB\r\n", 4);
    Line.end_in_line_feed();
    EXPECT_EQ(Line.view(), "AB\n");
    EXPECT_EQ(Line.begin()[3], '\0');
}

// ---- Opening
// ----------------------------------------------------------------------------------------

TEST_F(Source, MainFileBecomesStepZeroOfTheSequence) {
    write_file("a.szirpa", " NOP\n");
    Line_no = 7;
    newuse = 0;
    EXPECT_EQ(push_source("a.szirpa"), 1);
    EXPECT_EQ(source_stack_ptr, 0);
    EXPECT_EQ(pplevel, 0);
    EXPECT_EQ(file_entry_ptr, 0);
    EXPECT_EQ(file_entry_index.at(0), 0);
    EXPECT_EQ(Line_no, 0);
    EXPECT_EQ(newuse, 1);
    EXPECT_EQ(current_file_index(), 0);
    EXPECT_EQ(file_entry.at(0).saved_line, 7);
}

TEST_F(Source, EntryHoldsTheBareNameAndTheAbsolutePath) {
    std::filesystem::create_directories("sub/inner");
    write_file("sub/a.szirpa", "");
    ASSERT_EQ(push_source("sub/inner/.././a.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "a.szirpa");
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/sub/a.szirpa");
}

TEST_F(Source, RootedPathNameStaysAsItIs) {
    write_file("a.szirpa", "");
    const std::string rooted = directory + "/./a.szirpa";
    ASSERT_EQ(push_source(rooted.c_str()), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, rooted);
}

TEST_F(Source, FailsWithoutATraceWhenNothingOpens) {
    EXPECT_EQ(push_source("missing.szirpa"), 0);
    EXPECT_EQ(push_source((directory + "/missing.szirpa").c_str()), 0);
    EXPECT_EQ(source_stack_ptr, -1);
    EXPECT_EQ(pplevel, -1);
    EXPECT_EQ(file_entry_ptr, -1);
}

TEST_F(Source, DirectoryIsNoSource) {
    std::filesystem::create_directory("folder");
    EXPECT_EQ(push_source("folder"), 0);
    EXPECT_EQ(push_source(directory.c_str()), 0);
}

TEST_F(Source, NameOfMoreThan256CharactersIsAnError) {
    const std::string file(253, 'a');
    write_file(file, "");
    EXPECT_EQ(push_source(("./" + file).c_str()), 1);
    EXPECT_EQ(push_source((".//" + file).c_str()), 1);
    EXPECT_EQ(Line_Done, 0);
    EXPECT_EQ(push_source((".///" + file).c_str()), 0);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(Source, FilesAreTheRegularFilesOfTheRun) {
    open_source_file("a.szirpa", " NOP\n");
    write_file("b.szirpa", " NOP\n");
    Destination opened;
    Destination other;
    ASSERT_TRUE(opened.look_up("a.szirpa", OldFile::kRewritten));
    ASSERT_TRUE(other.look_up("b.szirpa", OldFile::kRewritten));
    EXPECT_TRUE(is_source_file(opened));
    EXPECT_FALSE(is_source_file(other));
}

TEST_F(Source, FileInformationIsTheCurrentFileOrAFileOfTheTable) {
    open_source_file("a.szirpa", "1\n");
    open_source_file("b.szirpa", "2\n");
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "b.szirpa");
    EXPECT_EQ(getCurrentFileInfo(0)->name, "a.szirpa");
    EXPECT_EQ(getCurrentFileInfo(1)->name, "b.szirpa");
    EXPECT_EQ(getCurrentFileInfo(2), nullptr);
    EXPECT_EQ(pop_source(), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "a.szirpa");
    EXPECT_EQ(pop_source(), 0);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "a.szirpa");
    EXPECT_EQ(current_file_index(), -1);
}

// ---- The search for a file
// --------------------------------------------------------------------------

TEST_F(Source, WorkingDirectoryComesBeforeTheIncludingFilesDirectory) {
    std::filesystem::create_directory("sub");
    open_source_file("sub/main.szirpa", "");
    write_file("sub/part.szirpa", "");
    write_file("part.szirpa", "");
    ASSERT_EQ(push_source("part.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/part.szirpa");
}

TEST_F(Source, IncludingFilesDirectoryIsTriedNext) {
    std::filesystem::create_directory("sub");
    std::filesystem::create_directory("inc");
    open_source_file("sub/main.szirpa", "");
    write_file("sub/part.szirpa", "");
    write_file("inc/part.szirpa", "");
    write_file("inc\\part.szirpa", "");
    push_include("inc");
    ASSERT_EQ(push_source("part.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/sub/part.szirpa");
}

TEST_F(Source, IncludingFilesDirectoryServesAtEveryDepth) {
    std::filesystem::create_directories("one");
    open_source_file("one/main.szirpa", "");
    write_file("one/first.szirpa", "");
    write_file("one/second.szirpa", "");
    ASSERT_EQ(push_source("first.szirpa"), 1);
    ASSERT_EQ(push_source("second.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/one/second.szirpa");
}

// Quirk (include-backslash): the probe joins with a backslash and the file is opened with a slash,
// so both must exist.
TEST_F(Source, IncludeDirectoryIsProbedWithABackslashAndOpenedWithASlash) {
    std::filesystem::create_directory("inc");
    write_file("inc/part.szirpa", "x\n");
    push_include("inc");
    EXPECT_EQ(push_source("part.szirpa"), 0);
    write_file("inc\\part.szirpa", "y\n");
    ASSERT_EQ(push_source("part.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/inc/part.szirpa");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(line_text(), "x\n");
}

TEST_F(Source, ProbeAloneDoesNotOpenAFile) {
    std::filesystem::create_directory("inc");
    write_file("inc\\part.szirpa", "y\n");
    push_include("inc");
    EXPECT_EQ(push_source("part.szirpa"), 0);
}

TEST_F(Source, RootedNameIsNotSearchedFor) {
    std::filesystem::create_directory("inc");
    write_file("inc/part.szirpa", "");
    std::filesystem::create_directory("inc\\");
    write_file("inc\\/part.szirpa", "");
    push_include("inc");
    EXPECT_EQ(push_source("/part.szirpa"), 0);
}

TEST_F(Source, DotDirectoryLiesBelowTheProgramsOwnDirectory) {
    AsmStartDirectory = "start";
    std::filesystem::create_directories("start/.inc");
    write_file("start/.inc/part.szirpa", "x\n");
    push_include(".inc");
    EXPECT_EQ(push_source("part.szirpa"), 0);
    write_file("start\\.inc\\part.szirpa", "");
    ASSERT_EQ(push_source("part.szirpa"), 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->pathname, directory + "/start/.inc/part.szirpa");
}

TEST_F(Source, DotDirectoryIsNotProbedByItself) {
    AsmStartDirectory = "start";
    write_file(".inc\\part.szirpa", "");
    push_include(".inc");
    bool from_start_directory = false;
    EXPECT_EQ(match_include("part.szirpa", from_start_directory), -1);
}

TEST_F(Source, MatchTellsTheFirstDirectoryInOrderAndWhereItLies) {
    AsmStartDirectory = "start";
    push_include("none");
    push_include("inc");
    push_include(".");
    write_file("inc\\a", "");
    write_file("start\\.\\a", "");
    write_file("start\\.\\b", "");
    bool from_start_directory = true;
    EXPECT_EQ(match_include("a", from_start_directory), 1);
    EXPECT_FALSE(from_start_directory);
    EXPECT_EQ(match_include("b", from_start_directory), 2);
    EXPECT_TRUE(from_start_directory);
    EXPECT_EQ(match_include("c", from_start_directory), -1);
}

TEST_F(Source, IncludeDirectoriesLoseTheirQuotesAndUnquotedOnesEndAtABlank) {
    push_include("\"my dir\"");
    push_include("my dir");
    push_include("plain");
    EXPECT_EQ(include_stack, (Lines{"my dir", "my", "plain"}));
}

TEST_F(Source, EmptyIncludeDirectoryIsIgnoredWithAWarning) {
    open_source_file("a.szirpa", "");
    enter_final_pass();
    push_include("\"\"");
    push_include(" lost");
    EXPECT_TRUE(include_stack.empty());
    const std::string warning =
        directory + "/a.szirpa (0) Warning: Pathname should be quoted, option ignored\n";
    EXPECT_EQ(take_output(), warning + warning);
}

TEST_F(Source, TwentyOneIncludeDirectoriesAreKept) {
    open_source_file("a.szirpa", "");
    enter_final_pass();
    for (int number = 1; number <= 21; ++number) {
        push_include(("d" + std::to_string(number)).c_str());
    }
    EXPECT_EQ(include_stack.size(), 21U);
    EXPECT_EQ(include_stack.back(), "d21");
    EXPECT_EQ(take_output(), "");
    push_include("d22");
    EXPECT_EQ(include_stack.size(), 21U);
    EXPECT_EQ(take_output(), directory +
                                 "/a.szirpa (0) Error: Include stack is exhausted, 'd22' is "
                                 "ignored\n");
}

TEST_F(Source, IncludeListEmpties) {
    push_include("inc");
    init_as_include_stack();
    EXPECT_TRUE(include_stack.empty());
    write_file("inc\\a", "");
    bool from_start_directory = false;
    EXPECT_EQ(match_include("a", from_start_directory), -1);
}

TEST_F(Source, ProgramsOwnDirectoryIsTheInvocationCutAtItsLastSeparator) {
    source_new_run("/usr/bin/HXzirpa");
    EXPECT_STREQ(GetAsmStartDirectory(), "/usr/bin");
    source_new_run("tools\\bin\\HXzirpa");
    EXPECT_STREQ(GetAsmStartDirectory(), "tools\\bin");
    source_new_run("a\\b/HXzirpa");
    EXPECT_STREQ(GetAsmStartDirectory(), "a\\b");
}

// Without a separator the whole invocation name stands for the directory.
TEST_F(Source, InvocationWithoutASeparatorStaysWhole) {
    source_new_run("HXzirpa");
    EXPECT_STREQ(GetAsmStartDirectory(), "HXzirpa");
}

TEST_F(Source, DirectoriesAreNoneWhenEmpty) {
    source_new_run("/HXzirpa");
    EXPECT_EQ(GetAsmStartDirectory(), nullptr);
    EXPECT_STREQ(GetAsmCurrentDirectory(), directory.c_str());
    AsmCurrentDirectory.clear();
    EXPECT_EQ(GetAsmCurrentDirectory(), nullptr);
}

// ---- Nesting
// ----------------------------------------------------------------------------------------

TEST_F(Source, IncludedFileIsReadInPlaceAndTheIncludingFileGoesOn) {
    write_file("part", "p1\np2\n");
    open_source_file("main", "m1\n+part\nm3\n");
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(current_place(), "main:2");
    EXPECT_EQ(push_source("part"), 1);
    EXPECT_EQ(source_stack_ptr, 1);
    newuse = 0;
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(current_place(), "part:1");
    EXPECT_EQ(newuse, 0);
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(line_text(), "m3\n");
    EXPECT_EQ(newuse, 1);
    EXPECT_EQ(source_stack_ptr, 0);
    EXPECT_EQ(realline, 5);
    EXPECT_EQ(listline, 5);
    EXPECT_EQ(as_read_line(), 0);
    EXPECT_EQ(source_stack_ptr, -1);
}

// While the sequence is being recorded, the line number to resume at is the one that was
// noted when the file itself was opened; the final pass notes it where the file is left.
TEST_F(Source, OnlyTheFinalPassResumesTheIncludingFilesLineNumbers) {
    write_file("part", "p1\n");
    open_source_file("main", "m1\n+part\nm3\nm4\n");
    EXPECT_EQ(read_with_inclusions(), (Lines{"main:1 m1\n", "main:2 +part\n", "part:1 p1\n",
                                             "main:1 m3\n", "main:2 m4\n"}));
    replay_in_final_pass();
    EXPECT_EQ(read_with_inclusions(), (Lines{"main:1 m1\n", "main:2 +part\n", "part:1 p1\n",
                                             "main:3 m3\n", "main:4 m4\n"}));
}

TEST_F(Source, FilesOneAfterTheOtherAllReturnToTheIncludingFile) {
    write_file("one", "o1\n");
    write_file("two", "t1\n");
    open_source_file("main", "+one\n+two\nm3\n");
    const Lines texts{"+one\n", "o1\n", "+two\n", "t1\n", "m3\n"};
    Lines seen;
    for (const std::string &line : read_with_inclusions()) {
        seen.push_back(line.substr(line.find(' ') + 1));
    }
    EXPECT_EQ(seen, texts);
    EXPECT_EQ(file_entry_index.size() >= 5, true);
    EXPECT_EQ(file_entry_index[0], 0);
    EXPECT_EQ(file_entry_index[1], 1);
    EXPECT_EQ(file_entry_index[2], 0);
    EXPECT_EQ(file_entry_index[3], 2);
    EXPECT_EQ(file_entry_index[4], 0);
}

// The entry two steps back is the innermost file when the file being left included one
// itself, so the rest of the outer files is not read.
TEST_F(Source, NestingTwoDeepLosesTheRestOfTheOuterFiles) {
    write_file("inner", "i1\n");
    write_file("outer", "+inner\no2\n");
    open_source_file("main", "+outer\nm2\nm3\n");
    const Lines expected{"main:1 +outer\n", "outer:1 +inner\n", "inner:1 i1\n", "outer:2 o2\n"};
    EXPECT_EQ(read_with_inclusions(), expected);
    EXPECT_EQ(source_stack_ptr, -1);
    EXPECT_EQ(file_entry_index[3], 1);
    EXPECT_EQ(file_entry_index[4], 2);
}

TEST_F(Source, FinalPassFollowsTheSequenceOfANestingTwoDeep) {
    write_file("inner", "i1\n");
    write_file("outer", "+inner\no2\n");
    open_source_file("main", "+outer\nm2\nm3\n");
    read_with_inclusions();
    replay_in_final_pass();
    EXPECT_EQ(read_with_inclusions(),
              (Lines{"main:1 +outer\n", "outer:1 +inner\n", "inner:1 i1\n", "outer:2 o2\n"}));
}

TEST_F(Source, FinalPassOpensNothing) {
    write_file("part", "p1\n");
    open_source_file("main", "+part\nm2\n");
    read_with_inclusions();
    std::filesystem::remove("main");
    std::filesystem::remove("part");
    replay_in_final_pass();
    EXPECT_EQ(read_with_inclusions(), (Lines{"main:1 +part\n", "part:1 p1\n", "main:2 m2\n"}));
    EXPECT_EQ(file_entry_ptr, 1);
}

TEST_F(Source, FileReadTwiceIsEnteredTwice) {
    write_file("part", "p1\n");
    open_source_file("main", "+part\n+part\n");
    read_with_inclusions();
    EXPECT_EQ(file_entry_ptr, 2);
    EXPECT_EQ(getCurrentFileInfo(1)->pathname, getCurrentFileInfo(2)->pathname);
}

TEST_F(Source, NewPassEmptiesTheTableAndTheSequence) {
    open_source_file("main", "m1\n");
    read_all();
    endflag = 1;
    source_new_pass();
    EXPECT_EQ(file_entry_ptr, -1);
    EXPECT_EQ(source_stack_ptr, -1);
    EXPECT_EQ(pplevel, -1);
    EXPECT_EQ(Line_no, 0);
    EXPECT_EQ(realline, 0);
    EXPECT_EQ(listline, 0);
    EXPECT_EQ(newuse, 0);
    EXPECT_EQ(endflag, 0);
    EXPECT_TRUE(std::all_of(file_entry_index.begin(), file_entry_index.end(),
                            [](int index) { return index == -1; }));
    ASSERT_EQ(push_source("main"), 1);
    EXPECT_EQ(read_all(), (Lines{"main:1 m1\n"}));
}

TEST_F(Source, CountersRestartWithoutTouchingTheTable) {
    open_source_file("main", "m1\nm2\n");
    read_all();
    endflag = 1;
    source_new_counts();
    EXPECT_EQ(Line_no, 0);
    EXPECT_EQ(realline, 0);
    EXPECT_EQ(listline, 0);
    EXPECT_EQ(endflag, 0);
    EXPECT_EQ(file_entry_ptr, 0);
}

TEST_F(Source, EndFlagLeavesTheIncludedFileAlone) {
    write_file("part", "p1\np2\n");
    open_source_file("main", "+part\nm2\n");
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(push_source("part"), 1);
    EXPECT_EQ(as_read_line(), 1);
    endflag = 1;
    newuse = 0;
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(line_text(), "m2\n");
    EXPECT_EQ(endflag, 0);
    EXPECT_EQ(newuse, 1);
}

TEST_F(Source, EndFlagInTheMainFileEndsThePass) {
    open_source_file("main", "m1\nm2\n");
    EXPECT_EQ(as_read_line(), 1);
    endflag = 1;
    EXPECT_EQ(as_read_line(), 0);
    EXPECT_EQ(source_stack_ptr, -1);
    EXPECT_EQ(realline, 1);
}

TEST_F(Source, RecursiveFileIsIgnored) {
    open_source_file(directory + "/main", "m1\nm2\n");
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(push_source((directory + "/main").c_str()), 1);
    EXPECT_EQ(source_stack_ptr, 0);
    EXPECT_EQ(file_entry_ptr, 0);
    EXPECT_EQ(pplevel, 0);
    EXPECT_EQ(Line_no, 1);
    EXPECT_EQ(read_all(), (Lines{"main:2 m2\n"}));
}

TEST_F(Source, RecursionIsSeenInANameComposedFromTheIncludingFilesDirectory) {
    std::filesystem::create_directory("sub");
    open_source_file("sub/main", "m1\n");
    EXPECT_EQ(push_source("main"), 1);
    EXPECT_EQ(source_stack_ptr, 0);
    EXPECT_EQ(file_entry_ptr, 0);
}

TEST_F(Source, RecursionIsSeenAcrossSeveralFiles) {
    open_source_file("main", "");
    open_source_file("part", "");
    EXPECT_EQ(push_source((directory + "/main").c_str()), 1);
    EXPECT_EQ(source_stack_ptr, 1);
}

TEST_F(Source, TwentyFilesNestAndTheNextOneEndsTheRun) {
    for (int depth = 1; depth <= 20; ++depth) {
        open_source_file("f" + std::to_string(depth), "");
    }
    EXPECT_EQ(source_stack_ptr, 19);
    write_file("f21", "");
    EXPECT_EQ(end_status([] { push_source("f21"); }), 1);
    EXPECT_EQ(take_output(),
              directory + "/f20 (0)Fatal error: To many input files, source stack exhausted\n");
}

TEST_F(Source, FinalPassIsBoundByTheSameDepth) {
    enter_final_pass();
    for (int depth = 1; depth <= 20; ++depth) {
        EXPECT_EQ(push_source(nullptr), 1);
    }
    EXPECT_EQ(end_status([] { push_source(nullptr); }), 1);
}

TEST_F(Source, SequenceOfMoreThanTwentySwitchesIsReplayedWhole) {
    write_file("part", "p\n");
    std::string text;
    for (int line = 0; line < 30; ++line) {
        text += "+part\n";
    }
    open_source_file("main", text + "last\n");
    const std::size_t lines = read_with_inclusions().size();
    EXPECT_EQ(lines, 61U);
    replay_in_final_pass();
    const Lines replayed = read_with_inclusions();
    EXPECT_EQ(replayed.size(), 61U);
    EXPECT_EQ(replayed.back(), "main:31 last\n");
}

TEST_F(Source, LeavingTheLastFileTellsThatNoneRemains) {
    open_source_file("main", "m1\n");
    open_source_file("part", "p1\n");
    newuse = 0;
    endflag = 1;
    EXPECT_EQ(pop_source(), 1);
    EXPECT_EQ(newuse, 1);
    EXPECT_EQ(endflag, 0);
    EXPECT_EQ(pplevel, 2);
    EXPECT_EQ(file_entry_index.at(2), 0);
    EXPECT_EQ(pop_source(), 0);
    EXPECT_EQ(source_stack_ptr, -1);
}

// ---- Reading lines
// ----------------------------------------------------------------------------------

TEST_F(Source, LastLineWithoutALineFeedIsDelivered) {
    open_source_file("main", "one\ntwo");
    EXPECT_EQ(read_all(), (Lines{"main:1 one\n", "main:2 two"}));
}

TEST_F(Source, EmptyFileHasNoLine) {
    open_source_file("main", "");
    EXPECT_EQ(as_read_line(), 0);
    EXPECT_EQ(realline, 0);
}

TEST_F(Source, ScanPositionStartsTheLine) {
    open_source_file("main", "one\n");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Col_Ptr, Line_Ptr);
}

TEST_F(Source, CarriageReturnBeforeALineFeedIsDropped) {
    open_source_file("main", "A\r\n\r\nB\rC\n\tD\n");
    EXPECT_EQ(read_all(), (Lines{"main:1 A\n", "main:2 \n", "main:3 B\rC\n", "main:4 \tD\n"}));
}

// The next-to-last character is looked at, whatever the last one is.
TEST_F(Source, CarriageReturnBeforeTheLastCharacterOfAFileEndsTheLine) {
    open_source_file("main", "A\rB");
    EXPECT_EQ(read_all(), (Lines{"main:1 A\n"}));
}

TEST_F(Source, CarriageReturnAtTheEndOfAFileStays) {
    open_source_file("main", "AB\r");
    EXPECT_EQ(read_all(), (Lines{"main:1 AB\r"}));
    open_source_file("other", "\r");
    EXPECT_EQ(read_all(), (Lines{"other:1 \r"}));
}

TEST_F(Source, NulEndsALinesTextAndTheNextLineFollows) {
    open_source_file("main", std::string("AB\0CD\nEF\n", 9));
    EXPECT_EQ(read_all(), (Lines{"main:1 AB", "main:2 EF\n"}));
}

TEST_F(Source, LineOfMoreThan4093CharactersDrawsAWarning) {
    for (const std::size_t size : {4091U, 4092U, 4093U}) {
        const std::string name = "line" + std::to_string(size);
        open_source_file(name, std::string(size, 'a') + "\n");
        as_read_line();
        replay_in_final_pass();
        take_output();
        ASSERT_EQ(as_read_line(), 1);
        EXPECT_EQ(Line.length(), size + 1);
        const std::string warning =
            directory + "/" + name + " (1) Warning: Source line is to long\n";
        EXPECT_EQ(take_output(), size == 4093 ? warning : "") << size;
        Pass = 1;
        Pass2 = 0;
        source_new_pass();
    }
}

TEST_F(Source, RestOfALineBeyond4095CharactersComesAsTheNextLine) {
    for (const std::size_t size : {4094U, 4095U, 4096U}) {
        open_source_file("line" + std::to_string(size), std::string(size, 'a') + "\nb\n");
        ASSERT_EQ(as_read_line(), 1);
        EXPECT_EQ(Line.length(), 4095U);
        ASSERT_EQ(as_read_line(), 1);
        const std::string next = size == 4094 ? "b\n" : std::string(size - 4095, 'a') + "\n";
        EXPECT_EQ(line_text(), next) << size;
        EXPECT_EQ(Line_no, 2);
        source_new_pass();
    }
}

// ---- Lines that are only counted ----

void skip_comments() {
    std::string_view line = next_source_line();
    while (!line.empty() && line.front() == ';') {
        skip_source_line(line.size());
        line = next_source_line();
    }
}

TEST_F(Source, SkippedLinesAreCountedUpToTheFirstThatIsOfUse) {
    open_source_file("t.szirpa", ";1\n;2\nA EQU 1\n;4\n");
    skip_comments();
    EXPECT_EQ(Line_no, 2);
    EXPECT_EQ(realline, 2);
    EXPECT_EQ(listline, 2);
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(line_text(), "A EQU 1\n");
    skip_comments();
    EXPECT_EQ(Line_no, 4);
    EXPECT_EQ(as_read_line(), 0);
}

TEST_F(Source, TheLineThatComesNextIsSeenWithItsLineFeed) {
    open_source_file("t.szirpa", "\n12\n1234");
    for (const std::string_view line : {"\n", "12\n", "1234"}) {
        EXPECT_EQ(next_source_line(), line);
        skip_source_line(line.size());
    }
    EXPECT_EQ(next_source_line(), "");
    EXPECT_EQ(Line_no, 3);
}

TEST_F(Source, TheRestOfALongLineIsALineOfItsOwn) {
    open_source_file("t.szirpa", ";" + std::string(4094, 'x') + "A EQU 1\n; the last");
    skip_comments();
    EXPECT_EQ(Line_no, 1);
    EXPECT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), "A EQU 1\n");
    skip_comments();
    EXPECT_EQ(Line_no, 3);
    EXPECT_EQ(as_read_line(), 0);
}

TEST_F(Source, NothingIsCountedOutsideASourceAndAfterItsEnd) {
    skip_comments();
    EXPECT_EQ(Line_no, 0);
    open_source_file("t.szirpa", ";\n;\n");
    endflag = 1;
    skip_comments();
    EXPECT_EQ(Line_no, 0);
}

} // namespace
