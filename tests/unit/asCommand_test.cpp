// The command line: every option in every form, and the usage text.
#include "as/asCommand.h"
#include "as/asOptions.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "tests/unit/support.h"

#include <initializer_list>
#include <vector>

namespace {

class CommandLine : public RunTest {
  protected:
    // Reads the arguments behind the program's own name.
    static const char *read(std::initializer_list<const char *> arguments) {
        std::vector<const char *> argv{"./bin/HXzirpa"};
        argv.insert(argv.end(), arguments);
        const int argc = static_cast<int>(argv.size());
        argv.push_back(nullptr);
        return read_command_line(argc, argv.data());
    }

    static std::string unknown(const std::string &option) {
        return "HXzirpa: Unknown option '" + option + "' is ignored.\n";
    }
};

TEST_F(CommandLine, FirstArgumentThatIsNoOptionIsTheSource) {
    EXPECT_STREQ(read({"a.szirpa", "-L", "b.szirpa"}), "a.szirpa");
    EXPECT_EQ(O_list, 0);
    EXPECT_STREQ(read({"-L", "a.szirpa"}), "a.szirpa");
    EXPECT_EQ(O_list, 1);
    EXPECT_STREQ(read({""}), "");
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, OptionsAloneNameNoSource) {
    EXPECT_EQ(read({"-L", "-w"}), nullptr);
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, FlagsAreSetByTheirExactOptions) {
    read({"-L", "x"});
    EXPECT_EQ(O_list, 1);
    EXPECT_EQ(O_symtab, 0);
    read({"-S", "x"});
    EXPECT_EQ(O_symtab, 1);
    EXPECT_EQ(record_type, 2);
    read({"-A", "x"});
    EXPECT_EQ(O_cout, 1);
    read({"-g", "x"});
    EXPECT_EQ(O_symdebug, 1);
    read({"-w", "x"});
    EXPECT_EQ(O_warn, 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, RecordTypesAreSetByTheirOptions) {
    read({"-S1", "x"});
    EXPECT_EQ(record_type, 1);
    read({"-S3", "x"});
    EXPECT_EQ(record_type, 3);
    read({"-S2", "x"});
    EXPECT_EQ(record_type, 2);
    EXPECT_EQ(O_symtab, 0);
}

TEST_F(CommandLine, UnknownOptionsAreReportedAndIgnored) {
    for (const char *option : {"-x", "-l", "-LL", "-S4", "-S0", "-gg", "-W", "-ofoo", "-dfoo",
                               "--help", "-", "-o foo", "-a"}) {
        EXPECT_STREQ(read({option, "x"}), "x") << option;
        EXPECT_EQ(take_output(), unknown(option + 1)) << option;
    }
    EXPECT_EQ(O_list, 0);
    EXPECT_EQ(O_oflag, 0);
    EXPECT_EQ(O_aliased_input, 0);
}

TEST_F(CommandLine, OutputNameIsTheNextArgument) {
    EXPECT_STREQ(read({"-o", "out/prog.s19", "x"}), "x");
    EXPECT_EQ(OutputTitle, "out/prog.s19");
    EXPECT_EQ(O_oflag, 1);
    read({"-o", "my prog", "x"});
    EXPECT_EQ(OutputTitle, "my");
    read({"-o", "\"my prog\"", "x"});
    EXPECT_EQ(OutputTitle, "my prog");
    read({"-o", "-L", "x"});
    EXPECT_EQ(OutputTitle, "-L");
    EXPECT_EQ(O_list, 0);
}

TEST_F(CommandLine, OutputNameIsJoinedOnlyInQuotes) {
    EXPECT_STREQ(read({"-o\"my prog\"", "x"}), "x");
    EXPECT_EQ(OutputTitle, "my prog");
    EXPECT_EQ(O_oflag, 1);
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, SourceDirectoryHasTheSameForms) {
    EXPECT_STREQ(read({"-d", "src", "x"}), "x");
    EXPECT_EQ(DbgSrcDir, "src");
    EXPECT_EQ(O_aliased_input, 1);
    O_aliased_input = 0;
    EXPECT_STREQ(read({"-d\"my src\"", "x"}), "x");
    EXPECT_EQ(DbgSrcDir, "my src");
    EXPECT_EQ(O_aliased_input, 1);
    EXPECT_EQ(O_oflag, 0);
}

TEST_F(CommandLine, NameIsDefinedJoinedOrApart) {
    EXPECT_STREQ(read({"-D", "ONE", "-DTWO", "x"}), "x");
    for (const char *name : {"ONE", "TWO"}) {
        const Symbol *symbol = getsym(name);
        ASSERT_NE(symbol, nullptr) << name;
        EXPECT_EQ(symbol->value, 0);
        EXPECT_EQ(symbol->definition_line, 1);
        EXPECT_EQ(symbol->flags, SYM_DEFINED);
        EXPECT_EQ(symbol->element_count, -1);
        EXPECT_EQ(symbol->file, -1);
    }
}

TEST_F(CommandLine, NameDefinedTwiceIsMarked) {
    read({"-DONE", "-D", "ONE", "x"});
    EXPECT_EQ(getsym("ONE")->flags, SYM_DEFINED | SYM_MULTIPLE);
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, DefinedNameEndsAtABlank) {
    read({"-D", "ONE TWO", "x"});
    ASSERT_NE(getsym("ONE"), nullptr);
    EXPECT_STREQ(getsym("ONE")->name, "ONE");
}

TEST_F(CommandLine, DefinedNameIsStoredWhole) {
    read({"-DA=5", "x"});
    EXPECT_EQ(getsym("A"), nullptr);
    link_chains();
    ASSERT_EQ(symheads['A'].size(), 1U);
    EXPECT_STREQ(symheads['A'].front()->name, "A=5");
}

TEST_F(CommandLine, DefinedNameFollowsTheCaseOptionAheadOfIt) {
    read({"-Done", "-C", "nocase", "-Dtwo", "x"});
    EXPECT_STREQ(getsym("TWO")->name, "TWO");
    EXPECT_EQ(getsym("ONE"), nullptr);
}

TEST_F(CommandLine, IncludeDirectoryIsJoinedOrApart) {
    read({"-I", "one", "-Itwo", "-I\"my dir\"", "-I", "", "x"});
    EXPECT_EQ(include_stack, (std::vector<std::string>{"one", "two", "my dir"}));
    EXPECT_EQ(take_output(), "");
}

TEST_F(CommandLine, CompatibilityWordsAreJoinedOrApart) {
    O_directive_style_native = 1;
    read({"-C", "nopure", "x"});
    EXPECT_EQ(O_directive_style_pure, 0);
    EXPECT_EQ(O_directive_style_native, 1);
    read({"-Cnonative", "x"});
    EXPECT_EQ(O_directive_style_native, 0);
    EXPECT_EQ(O_symbol_case_sensitive, 1);
    read({"-Cnocase", "x"});
    EXPECT_EQ(O_symbol_case_sensitive, 0);
    EXPECT_EQ(take_output(), "");
}

// Quirk (usage-text): it advertises "notrad", which is not accepted.
TEST_F(CommandLine, OtherCompatibilityWordsAreReportedAndIgnored) {
    EXPECT_STREQ(read({"-C", "notrad", "-CNOCASE", "-C", "nocas", "x"}), "x");
    EXPECT_EQ(take_output(), "HXzirpa: Unknown compatibility option -C 'notrad' is ignored.\n"
                             "HXzirpa: Unknown compatibility option -C 'NOCASE' is ignored.\n"
                             "HXzirpa: Unknown compatibility option -C 'nocas' is ignored.\n");
    EXPECT_EQ(O_symbol_case_sensitive, 1);
}

TEST_F(CommandLine, OptionThatLacksItsArgumentIsUnknown) {
    for (const char *option : {"-o", "-d", "-D", "-I", "-C"}) {
        EXPECT_EQ(read({option}), nullptr) << option;
        EXPECT_EQ(take_output(), unknown(option + 1)) << option;
    }
    EXPECT_EQ(O_oflag, 0);
    EXPECT_EQ(O_aliased_input, 0);
}

TEST_F(CommandLine, NewRunForgetsTheNames) {
    read({"-o", "out", "-d", "src", "x"});
    command_new_run();
    EXPECT_EQ(OutputTitle, "");
    EXPECT_EQ(DbgSrcDir, "");
}

// Quirk (usage-text): the text spells and advertises as it always has.
TEST_F(CommandLine, UsageTextIsWhole) {
    print_usage();
    EXPECT_EQ(take_output(),
              "HXzirpa - ZIRPA Absolute crossassembler, Version 1.3\n"
              "Free software under the MIT License.\n"
              "\n"
              "HXzirpa creates a S-record format file named 'file.s19'\n"
              "from an assembly source file e.g. \"file.szirpa\"\n"
              "Usage: HXzirpa [ options ] file\n"
              "options: -L Create list file \"file.lst\"\n"
              "         -w Print warnings\n"
              "         -S Print symbol table\n"
              "         -g Generate source level debug information\n"
              "         -o [FILENAME] Rename output file\n"
              "         -d [DIRECTORY] Set directory for source (debugger info)\n"
              "         -D SYMBOL Enter 'SYMBOL' as defined in symbol table\n"
              "         -I [FILENAME] Include file\n"
              "         -S1 Force generation of S1-records\n"
              "         -S2 Force generation of S2-records\n"
              "         -S3 Force generation of S3-records\n"
              "compatibility options: -C option\n"
              "         nocase - Turn case sensivity OFF\n"
              "         nopure - Turn recognition of 'pure' assembler directives OFF \n"
              "         notrad - Turn recognition of 'traditional' assembler directives OFF\n");
}

} // namespace
