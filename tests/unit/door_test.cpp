// The door: what a listener is told, in which units, and where the outputs of a run go.
#include "door/door.h"
#include "door/messages.h"
#include "tests/calls/system_calls.h"
#include "tests/unit/support.h"

#include <cerrno>
#include <map>
#include <set>

#include <unistd.h>

namespace {

// Reports as "line:first-last id", with a "?" before those that are not counted.
std::string shown(const door::Report &report) {
    return (report.is_counted ? "" : "?") + std::to_string(report.place.line) + ":" +
           std::to_string(report.place.first) + "-" + std::to_string(report.place.last) + " " +
           std::string(report.id);
}

std::string shown(const door::Place &place) {
    return std::to_string(place.line) + ":" + std::to_string(place.first) + "-" +
           std::to_string(place.last);
}

class Door : public RunTest {
  protected:
    // Assembles a text from memory; outputs stay in memory.
    door::Result assemble(const std::string &text, std::vector<std::string> options = {},
                          door::Outputs outputs = door::Outputs::kMemory) {
        return door::run({std::move(options), "prog.szirpa", text, outputs}, listener);
    }

    std::vector<std::string> reports_of(const std::string &text) {
        std::vector<std::string> reports;
        listener.report = [&](const door::Report &report) { reports.push_back(shown(report)); };
        (void)assemble(text);
        listener.report = nullptr;
        return reports;
    }

    std::string report_of(const std::string &text) {
        const std::vector<std::string> reports = reports_of(text);
        return reports.empty() ? "" : reports.front();
    }

    door::Listener listener;
};

const std::string &bytes_of(const door::Result &result, door::OutputKind kind) {
    static const std::string kNothing;
    for (const door::Output &output : result.outputs) {
        if (output.kind == kind) {
            return output.bytes;
        }
    }
    return kNothing;
}

// ---- Places of reports ----

TEST_F(Door, AnUnknownOperationIsPointedAt) {
    EXPECT_EQ(report_of("\tORG 0\n\tLDXA #5\n"), "2:2-5 unknown-instruction");
    EXPECT_EQ(report_of("start   LDXA #5\n"), "1:9-12 unknown-instruction");
}

TEST_F(Door, AnOperandIsPointedAtOrTheOperationThatLacksIt) {
    EXPECT_EQ(report_of(" STA #5\n"), "1:6-7 addressing-mode");
    EXPECT_EQ(report_of(" LDA\n"), "1:2-4 bad-operand");
    EXPECT_EQ(report_of(" BRA\n"), "1:2-4 bad-operand-syntax");
    EXPECT_EQ(report_of(" ORG 0\nl BRA l+200 ; far\n"), "2:7-11 branch-out-of-reach");
}

TEST_F(Door, AValueOfAListIsPointedAtAlone) {
    EXPECT_EQ(report_of(" FCB 1,300,2\n"), "1:8-10 value-out-of-range");
    EXPECT_EQ(report_of(" LDA 300,X\n"), "1:6-8 value-out-of-range");
    EXPECT_EQ(report_of(" FCB 1;2\n"), "1:7-7 bad-delimiter");
}

TEST_F(Door, AFaultOfAnExpressionIsPointedAtWhereTheCheckStopped) {
    EXPECT_EQ(report_of(" LDA #(1+2\n"), "1:11-11 missing-parenthesis");
    EXPECT_EQ(report_of(" LDA #1+\n"), "1:9-9 unterminated-expression");
    EXPECT_EQ(report_of(" LDA #1+A\n"), "1:9-9 reserved-word");
    EXPECT_EQ(report_of(" LDA #12a4\n"), "1:7-10 bad-decimal-digit");
    EXPECT_EQ(report_of(" LDA #1+$1G\n"), "1:9-11 bad-hexadecimal-digit");
    EXPECT_EQ(report_of(" LDA #8/0\n"), "1:9-9 division-by-zero");
    EXPECT_EQ(report_of(" LDA #1<2\n"), "1:8-8 less-or-greater");
}

TEST_F(Door, AnUndefinedNameIsPointedAtAlsoInAConditional) {
    EXPECT_EQ(report_of(" LDA #1+none\n"), "1:9-12 undefined-name");
    EXPECT_EQ(report_of("##if 1+none\n#endif\n"), "1:8-11 undefined-name");
}

TEST_F(Door, ANameDefinedTwiceIsPointedAt) {
    EXPECT_EQ(reports_of("one NOP\none NOP\n"),
              (std::vector<std::string>{"1:1-3 multiple-definition", "2:1-3 multiple-definition"}));
    EXPECT_EQ(report_of("one EQU 1\none EQU 1\n"), "2:1-3 already-defined");
}

TEST_F(Door, AConditionalWordIsPointedAt) {
    EXPECT_EQ(report_of(" NOP\n #else\n"), "2:2-6 else-without-if");
    EXPECT_EQ(report_of("#error no\n"), "1:1-6 error-directive");
}

TEST_F(Door, ReportsAfterASecondPhaseErrorAreToldAsNotCounted) {
    // The reservation is nothing in pass 1, since its size is known later only.
    const std::string text = " RMB far\none\ntwo\n NOP\nfar NOP\n LDXA\n";
    EXPECT_EQ(reports_of(text),
              (std::vector<std::string>{"2:1-3 phase-error", "?3:1-3 phase-error",
                                        "?5:1-3 phase-error", "?6:2-5 unknown-instruction"}));
}

TEST_F(Door, TheLineThatDisplacesAllOthersIsTold) {
    std::vector<int> lines;
    listener.line = [&](const door::Line &line) {
        if (line.displaces) {
            lines.push_back(line.line);
        }
    };
    (void)assemble("one NOP\n RMB far\ntwo NOP\nfar NOP\n");
    EXPECT_EQ(lines, std::vector{2});
}

TEST_F(Door, WarningsAreToldWithoutTheOptionForThem) {
    EXPECT_EQ(report_of(" FCS \"\xE4\"\n"), "1:7-7 non-ascii-character");
    EXPECT_EQ(assemble(" FCS \"\xE4\"\n").warnings, 1U);
}

TEST_F(Door, EveryMessageHasAnIdentifierOfItsOwn) {
    std::set<std::string_view> ids;
    for (const door::Message &message : door::messages()) {
        EXPECT_TRUE(ids.insert(message.id).second) << message.id;
    }
    EXPECT_EQ(ids.size(), door::identifiers().size());
}

// ---- Lines, names, blocks, expressions ----

TEST_F(Door, EveryLineIsToldWithItsAddressAndBytes) {
    std::vector<std::string> lines;
    listener.line = [&](const door::Line &line) {
        lines.push_back(std::to_string(static_cast<int>(line.kind)) + " " +
                        std::to_string(line.address) + "+" + std::to_string(line.size) + ":" +
                        std::to_string(line.bytes.size()));
    };
    (void)assemble(
        "; text\n\n ORG 16\nl LDA #5\nm\n RMB 3\n FCB 1,2\n LDXA\n#ifdef no\n x\n#endif\n");
    const auto line = [](door::LineKind kind, const std::string &rest) {
        return std::to_string(static_cast<int>(kind)) + " " + rest;
    };
    EXPECT_EQ(
        lines,
        (std::vector<std::string>{
            line(door::LineKind::kComment, "0+0:0"), line(door::LineKind::kEmpty, "0+0:0"),
            line(door::LineKind::kDirective, "16+0:0"),
            line(door::LineKind::kInstruction, "16+2:2"), line(door::LineKind::kLabel, "18+0:0"),
            line(door::LineKind::kDirective, "18+3:0"), line(door::LineKind::kDirective, "21+2:2"),
            line(door::LineKind::kFaulty, "23+0:0"), line(door::LineKind::kConditional, "23+0:0"),
            line(door::LineKind::kSkipped, "23+0:0"),
            line(door::LineKind::kConditional, "23+0:0")}));
}

TEST_F(Door, NamesAreToldWithTheirPlacesAndValues) {
    std::vector<std::string> names;
    listener.definition = [&](const door::Definition &definition) {
        names.push_back("def " + std::string(definition.name) + " " + shown(definition.place) +
                        " " + std::to_string(definition.value));
    };
    listener.reference = [&](const door::Reference &reference) {
        names.push_back("ref " + std::string(reference.name) + " " + shown(reference.place) + " " +
                        std::to_string(reference.value));
    };
    (void)assemble("five EQU 5\n ORG 16\nl LDA #five+one,X\none NOP\n#ifdef one\n#endif\n END l\n",
                   {"-D", "given"});
    EXPECT_EQ(names, (std::vector<std::string>{"def given 0:0-0 0", "def five 1:1-4 5",
                                               "def l 3:1-1 16", "ref five 3:8-11 5",
                                               "ref one 3:13-15 16", "def one 4:1-3 16",
                                               "ref one 5:8-10 16", "ref l 7:6-6 16"}));
}

TEST_F(Door, BlocksAreToldWhenTheyEnd) {
    std::vector<std::string> blocks;
    listener.block = [&](const door::Block &block) {
        blocks.push_back(std::string(block.word) + " " + std::to_string(block.first) + "-" +
                         std::to_string(block.last) + (block.is_taken ? " taken" : ""));
    };
    (void)assemble("##if 1\n # ifdef no\n#endif\n#else\n#endif\n#ifndef no\n");
    EXPECT_EQ(blocks, (std::vector<std::string>{"ifdef 2-3", "if 1-4 taken", "else 4-5",
                                                "ifndef 6-0 taken"}));
}

TEST_F(Door, ExpressionsAreToldWithTheirValues) {
    std::vector<std::string> expressions;
    listener.expression = [&](const door::Expression &expression) {
        expressions.push_back(std::string(expression.text) + "=" +
                              std::to_string(expression.value) + " " + shown(expression.place));
    };
    (void)assemble(" LDA #7\n LDA #1+6<<1\n FCB 1,2*3\n##if 1==1\n#endif\n");
    EXPECT_EQ(expressions,
              (std::vector<std::string>{"1+6<<1=14 2:7-12", "2*3=6 3:8-10", "1==1=1 4:6-9"}));
}

// ---- Runs and their outputs ----

TEST_F(Door, OutputsInMemoryAreThoseOfFiles) {
    const std::string text = " ORG 16\n LDA #5\n";
    write_file("prog.szirpa", text);
    const door::Result in_memory = assemble(text, {"-L"});
    EXPECT_FALSE(file_exists("prog.s19"));
    const door::Result in_files =
        door::run({{"-L"}, "prog.szirpa", std::nullopt, door::Outputs::kFiles}, {});
    EXPECT_EQ(in_files.outputs.size(), 3U);
    EXPECT_EQ(bytes_of(in_memory, door::OutputKind::kRecords), read_text("prog.s19"));
    EXPECT_EQ(bytes_of(in_memory, door::OutputKind::kListing), read_text("prog.lst"));
    EXPECT_EQ(bytes_of(in_memory, door::OutputKind::kScript), read_text("prog.fmem"));
}

TEST_F(Door, ARunToNowhereMakesNoOutput) {
    EXPECT_TRUE(assemble(" NOP\n", {"-L"}, door::Outputs::kNowhere).outputs.empty());
    EXPECT_FALSE(file_exists("prog.s19"));
    EXPECT_FALSE(file_exists("prog.lst"));
}

TEST_F(Door, AFailureLeavesTheListingAlone) {
    write_file("prog.szirpa", " LDXA\n");
    write_file("prog.s19", "old");
    write_file("prog.fmem", "old");
    const door::Result result =
        door::run({{"-L", "-A"}, "prog.szirpa", std::nullopt, door::Outputs::kFiles}, {});
    EXPECT_EQ(result.errors, 1U);
    ASSERT_EQ(result.outputs.size(), 1U);
    EXPECT_EQ(result.outputs[0].name, "prog.lst");
    EXPECT_TRUE(file_exists("prog.lst"));
    EXPECT_FALSE(file_exists("prog.s19"));
    EXPECT_FALSE(file_exists("prog.fmem"));
    EXPECT_FALSE(file_exists("prog_cout.c"));
}

TEST_F(Door, TheListenerCanFailARun) {
    listener.end = [] { return true; };
    EXPECT_TRUE(assemble(" NOP\n").outputs.empty());
}

TEST_F(Door, FilesThatCannotBeUsedAreToldWithTheReason) {
    const door::Result missing = door::run({{}, "none.szirpa", std::nullopt, {}}, {});
    ASSERT_EQ(missing.failures.size(), 1U);
    EXPECT_EQ(missing.failures[0].name, "none.szirpa");
    EXPECT_EQ(missing.failures[0].reason, "No such file or directory");
    EXPECT_FALSE(missing.has_run);
    write_file("prog.szirpa", " NOP\n");
    const door::Result refused =
        door::run({{"-o", "prog.szirpa"}, "prog.szirpa", std::nullopt, {}}, {});
    ASSERT_EQ(refused.failures.size(), 1U);
    EXPECT_EQ(refused.failures[0].reason, "it is the source");
    EXPECT_EQ(read_text("prog.szirpa"), " NOP\n");
}

TEST_F(Door, TheSymbolTableIsWhatWouldHaveBeenPrinted) {
    EXPECT_EQ(assemble("five EQU 5\n", {"-S"}).symbols,
              "\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n\t0005\tfive\n");
    EXPECT_EQ(assemble("five EQU 5\n", {"-S", "-L"}).symbols, "");
}

TEST_F(Door, AFileThatCannotBeLookedUpIsNotCreated) {
    calls.readlink = [](const char *, char *, std::size_t) -> ssize_t {
        errno = EACCES;
        return -1;
    };
    const auto failure = door::write_file("out", "text", {});
    calls = real_calls;
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, door::Failure::Kind::kCreate);
    EXPECT_EQ(failure->reason, "Permission denied");
    EXPECT_FALSE(file_exists("out"));
}

TEST_F(Door, AFileThatIsCutIsWithdrawn) {
    write_file("out", "old");
    ASSERT_EQ(::link("out", "other"), 0); // so that it is written where it is
    calls.write = [](int, const void *, std::size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    const auto failure = door::write_file("out", "text", {});
    calls = real_calls;
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, door::Failure::Kind::kWrite);
    EXPECT_EQ(failure->reason, "No space left on device");
    EXPECT_FALSE(file_exists("out"));
}

TEST_F(Door, AFileIsWrittenAsAWhole) {
    write_file("out", "old");
    EXPECT_FALSE(door::write_file("out", "text", {"in"}));
    EXPECT_EQ(read_text("out"), "text");
    const auto failure = door::write_file("./out", "more", {"in", "out"});
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, door::Failure::Kind::kCreate);
    EXPECT_EQ(read_text("out"), "text");
}

TEST_F(Door, RegistersAreWhatTheScannerTakesForThem) {
    for (const char *name : {"A", "x", "Y", "sp", "CC", "a.b", "X$"}) {
        EXPECT_TRUE(door::is_register(name)) << name;
    }
    for (const char *name : {"", "B", "AB", "C", "S", "1", "_A", "X_", ","}) {
        EXPECT_FALSE(door::is_register(name)) << name;
    }
}

TEST_F(Door, OperandsAreTheFormsThatAnInstructionTakes) {
    EXPECT_EQ(door::operands_of("bra"), std::vector<std::string>{"n"});
    EXPECT_TRUE(door::operands_of("NOP").empty());
    EXPECT_TRUE(door::operands_of("ORG").empty());
    EXPECT_TRUE(door::operands_of("LD").empty());
}

TEST_F(Door, OneRunLeavesNothingToTheNext) {
    const door::Result first = assemble(" ORG 16\nl NOP\n##if 0\n", {"-C", "nocase"});
    const door::Result second = assemble(" ORG 0\n NOP\n");
    EXPECT_EQ(first.errors, 0U);
    EXPECT_EQ(second.errors, 0U);
    EXPECT_EQ(bytes_of(second, door::OutputKind::kRecords), "S1040000"
                                                            "00FB\nS9030000FC\n");
}

TEST_F(Door, NothingIsPrinted) {
    ::testing::internal::CaptureStdout();
    (void)assemble(" LDXA\n", {"-w", "-S", "-X"});
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST(Opcodes, AreReadAsTheirInstructions) {
    const auto shown = [](unsigned code) {
        const door::Opcode &opcode = door::opcode(static_cast<std::uint8_t>(code));
        return std::string(opcode.mnemonic) + " " + opcode.operand +
               (opcode.has_byte ? " +1" : "") + (opcode.is_branch ? " branch" : "");
    };
    EXPECT_EQ(shown(0x00), "NOP ");
    EXPECT_EQ(shown(0x1C), "TFR X,SP");
    EXPECT_EQ(shown(0x21), "BRA n +1 branch");
    EXPECT_EQ(shown(0x33), "JMP n +1");
    EXPECT_EQ(shown(0x60), "STX A,X");
    EXPECT_EQ(shown(0xDD), "LEAY n,SP +1");
    EXPECT_EQ(shown(0xF0), "LDA #n +1");
    EXPECT_EQ(shown(0xFE), "LDA ,-Y");
    EXPECT_EQ(shown(0xFF), " ");
}

} // namespace
