// ".stab" lines: the records of each keyword, and their warnings.
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "as/asStab.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "tests/unit/support.h"

#include <string>

namespace {

class StabLines : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        putsym("main", 0x10, 1, SYM_DEFINED, 0, nullptr, 0);
        putsym("first", 0x10, 1, SYM_DEFINED, 0, nullptr, 0);
        putsym("second", 0x1234, 1, SYM_DEFINED, 0, nullptr, 0);
        putsym("third", 0x20, 1, SYM_DEFINED, 0, nullptr, 0);
        putsym("low", -1, 1, SYM_DEFINED, 0, nullptr, 0);
        putsym("zero", 0, 1, SYM_DEFINED, 0, nullptr, 0);
    }

    void TearDown() override {
        current_seg = nullptr;
        RunTest::TearDown();
    }

    // Begins the final pass with -g at line 1 of prog.szirpa, which reads as text behind that.
    static void begin_records(const std::string &text = "") {
        open_source_file("prog.szirpa", text);
        while (as_read_line() == 1) {
        }
        replay_in_final_pass();
        Line_no = 1;
        O_symdebug = 1;
    }

    // The records of one ".stab" line.
    static std::string records(const std::string &line) {
        symdebfile.clear();
        begin_line(line);
        ProcessStab();
        return debug_text();
    }

    std::string warning(const std::string &text) const {
        return directory + "/prog.szirpa (1) Warning: " + text + "\n";
    }
};

TEST_F(StabLines, RecordsNameTheCurrentSegment) {
    begin_records();
    current_seg = LookupSegment("code", 1);
    asm_write_sd_exec(12, 1, 0);
    EXPECT_EQ(debug_text(), "SY:C:X:prog.szirpa:12:1:code:0\n");
    EXPECT_EQ(records(".stab sym L a:b:c:5:rest\n"), "SY:C:S:L:prog.szirpa:code:a:b:c:5:rest\n");
    EXPECT_EQ(records(".stab sym V a:b:5:rest\n"), "SY:C:S:V:prog.szirpa:code:a:b:5:rest\n");
    EXPECT_EQ(records(".stab sym v a:main:5:rest\n"),
              "SY:C:S:v:prog.szirpa:code:a:main:00000010:5:rest\n");
    EXPECT_EQ(records(".stab func main:1:2:3:first:second:third\n"),
              "SY:C:f:prog.szirpa:code:main:1:2:3:00000010:00001234:0000001F\n");
}

TEST_F(StabLines, NotedWordsWriteNothing) {
    begin_records();
    EXPECT_EQ(records(".stab init\n"), "");
    EXPECT_EQ(records(".stab dir \"/src\"\n"), "");
    EXPECT_EQ(records(".stab file \"main.c\"\n"), "");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, KeywordIsAPrefixAtTheSeventhCharacter) {
    begin_records();
    EXPECT_EQ(records(".stabXtypeYZtext\n"), "ST:prog.szirpa:Ztext\n");
    EXPECT_EQ(records(".stab initial\n"), "");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(records(".stab  type x\n"), "");
    EXPECT_EQ(take_output(), warning("Unrecognized '.stab'-entry"));
}

TEST_F(StabLines, UnknownKeywordDrawsAWarning) {
    begin_records();
    for (const char *line : {".stab\n", ".stab", ".stab \n", ".stab line 3\n", ".stab FUNC a\n",
                             ".stabtype x\n", ".stab fun\n"}) {
        EXPECT_EQ(records(line), "") << line;
        EXPECT_EQ(take_output(), warning("Unrecognized '.stab'-entry")) << line;
    }
}

// ---- Functions
// --------------------------------------------------------------------------------------

TEST_F(StabLines, FunctionHoldsThreeNumbersAndThreeAddresses) {
    begin_records();
    EXPECT_EQ(records(".stab func  \t main:1:-2:30:first:second:third\n"),
              "SY:C:f:prog.szirpa::main:1:-2:30:00000010:00001234:0000001F\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, NegativeAddressesShowSixteenDigits) {
    begin_records();
    EXPECT_EQ(records(".stab func main:1:2:3:low:low:zero\n"),
              "SY:C:f:prog.szirpa::main:1:2:3:FFFFFFFFFFFFFFFF:FFFFFFFFFFFFFFFF:"
              "FFFFFFFFFFFFFFFF\n");
    EXPECT_EQ(records(".stab func main:1:2:3:zero:zero:low\n"),
              "SY:C:f:prog.szirpa::main:1:2:3:00000000:00000000:FFFFFFFFFFFFFFFE\n");
}

TEST_F(StabLines, MissingFunctionLeavesItsFieldEmpty) {
    begin_records();
    EXPECT_EQ(records(".stab func lost:1:2:3:first:second:third\n"),
              "SY:C:f:prog.szirpa:::1:2:3:00000010:00001234:0000001F\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, MissingLabelDrawsAWarningForTheFirst) {
    begin_records();
    EXPECT_EQ(records(".stab func main:1:2:3:first:lost:gone\n"), "");
    EXPECT_EQ(take_output(), warning("Debug label 'lost' is missing"));
    EXPECT_EQ(records(".stab func main:1:2:3:gone:lost:third\n"), "");
    EXPECT_EQ(take_output(), warning("Debug label 'gone' is missing"));
    EXPECT_EQ(records(".stab func main:1:2:3:first:second:none\n"), "");
    EXPECT_EQ(take_output(), warning("Debug label 'none' is missing"));
}

TEST_F(StabLines, LineTooShortForItsFieldsHasEmptyOnes) {
    begin_records();
    EXPECT_EQ(records(".stab func\n"), "");
    EXPECT_EQ(take_output(), warning("Debug label '' is missing"));
    EXPECT_EQ(records(".stab type\n"), "ST:prog.szirpa:\n");
    EXPECT_EQ(records(".stab type"), "ST:prog.szirpa:\n");
}

TEST_F(StabLines, UnreadableNumbersOfAFunctionAreZero) {
    begin_records();
    EXPECT_EQ(records(".stab func main:x::3:first:second:third\n"),
              "SY:C:f:prog.szirpa::main:0:0:3:00000010:00001234:0000001F\n");
}

// ---- Statements
// -------------------------------------------------------------------------------------

TEST_F(StabLines, StatementHoldsItsLineAndTheValueOfItsExpression) {
    begin_records();
    LC = 0xAB;
    for (const char *keyword : {"stmt", "expr", "exec"}) {
        EXPECT_EQ(records(std::string(".stab ") + keyword + "  12,second+1\n"),
                  "SY:C:X:prog.szirpa:12:4661::AB\n");
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, StatementThatLacksAPartHasZeroes) {
    begin_records();
    for (const char *operand : {"12", "12,", ",second", ",", ""}) {
        EXPECT_EQ(records(std::string(".stab stmt ") + operand + "\n"),
                  "SY:C:X:prog.szirpa:0:0::0\n")
            << operand;
    }
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, StatementPartIsReadAsItStandsBehindTheComma) {
    begin_records();
    for (const char *blank : {" ", "\t", "\x80", "\xFF"}) {
        EXPECT_EQ(records(std::string(".stab_exec 5,") + blank + "3\n"),
                  "SY:C:X:prog.szirpa:5:0::0\n");
        EXPECT_EQ(take_output(), directory + "/prog.szirpa (1) Error: Unterminated expression, "
                                             "Position[13]\n");
    }
}

// ---- Types
// ------------------------------------------------------------------------------------------

TEST_F(StabLines, TypeIsTheTextFromTheTwelfthCharacter) {
    begin_records();
    EXPECT_EQ(records(".stab type  int:1;\n"), "ST:prog.szirpa: int:1;\n");
}

TEST_F(StabLines, ContinuedTypeKeepsItsPlusAndItsContinuation) {
    begin_records(".stab type a+\n  b+\nc\n NOP\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    EXPECT_EQ(debug_text(), "ST:prog.szirpa:a+  b+\nc\n");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), " NOP\n");
}

TEST_F(StabLines, ContinuedTypeStopsAtTheEndOfTheSource) {
    begin_records(".stab type a+\nb+\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    EXPECT_EQ(debug_text(), "ST:prog.szirpa:a+b+\n");
    EXPECT_EQ(as_read_line(), 0);
}

// ---- Symbols
// ----------------------------------------------------------------------------------------

TEST_F(StabLines, LocalSymbolHasFourFieldsAndTheRest) {
    begin_records();
    EXPECT_EQ(records(".stab sym L  a:b:c:7:rest:more\n"),
              "SY:C:S:L:prog.szirpa::a:b:c:7:rest:more\n");
    EXPECT_EQ(records(".stab sym L a:b:c:-7:\n"), "SY:C:S:L:prog.szirpa::a:b:c:-7:\n");
}

TEST_F(StabLines, GlobalSymbolNeedsNoSymbolOfTheTable) {
    begin_records();
    EXPECT_EQ(records(".stab sym V file.c:lost:5:t1\n"),
              "SY:C:S:V:prog.szirpa::file.c:lost:5:t1\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, StaticSymbolHasItsValue) {
    begin_records();
    EXPECT_EQ(records(".stab sym v file.c:second:5:t1\n"),
              "SY:C:S:v:prog.szirpa::file.c:second:00001234:5:t1\n");
    EXPECT_EQ(records(".stab sym v file.c:low:5:t1\n"),
              "SY:C:S:v:prog.szirpa::file.c:low:FFFFFFFFFFFFFFFF:5:t1\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, MissingStaticSymbolDrawsAWarningAndHasTheValueZero) {
    begin_records();
    EXPECT_EQ(records(".stab sym v file.c:lost:5:t1\n"),
              "SY:C:S:v:prog.szirpa::file.c:lost:00000000:5:t1\n");
    EXPECT_EQ(take_output(), warning("Symbol 'file.c:lost' is missing"));
}

TEST_F(StabLines, FunctionSymbolsWriteNothing) {
    begin_records();
    EXPECT_EQ(records(".stab sym F file.c:lost:5:t1\n"), "");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(records(".stab sym f file.c:main:5:t1\n"), "");
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(records(".stab sym f file.c:lost:5:t1\n"), "");
    EXPECT_EQ(take_output(), warning("Symbol 'file.c:lost' is missing"));
}

TEST_F(StabLines, LineNumberFollowsTheRulesOfNumericFields) {
    begin_records();
    EXPECT_EQ(records(".stab sym V a:b:0x10:t\n"), "SY:C:S:V:prog.szirpa::a:b:16:t\n");
    EXPECT_EQ(records(".stab sym V a:b:$10:t\n"), "SY:C:S:V:prog.szirpa::a:b:16:t\n");
    EXPECT_EQ(records(".stab sym V a:b:-5:t\n"), "SY:C:S:V:prog.szirpa::a:b:-5:t\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(StabLines, UnreadableLineNumberDrawsAWarningAndIsZero) {
    begin_records();
    const std::string text = warning("Warning: Bad line number in symdebug info");
    EXPECT_EQ(records(".stab sym V a:b:x:t\n"), "SY:C:S:V:prog.szirpa::a:b:0:t\n");
    EXPECT_EQ(take_output(), text);
    EXPECT_EQ(records(".stab sym v a:main:0X1F:t\n"),
              "SY:C:S:v:prog.szirpa::a:main:00000010:0:t\n");
    EXPECT_EQ(take_output(), text);
    EXPECT_EQ(records(".stab sym F a:b::t\n"), "");
    EXPECT_EQ(take_output(), text);
    EXPECT_EQ(records(".stab sym f a:main:%1:t\n"), "");
    EXPECT_EQ(take_output(), text);
}

TEST_F(StabLines, UnknownKindOfSymbolIsAnError) {
    begin_records();
    EXPECT_EQ(records(".stab sym Q a:b:5:t\n"), "");
    EXPECT_EQ(take_output(), directory + "/prog.szirpa (1) Error: Unidentified symbol type 'Q'\n");
    EXPECT_EQ(Errors, 1);
}

// The NUL in the kind's place ends the message.
TEST_F(StabLines, MissingKindOfSymbolIsAnErrorWithoutItsEnd) {
    begin_records();
    for (const char *line : {".stab_sym\n", ".stab_sym", ".stab sym "}) {
        EXPECT_EQ(records(line), "");
        EXPECT_EQ(take_output(),
                  directory + "/prog.szirpa (1) Error: Unidentified symbol type '\n");
    }
}

TEST_F(StabLines, ContinuedSymbolKeepsItsPlusAndItsContinuation) {
    begin_records(".stab sym V a:b:5:t+\n  u+\nw\n NOP\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    EXPECT_EQ(debug_text(), "SY:C:S:V:prog.szirpa::a:b:5:t+\n  u+\nw\n");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), " NOP\n");
}

TEST_F(StabLines, ContinuationIsCopiedEvenWhereNoRecordIsWritten) {
    begin_records(".stab sym F a:b:5:t+\n  u\n.stab sym Q a+\nw\n NOP\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    EXPECT_EQ(debug_text(), "  u\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    EXPECT_EQ(debug_text(), "  u\nw\n");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), " NOP\n");
}

TEST_F(StabLines, OtherKeywordsHaveNoContinuation) {
    begin_records(".stab stmt 1,2+\n NOP\n");
    ASSERT_EQ(as_read_line(), 1);
    ProcessStab();
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), " NOP\n");
}

} // namespace
