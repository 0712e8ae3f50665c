// The driver: whole runs in one process, each of which begins anew, and their summaries.
#include "as/asCond.h"
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "tests/unit/support.h"

#include <filesystem>
#include <map>
#include <vector>

namespace {

// All that a run leaves behind.
struct Result {
    int status = 0;
    std::string output;
    std::map<std::string, std::string> files;
};

void expect_same(const Result &result, const Result &expected) {
    EXPECT_EQ(result.status, expected.status);
    EXPECT_EQ(result.output, expected.output);
    EXPECT_EQ(result.files, expected.files);
}

// A source that touches every output and leaves as much state behind as it can.
const std::string kBusySource = "#define COUNT 3\n"
                                "#ifdef GIVEN\n"
                                "LIMIT EQU $12345\n"
                                "#endif\n"
                                " ORG $20\n"
                                "start: LDA #LIMIT&$FF\n"
                                " FCB 1,2,3,4,5,6,7\n"
                                "text FCS \"AB\"\n"
                                " RMB COUNT\n"
                                " LDA #0\n"
                                ".stab type t\n"
                                " END start\n";

class WholeRun : public RunTest {
  protected:
    // Runs the program in the working directory and takes its output files away.
    static Result run(std::vector<const char *> arguments) {
        arguments.insert(arguments.begin(), "HXzirpa");
        const int argc = static_cast<int>(arguments.size());
        arguments.push_back(nullptr);
        Result result;
        ::testing::internal::CaptureStdout();
        result.status = as_main(argc, arguments.data());
        result.output = ::testing::internal::GetCapturedStdout();
        for (const auto &entry : std::filesystem::directory_iterator(".")) {
            const std::string name = entry.path().filename().string();
            if (!name.ends_with(".szirpa")) {
                result.files[name] = read_text(name);
                std::filesystem::remove(entry.path());
            }
        }
        return result;
    }
};

TEST_F(WholeRun, SecondRunInOneProcessGivesTheSameResult) {
    write_file("busy.szirpa", kBusySource);
    const std::vector<const char *> arguments{"-L", "-S",      "-g",         "-A",
                                              "-w", "-DGIVEN", "busy.szirpa"};
    const Result first = run(arguments);
    const Result second = run(arguments);
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.files.size(), 4U);
    EXPECT_TRUE(first.files.at("busy.s19").starts_with("S1"));
    expect_same(second, first);
}

TEST_F(WholeRun, OptionsOfAnEarlierRunAreForgotten) {
    write_file("plain.szirpa", " FCB 1,2\n");
    write_file("busy.szirpa", kBusySource);
    const Result before = run({"plain.szirpa"});
    EXPECT_EQ(before.output, "-- No errors.\n");
    EXPECT_EQ(before.files.at("plain.s19"), "S10500020102F5\nS9030002FA\n");
    run({"-L", "-S", "-g", "-A", "-w", "-S3", "-Cnocase", "-Cnopure", "-oother", "-o", "x.s19",
         "-d", "src", "-Iinc", "-DGIVEN", "busy.szirpa"});
    expect_same(run({"plain.szirpa"}), before);
}

TEST_F(WholeRun, ErrorsOfAnEarlierRunAreForgotten) {
    write_file("plain.szirpa", "FIVE EQU 5\nL LDA #FIVE\n END L\n");
    write_file("faulty.szirpa", "##if 0\n#ifdef Q\n#else\n#ifndef R\n");
    write_file("wrong.szirpa", "L NOP\nL NOP\n XYZZY\n LDA #NONE\n#ifdef LATE\n#endif\n");
    const Result before = run({"-L", "plain.szirpa"});
    EXPECT_EQ(run({"-L", "-w", "wrong.szirpa"}).status, 4);
    run({"faulty.szirpa"});
    expect_same(run({"-L", "plain.szirpa"}), before);
}

TEST_F(WholeRun, FatalErrorOfAnEarlierRunIsForgotten) {
    write_file("plain.szirpa", " FCB 1,2\n");
    const Result before = run({"plain.szirpa"});
    const Result fatal = run({"-o", "none/x.s19", "plain.szirpa"});
    EXPECT_EQ(fatal.status, 1);
    EXPECT_EQ(fatal.output, std::filesystem::current_path().string() +
                                "/plain.szirpa (0)Fatal error: Cannot create output fil "
                                "'none/x.s19'\n");
    expect_same(run({"plain.szirpa"}), before);
}

TEST_F(WholeRun, SymbolsOfAnEarlierRunAreForgotten) {
    write_file("define.szirpa", "FIVE EQU 5\n");
    write_file("use.szirpa", " LDA #FIVE\n");
    EXPECT_EQ(run({"define.szirpa"}).status, 0);
    const Result result = run({"use.szirpa"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("Undefined symbol 'FIVE'"), std::string::npos);
    EXPECT_TRUE(result.output.ends_with("-- 1 error(s).\n"));
}

TEST_F(WholeRun, EndsInTheFinalPass) {
    write_file("a.szirpa", " NOP\n");
    EXPECT_EQ(run({"a.szirpa"}).status, 0);
    EXPECT_EQ(Pass, 2);
    EXPECT_EQ(Pass2, 1);
}

TEST_F(WholeRun, LastLabelOfAnEarlierRunIsForgotten) {
    write_file("label.szirpa", "data FCB 1\n");
    write_file("plain.szirpa", " FCB 1,2\n");
    const Result before = run({"plain.szirpa"});
    run({"label.szirpa"});
    expect_same(run({"plain.szirpa"}), before);
}

TEST_F(WholeRun, StartUpResetsEveryModule) {
    open_source_file("a.szirpa", " NOP\n");
    putsym("X", 1, 1, SYM_DEFINED, 0, nullptr, 0);
    LookupSegment("abs", 1);
    ifdepth = 4;
    skipping = 2;
    entry_is_defined = 1;
    default_entry_seen = 1;
    listing_on = 1;
    O_list = 1;
    record_type = 3;
    Pass = 2;
    Pass2 = 1;
    symdebfile = "SY\n";
    push_include("inc");
    start_up("/opt/bin/HXzirpa");
    EXPECT_EQ(source_stack_ptr, -1);
    EXPECT_EQ(file_entry_ptr, -1);
    EXPECT_EQ(getsym("X"), nullptr);
    EXPECT_EQ(LookupSegment("abs", 0), nullptr);
    EXPECT_EQ(ifdepth, 0);
    EXPECT_EQ(skipping, 0);
    EXPECT_EQ(entry_is_defined, 0);
    EXPECT_EQ(default_entry_seen, 0);
    EXPECT_EQ(listing_on, 0);
    EXPECT_EQ(O_list, 0);
    EXPECT_EQ(record_type, 2);
    EXPECT_EQ(Pass, 0);
    EXPECT_EQ(Pass2, 0);
    EXPECT_EQ(debug_text(), "");
    EXPECT_TRUE(include_stack.empty());
    EXPECT_EQ(AsmStartDirectory, "/opt/bin");
    EXPECT_EQ(AsmCurrentDirectory, directory);
}

TEST_F(WholeRun, UsageIsPrintedWithoutArguments) {
    const Result result = run({});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(
        result.output.starts_with("HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"));
    EXPECT_TRUE(result.files.empty());
}

TEST_F(WholeRun, OptionsWithoutASourceEndSilently) {
    const Result result = run({"-L", "-w"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.files.empty());
}

TEST_F(WholeRun, SourceThatCannotBeOpenedEndsWithStatusOne) {
    const Result result = run({"-L", "lost.szirpa"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "HXzirpa: Can't open 'lost.szirpa'\n");
    EXPECT_TRUE(result.files.empty());
}

// Quirk (clean-run): without -w the summary begins with two hyphens, with -w and no warning it does
// not.
TEST_F(WholeRun, SummaryDiffersWithTheWarningOption) {
    write_file("clean.szirpa", " NOP\n");
    write_file("mild.szirpa", " END nosuch\n");
    EXPECT_EQ(run({"clean.szirpa"}).output, "-- No errors.\n");
    EXPECT_EQ(run({"-w", "clean.szirpa"}).output, "No errors.\n");
    EXPECT_EQ(run({"mild.szirpa"}).output, "-- No errors.\n");
    const Result mild = run({"-w", "mild.szirpa"});
    EXPECT_TRUE(mild.output.ends_with("-- No errors.\n1 warning(s).\n"));
    EXPECT_EQ(mild.status, 0);
}

TEST_F(WholeRun, StatusIsTheNumberOfErrors) {
    write_file("wrong.szirpa", " XYZZY\n XYZZY\n END nosuch\n");
    const Result result = run({"-w", "wrong.szirpa"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.output.ends_with("-- 2 error(s).\n1 warning(s).\n"));
    EXPECT_FALSE(result.files.contains("wrong.s19"));
    EXPECT_TRUE(result.files.contains("wrong.fmem"));
}

TEST_F(WholeRun, SymbolTableIsPrintedAheadOfTheSummary) {
    write_file("names.szirpa", "A EQU 5\n");
    EXPECT_EQ(run({"-S", "names.szirpa"}).output, "\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n"
                                                  "\t0005\tA\n-- No errors.\n");
}

// Pass 0 counts the lines in which there is no constant, and must find the others among them.
TEST_F(WholeRun, ConstantsAreFoundBetweenLinesOfAllKinds) {
    const std::string comment = "; " + std::string(200, 'x') + "\n";
    const std::string counted = "\n; c\n NOP\n\n;\n  \t LDA #1\n" + comment;
    for (const std::string next : {"", "\tNOP\n", " ;\n", "  \n", "L NOP\n"}) {
        write_file("t.szirpa", " ORG A\n" + counted + next + "A EQU 1\nA EQU 1\n");
        const std::string line = std::to_string(next.empty() ? 9 : 10);
        EXPECT_NE(run({"t.szirpa"})
                      .output.find("Error: symbol 'A' previously defined at line " + line + "\n"),
                  std::string::npos)
            << next;
    }
}

TEST_F(WholeRun, ConditionalWordsAreFoundBetweenCountedLines) {
    write_file("t.szirpa", " NOP\n ##if 0\nA EQU 1\n #endif\n NOP\nB EQU 1\nB EQU 1\n");
    const Result result = run({"-S", "t.szirpa"});
    EXPECT_NE(result.output.find("'B' previously defined at line 6\n"), std::string::npos);
    EXPECT_EQ(result.output.find("\tA\n"), std::string::npos);
}

} // namespace
