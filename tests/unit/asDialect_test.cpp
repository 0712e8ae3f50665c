// Directives of other dialects, by their numbers.
#include "as/asDiag.h"
#include "as/asDialect.h"
#include "as/asLabel.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "target/location.h"
#include "target/operand.h"
#include "tests/unit/support.h"

namespace {

class DialectDirectives : public ReportTest {
  protected:
    // Carries out a directive by its number on an operand.
    static int directive(std::uint32_t token, const std::string &operand) {
        begin_line(operand);
        return do_directive(token);
    }
};

TEST_F(DialectDirectives, IncludeOpensTheFileForTheNextLine) {
    write_file("part.szirpa", "p1\n");
    SetLastLabel("DATA", 1);
    newuse = 0;
    begin_line("part.szirpa ; note\n");
    pending_listLC = 1;
    EXPECT_EQ(do_directive(2), 2);
    EXPECT_EQ(pending_listLC, 0);
    EXPECT_EQ(last_seen_label, "");
    EXPECT_EQ(newuse, 1);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "part.szirpa");
    ASSERT_EQ(as_read_line(), 1);
    EXPECT_EQ(Line.view(), "p1\n");
}

TEST_F(DialectDirectives, IncludeTakesAQuotedNameWithBlanks) {
    write_file("my file;1", "p1\n");
    EXPECT_EQ(directive(2, "\"my file;1\" ; note\n"), 2);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "my file;1");
}

TEST_F(DialectDirectives, IncludeEndsAnUnquotedNameAtASemicolon) {
    write_file("part", "p1\n");
    EXPECT_EQ(directive(2, "part;x\n"), 2);
    EXPECT_EQ(getCurrentFileInfo(-1)->name, "part");
}

TEST_F(DialectDirectives, IncludeOfAMissingFileEndsTheRun) {
    Line_no = 4;
    EXPECT_EQ(end_status([] { directive(2, "lost.szirpa\n"); }), 1);
    EXPECT_EQ(take_output(),
              directory + "/prog.szirpa (4)Fatal error: File 'lost.szirpa' not found\n");
    EXPECT_EQ(end_status([] { directive(2, "; note\n"); }), 1);
    EXPECT_EQ(take_output(), directory + "/prog.szirpa (4)Fatal error: File '' not found\n");
}

TEST_F(DialectDirectives, IncludeOfARecursiveFileIsIgnored) {
    EXPECT_EQ(directive(2, directory + "/prog.szirpa\n"), 2);
    EXPECT_EQ(source_stack_ptr, 0);
}

TEST_F(DialectDirectives, OldListingWordsSwitchTheListingIfThereIsOne) {
    begin_reports();
    O_list = 1;
    listing_on = 0;
    EXPECT_EQ(directive(3, "\n"), 1);
    EXPECT_EQ(listing_on, 1);
    EXPECT_EQ(directive(5, "\n"), 1);
    EXPECT_EQ(listing_on, 0);
    O_list = 0;
    EXPECT_EQ(directive(3, "\n"), 1);
    EXPECT_EQ(listing_on, 0);
    listing_on = 1;
    EXPECT_EQ(directive(5, "\n"), 1);
    EXPECT_EQ(listing_on, 1);
    const std::string list = warning("Old fashioned directive: 'LIST', use 'OPTION LIST' instead");
    const std::string nolist =
        warning("Old fashioned directive: 'NOLIST', use 'OPTION NOLIST' instead");
    EXPECT_EQ(take_output(), list + nolist + list + nolist);
    EXPECT_EQ(Line_Done, 0);
}

TEST_F(DialectDirectives, OldListingWordsSwitchTheListingOfSkippedLinesInAnyCase) {
    begin_reports();
    O_list = 0;
    EXPECT_EQ(directive(4, "\n"), 1);
    EXPECT_EQ(uncond_listing_on, 1);
    EXPECT_EQ(take_output(),
              warning("Old fashioned directive: 'LISTCOND', use 'OPTION LISTCOND' instead"));
    EXPECT_EQ(directive(6, "\n"), 1);
    EXPECT_EQ(uncond_listing_on, 0);
    EXPECT_EQ(take_output(),
              warning("Old fashioned directive: 'NOLISTCOND', use 'OPTION NOLISTCOND' instead"));
}

TEST_F(DialectDirectives, UnimplementedDirectivesForgetTheLabel) {
    begin_reports();
    for (const std::uint32_t token : {24U, 25U, 26U, 28U, 30U, 31U, 32U, 33U, 34U, 36U, 37U}) {
        SetLastLabel("DATA", 1);
        EXPECT_EQ(directive(token, "x\n"), -1) << token;
        EXPECT_EQ(take_output(), warning("Unimplemented assembler directive, ignored")) << token;
        EXPECT_EQ(last_seen_label, "") << token;
        EXPECT_EQ(Line_Done, 0) << token;
    }
}

TEST_F(DialectDirectives, OldImportAndExportWordsAreOldFashionedAndUnimplemented) {
    begin_reports();
    SetLastLabel("DATA", 1);
    EXPECT_EQ(directive(27, "x\n"), -1);
    EXPECT_EQ(take_output(),
              warning("Old fashioned directive: 'DEFINE or XDEF', use 'EXPORT' instead") +
                  warning("Unimplemented assembler directive, ignored"));
    EXPECT_EQ(last_seen_label, "");
    SetLastLabel("DATA", 1);
    EXPECT_EQ(directive(29, "x\n"), -1);
    EXPECT_EQ(take_output(),
              warning("Old fashioned directive: 'EXTERN or XREF', use 'IMPORT' instead") +
                  warning("Unimplemented assembler directive, ignored"));
    EXPECT_EQ(last_seen_label, "");
    EXPECT_EQ(Warnings, 4);
}

TEST_F(DialectDirectives, UnimplementedPageWordsKeepTheLabel) {
    begin_reports();
    for (const std::uint32_t token : {52U, 54U, 55U, 56U, 57U, 58U}) {
        SetLastLabel("DATA", 1);
        EXPECT_EQ(directive(token, "x\n"), -1) << token;
        EXPECT_EQ(take_output(), warning("Unimplemented assembler directive, ignored")) << token;
        EXPECT_EQ(last_seen_label, "DATA") << token;
    }
}

TEST_F(DialectDirectives, OtherNumbersDoNothingSilently) {
    begin_reports();
    SetLastLabel("DATA", 1);
    for (const std::uint32_t token :
         {1U, 22U, 23U, 35U, 38U, 40U, 41U, 43U, 59U, 1000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(directive(token, "1\n"), -1) << token;
    }
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(last_seen_label, "DATA");
    EXPECT_EQ(LC, 0U);
}

TEST_F(DialectDirectives, DirectPageIsAnExpressionOfOneByte) {
    begin_reports();
    EXPECT_EQ(directive(53, "$20+1 rest\n"), 2);
    EXPECT_EQ(MC6809_anticipated_dp, 0x21U);
    EXPECT_EQ(directive(53, "255\n"), 2);
    EXPECT_EQ(MC6809_anticipated_dp, 255U);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(directive(53, "256\n"), -1);
    EXPECT_EQ(take_output(), error("DPR register is 8 bits"));
    EXPECT_EQ(MC6809_anticipated_dp, 255U);
}

TEST_F(DialectDirectives, DirectPageBeginsWithAClearOperand) {
    opnd1.pc_bias = 1;
    opnd1.symbol_count = 3;
    EXPECT_EQ(directive(53, "7\n"), 2);
    EXPECT_EQ(opnd1.pc_bias, 0);
    EXPECT_EQ(opnd1.symbol_count, 0);
}

TEST_F(DialectDirectives, DirectPageFailsWithItsExpression) {
    begin_reports();
    EXPECT_EQ(directive(53, "+1\n"), -1);
    EXPECT_EQ(take_output(), error("Operand expected, Position[0]"));
}

TEST_F(DialectDirectives, RedefinableFormNeedsALabelToo) {
    begin_reports();
    EXPECT_EQ(directive(9, "5\n"), -1);
    EXPECT_EQ(take_output(), error("No label for \"equ\""));
}

TEST_F(DialectDirectives, DirectPageNeedsABlankAfterIt) {
    begin_reports();
    EXPECT_EQ(directive(53, "7,8\n"), -1);
    EXPECT_EQ(take_output(), error("Bad constant delimiter"));
    EXPECT_EQ(directive(53, "999;\n"), -1);
    EXPECT_EQ(take_output(), error("Bad constant delimiter"));
    EXPECT_EQ(MC6809_anticipated_dp, 0U);
}

TEST_F(DialectDirectives, NewPassForgetsTheDirectPage) {
    directive(53, "7\n");
    dialect_new_pass();
    EXPECT_EQ(MC6809_anticipated_dp, 0U);
}

} // namespace
