// The rules of the symbol table: creation, lookup, definition in each pass, and the printed table.
#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "symtab/symtab.h"
#include "tests/unit/support.h"

#include <utility>
#include <vector>

namespace {

class SymbolTable : public RunTest {
  protected:
    void TearDown() override {
        current_seg = nullptr;
        RunTest::TearDown();
    }

    static Symbol *put(const std::string &name, std::int32_t value = 0,
                       std::uint32_t flags = SYM_DEFINED) {
        return putsym(name, value, 1, flags, 0, nullptr, 0);
    }

    void begin_reports() {
        open_source_file("prog.szirpa", "");
        enter_final_pass();
        Line_no = 1;
        realline = 1;
    }

    std::string error(const std::string &text) const {
        return directory + "/prog.szirpa (1) Error: " + text + "\n";
    }
};

// ---- Creation and lookup ----

TEST_F(SymbolTable, CreatedRecordHoldsWhatWasGiven) {
    Symbol *symbol = putsym("loop", -5, 12, SYM_DEFINED, 32, "file", 3);
    ASSERT_NE(symbol, nullptr);
    EXPECT_STREQ(symbol->name, "loop");
    EXPECT_EQ(symbol->name_length, 4U);
    EXPECT_EQ(symbol->value, -5);
    EXPECT_EQ(symbol->definition_line, 12);
    EXPECT_EQ(symbol->first_reference_line, 0);
    EXPECT_EQ(symbol->flags, SYM_DEFINED);
    EXPECT_EQ(symbol->element_count, 3);
    EXPECT_EQ(symbol->element_size, 0U);
    EXPECT_EQ(symbol->file, -1);
    EXPECT_EQ(symbol->bit_size, -1);
    EXPECT_EQ(getsym("loop"), symbol);
}

TEST_F(SymbolTable, NameIsTakenUpToItsFirstBlank) {
    EXPECT_STREQ(put("one two")->name, "one");
    EXPECT_STREQ(put("three\tfour")->name, "three");
    EXPECT_EQ(getsym("three")->name_length, 5U);
}

TEST_F(SymbolTable, NameOnceCreatedIsRefused) {
    begin_reports();
    Symbol *symbol = put("loop", 1);
    EXPECT_EQ(put("loop", 2), nullptr);
    EXPECT_EQ(take_output(), error("(F1024)"));
    EXPECT_EQ(getsym("loop"), symbol);
    EXPECT_EQ(symbol->value, 1);
}

TEST_F(SymbolTable, RecordNotesTheFileBeingRead) {
    open_source_file("main", "");
    open_source_file("part", "");
    EXPECT_EQ(put("inner")->file, 1);
    pop_source();
    EXPECT_EQ(put("outer")->file, 0);
}

TEST_F(SymbolTable, SegmentDependsOnTheFlags) {
    EXPECT_EQ(put("plain")->segment, nullptr);
    current_seg = LookupSegment("code", 1);
    EXPECT_EQ(put("label")->segment, current_seg);
    EXPECT_EQ(put("external", 0, SYM_EXTERNAL)->segment, nullptr);
    EXPECT_EQ(put("both", 0, SYM_EXTERNAL | SYM_UNDEFINED)->segment, nullptr);
    const Symbol *undefined = put("undefined", 0, SYM_UNDEFINED);
    ASSERT_NE(LookupSegment("abs", 0), nullptr);
    EXPECT_EQ(undefined->segment, LookupSegment("abs", 0));
}

TEST_F(SymbolTable, ConstantsHaveABitSize) {
    const std::vector<std::pair<std::int32_t, std::int32_t>> sizes{
        {0, 0},    {1, 5},     {15, 5},     {16, 8},     {-16, 5},     {-17, 8},
        {127, 8},  {128, 9},   {-128, 8},   {-129, 9},   {255, 9},     {256, 16},
        {-256, 9}, {-257, 16}, {32767, 16}, {32768, 32}, {-32768, 16}, {-32769, 32}};
    for (const auto &[value, size] : sizes) {
        const std::string name = "v" + std::to_string(value + 40000);
        EXPECT_EQ(put(name, value, SYM_DEFINED | SYM_ABSOLUTE)->bit_size, size) << value;
    }
    EXPECT_EQ(put("label", 3, SYM_DEFINED)->bit_size, -1);
}

TEST_F(SymbolTable, NameIsLookedUpAsItsLeadingRunOfSymbolCharacters) {
    Symbol *symbol = put("a.b$_9");
    EXPECT_EQ(getsym("a.b$_9"), symbol);
    EXPECT_EQ(getsym("a.b$_9+1"), symbol);
    EXPECT_EQ(getsym("a.b$_9 x"), symbol);
    EXPECT_EQ(getsym("a.b$_9:"), symbol);
    EXPECT_EQ(getsym("a.b$_"), nullptr);
    EXPECT_EQ(getsym("a.b$_99"), nullptr);
    EXPECT_EQ(getsym("A.B$_9"), nullptr);
}

TEST_F(SymbolTable, StoredNameMustMatchWhole) {
    put("W,1");
    EXPECT_EQ(getsym("W"), nullptr);
    EXPECT_EQ(getsym("W,1"), nullptr);
}

TEST_F(SymbolTable, CaseCanBeIgnored) {
    O_symbol_case_sensitive = 0;
    Symbol *symbol = put("Loop");
    EXPECT_STREQ(symbol->name, "LOOP");
    EXPECT_EQ(getsym("loop"), symbol);
    EXPECT_EQ(getsym("lOOp+1"), symbol);
    EXPECT_EQ(put("LOOP"), nullptr);
    EXPECT_EQ(lookup("looP"), symbol);
}

TEST_F(SymbolTable, CaseCountsByDefault) {
    EXPECT_NE(put("Loop"), put("LOOP"));
    EXPECT_NE(getsym("Loop"), getsym("LOOP"));
    EXPECT_EQ(getsym("loop"), nullptr);
}

// ---- References ----

TEST_F(SymbolTable, LookupEntersAnUndefinedName) {
    set_line("later+1\n");
    Col_Ptr += 2;
    Line_no = 7;
    Symbol *symbol = lookup("later");
    ASSERT_NE(symbol, nullptr);
    EXPECT_STREQ(symbol->name, "later");
    EXPECT_EQ(symbol->flags, SYM_UNDEFINED);
    EXPECT_EQ(symbol->value, 0);
    EXPECT_EQ(symbol->definition_line, 0);
    EXPECT_EQ(symbol->element_count, 0);
    EXPECT_EQ(symbol->first_reference_line, 0);
    EXPECT_EQ(lookup("later"), symbol);
    EXPECT_EQ(Col_Ptr, Line.begin() + 2);
}

TEST_F(SymbolTable, FirstReferenceAheadOfADefinitionIsNoted) {
    Line_no = 7;
    Symbol *symbol = refsym("later");
    EXPECT_EQ(symbol->flags, SYM_UNDEFINED | SYM_FORWARD);
    EXPECT_EQ(symbol->first_reference_line, 7);
    EXPECT_EQ(forwardref, 1);
    forwardref = 0;
    Line_no = 9;
    EXPECT_EQ(refsym("later"), symbol);
    EXPECT_EQ(symbol->first_reference_line, 7);
    EXPECT_EQ(forwardref, 0);
}

TEST_F(SymbolTable, ReferenceToAnyOtherNameIsNotNoted) {
    put("label");
    put("tested", 0, SYM_UNDEFINED | SYM_CONDITIONAL);
    put("twice", 0, SYM_MULTIPLE);
    Line_no = 7;
    for (const char *name : {"label", "tested", "twice"}) {
        EXPECT_EQ(refsym(name)->first_reference_line, 0) << name;
        EXPECT_FALSE(refsym(name)->has(SYM_FORWARD)) << name;
    }
    EXPECT_EQ(forwardref, 0);
}

TEST_F(SymbolTable, FinalPassNotesAReferenceToALaterLine) {
    putsym("label", 0, 5, SYM_DEFINED, 0, nullptr, 0);
    enter_final_pass();
    realline = 5;
    refsym("label");
    EXPECT_EQ(forwardref, 0);
    realline = 4;
    refsym("label");
    EXPECT_EQ(forwardref, 1);
    EXPECT_EQ(getsym("label")->flags, SYM_DEFINED);
}

TEST_F(SymbolTable, FinalPassDoesNotMarkUndefinedNames) {
    put("later", 0, SYM_UNDEFINED)->definition_line = 0;
    enter_final_pass();
    Line_no = 3;
    EXPECT_EQ(refsym("later")->flags, SYM_UNDEFINED);
    EXPECT_EQ(getsym("later")->first_reference_line, 0);
}

// ---- Definitions ----

TEST_F(SymbolTable, DefinitionEntersItsName) {
    realline = 7;
    defsym("loop", 0x123456789LL, 1);
    ASSERT_NE(getsym("loop"), nullptr);
    EXPECT_EQ(getsym("loop")->value, 0x23456789);
    EXPECT_EQ(getsym("loop")->flags, SYM_DEFINED);
    EXPECT_EQ(getsym("loop")->definition_line, 7);
}

TEST_F(SymbolTable, DefinitionOfAReferredNameKeepsItsMark) {
    Line_no = 3;
    refsym("later");
    realline = 7;
    defsym("later", 5, 1);
    EXPECT_EQ(getsym("later")->flags, SYM_DEFINED | SYM_FORWARD);
    EXPECT_EQ(getsym("later")->value, 5);
    EXPECT_EQ(getsym("later")->definition_line, 7);
    EXPECT_EQ(getsym("later")->first_reference_line, 3);
}

TEST_F(SymbolTable, SecondDefinitionReplacesAllFlags) {
    put("label", 5, SYM_DEFINED | SYM_FORWARD | SYM_ABSOLUTE);
    defsym("label", 6, 1);
    EXPECT_EQ(getsym("label")->flags, SYM_MULTIPLE);
    EXPECT_EQ(getsym("label")->value, 5);
    defsym("label", 7, 1);
    EXPECT_EQ(getsym("label")->flags, SYM_MULTIPLE);
    EXPECT_EQ(Line_Done, 0);
    put("external", 0, SYM_EXTERNAL);
    defsym("external", 6, 1);
    EXPECT_EQ(getsym("external")->flags, SYM_MULTIPLE);
}

TEST_F(SymbolTable, NameWithNeitherDefinitionNorReferenceCannotBeDefined) {
    put("odd", 5, SYM_CONDITIONAL);
    defsym("odd", 6, 1);
    EXPECT_EQ(getsym("odd")->flags, SYM_CONDITIONAL);
    EXPECT_EQ(getsym("odd")->value, 5);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(SymbolTable, NamesWithAnOpenBitCanBeDefined) {
    for (const std::uint32_t bit : {SYM_OPEN_8, SYM_OPEN_100, SYM_OPEN_200}) {
        const std::string name = "open" + std::to_string(bit);
        put(name, 5, bit);
        realline = 9;
        defsym(name, 6, 1);
        EXPECT_EQ(getsym(name)->flags, bit | SYM_DEFINED) << bit;
        EXPECT_EQ(getsym(name)->value, 6) << bit;
        EXPECT_EQ(getsym(name)->definition_line, 9) << bit;
    }
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(SymbolTable, FinalPassChangesNoValue) {
    put("label", 5);
    begin_reports();
    defsym("label", 5, 1);
    EXPECT_EQ(take_output(), "");
    defsym("label", 6, 1);
    EXPECT_EQ(getsym("label")->value, 5);
    EXPECT_EQ(take_output(), error("Phase error between passes"));
    EXPECT_EQ(Phase_Error_Written, 1);
    EXPECT_EQ(Line_Done, 1);
}

TEST_F(SymbolTable, FinalPassComparesSignExtended) {
    put("label", -1);
    begin_reports();
    defsym("label", -1, 1);
    EXPECT_EQ(take_output(), "");
    defsym("label", 0xFFFFFFFFLL, 1);
    EXPECT_EQ(take_output(), error("Phase error between passes"));
}

TEST_F(SymbolTable, SomeNamesMayMove) {
    put("constant", 5, SYM_DEFINED | SYM_ABSOLUTE);
    put("marked", 5, SYM_DEFINED | SYM_VALUE_MARK);
    put("label", 5);
    begin_reports();
    defsym("constant", 6, 1);
    defsym("marked", 6, 1);
    defsym("label", 6, 0);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(phase_error, 0);
}

TEST_F(SymbolTable, FinalPassReportsMultipleDefinitions) {
    put("label", 5, SYM_MULTIPLE);
    begin_reports();
    defsym("label", 6, 1);
    EXPECT_EQ(take_output(), error("Multiple definition"));
    EXPECT_EQ(phase_error, 0);
}

TEST_F(SymbolTable, FinalPassNotesTheLineOfANameThatHasNone) {
    Symbol *symbol = put("label", 5);
    symbol->definition_line = 0;
    begin_reports();
    realline = 8;
    defsym("label", 5, 1);
    EXPECT_EQ(symbol->definition_line, 8);
    realline = 9;
    defsym("label", 5, 1);
    EXPECT_EQ(symbol->definition_line, 8);
}

// ---- Names for debuggers ----

TEST_F(SymbolTable, DebugNameIsTheTextUpToAColon) {
    addstabsym("main:F1", 0x20);
    addstabsym("plain", 0x30);
    ASSERT_NE(getsym("main"), nullptr);
    EXPECT_EQ(getsym("main")->value, 0x20);
    EXPECT_EQ(getsym("main")->flags, SYM_DEBUG);
    ASSERT_NE(getsym("plain"), nullptr);
    EXPECT_EQ(getsym("plain")->flags, 0xFFFFFF80U);
}

TEST_F(SymbolTable, DebugNamesAreNotEnteredInTheFinalPass) {
    enter_final_pass();
    addstabsym("main:F1", 0x20);
    EXPECT_EQ(getsym("main"), nullptr);
}

TEST_F(SymbolTable, TypesOfSymbolsWriteNothing) {
    put("data")->element_count = 3;
    std::string stream;
    symdebugwrite(stream);
    EXPECT_EQ(stream, "");
}

// A debug name bears every high bit, so it is made undefined as well.
TEST_F(SymbolTable, ConditionalAndDebugNamesAreUndefinedAheadOfTheFinalPass) {
    put("cond", 5, SYM_DEFINED | SYM_CONDITIONAL | SYM_MULTIPLE);
    put("label", 5, SYM_DEFINED | SYM_FORWARD);
    addstabsym("main:F1", 0x20);
    prep_undefine();
    EXPECT_EQ(getsym("cond")->flags, SYM_UNDEFINED | SYM_CONDITIONAL);
    EXPECT_EQ(getsym("cond")->value, 5);
    EXPECT_EQ(getsym("label")->flags, SYM_DEFINED | SYM_FORWARD);
    EXPECT_EQ(getsym("main")->flags, SYM_UNDEFINED | SYM_CONDITIONAL);
    EXPECT_EQ(getsym("main")->value, 0x20);
}

// ---- The printed table ----

TEST_F(SymbolTable, TableIsPrintedByHashAndCreation) {
    put("BA", 1);
    put("z", 0x12345);
    put("AB", 2);
    put("a", -1);
    lookup("later");
    put("n", 0, SYM_DEBUG);
    symwrite(standard_output);
    // z 122, a 97, n 110, AB and BA 131, later 536 or 24 modulo 256.
    EXPECT_EQ(take_output(), "\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n"
                             "\t0000\tlater\n"
                             "\tFFFFFFFF\ta\n"
                             "\t0000\tn\n"
                             "\t12345\tz\n"
                             "\t0001\tBA\n"
                             "\t0002\tAB\n");
}

// Quirk (table-heads): the header of the listing has three blanks less.
TEST_F(SymbolTable, TableInTheListingHasItsOwnHeader) {
    open_output(listfile, "prog.lst");
    O_list = 1;
    put("a", 0x20);
    symwrite(listfile);
    listfile.flush();
    EXPECT_EQ(read_text("prog.lst"), "\n--\tSYMBOL TABLE:\n--\tVALUE\tSYMBOL \n\t0020\ta\n");
    EXPECT_EQ(take_output(), "");
}

TEST_F(SymbolTable, EmptyTableHasNoHeader) {
    symwrite(standard_output);
    EXPECT_EQ(take_output(), "");
}

} // namespace
