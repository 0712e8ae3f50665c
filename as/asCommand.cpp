// Arguments are gone through once, from left to right, and carried out as they are met: later ones
// win, and the first that is no option is the source, which ends the reading. A switch is a whole
// argument, so that "-S1" is not "-S" with something joined to it; what no table has may still be
// an option with a value. A mistake is reported and passed over: it alone keeps no source from
// being assembled.
#include "as/asCommand.h"

#include "as/asSource.h"
#include "as/asStreams.h"
#include "symtab/symtab.h"
#include "util/text.h"

#include <algorithm>

std::string OutputTitle;
std::string DbgSrcDir;

namespace {

// Definition line of names given with -D.
constexpr int kDefinitionLine = 1;

void report_unknown(const char *argument) {
    standard_output.put({kProgramName, ": Unknown option '", argument + 1, "' is ignored.\n"});
}

// The value is 0, since the option has no place for one. A name given twice is marked as defined
// more than once, as by two lines of a source.
void define_symbol(const char *name) {
    if (Symbol *symbol = getsym(name); symbol != nullptr) {
        symbol->flags |= SYM_MULTIPLE;
    } else {
        (void)putsym(name, 0, kDefinitionLine, SYM_DEFINED, kNameKind, nullptr, kNoData);
    }
}

void set_source_directory(const char *directory) {
    copyquotedopt(DbgSrcDir, directory);
    O_aliased_input = 1;
}

void set_output_title(const char *name) {
    copyquotedopt(OutputTitle, name);
    O_oflag = 1;
}

// The row of that text, or null.
template <typename Table> auto find_row(const Table &table, std::string_view text) {
    const auto *row = std::find_if(table.begin(), table.end(),
                                   [=](const auto &each) { return each.text == text; });
    return row != table.end() ? row : nullptr;
}

void set_compatibility(const char *name) {
    if (const CompatibilityWord *word = find_row(kCompatibilityWords, name); word != nullptr) {
        *word->flag = 0;
    } else {
        standard_output.put(
            {kProgramName, ": Unknown compatibility option -C '", name, "' is ignored.\n"});
    }
}

bool take_switch(std::string_view argument) {
    if (const Switch *option = find_row(kSwitches, argument); option != nullptr) {
        *option->flag = 1;
        return true;
    }
    if (const RecordOption *option = find_row(kRecordOptions, argument); option != nullptr) {
        record_type = option->type;
        return true;
    }
    return false;
}

// An option by its letter. With the options that take a joined value in quotes only, other joined
// text makes an unknown option.
const ValueOption *find_value_option(const char *argument) {
    for (const ValueOption &option : kValueOptions) {
        if (argument[1] == option.letter &&
            (argument[2] == '\0' || argument[2] == '"' || !option.joined_in_quotes_only)) {
            return &option;
        }
    }
    return nullptr;
}

} // namespace

const std::array<ValueOption, 5> kValueOptions = {{
    {'d', true, set_source_directory},
    {'o', true, set_output_title},
    {'D', false, define_symbol},
    {'I', false, push_include},
    {'C', false, set_compatibility},
}};

void command_new_run() {
    OutputTitle.clear();
    DbgSrcDir.clear();
}

const char *read_command_line(int argc, const char *const *argv) {
    for (int i = 1; i < argc; ++i) {
        const char *argument = argv[i];
        if (*argument != '-') {
            return argument;
        }
        if (take_switch(argument)) {
            continue;
        }
        const ValueOption *option = find_value_option(argument);
        if (option != nullptr && argument[2] != '\0') {
            option->carry_out(argument + 2);
        } else if (option != nullptr && i + 1 < argc) {
            option->carry_out(argv[++i]);
        } else {
            report_unknown(argument);
        }
    }
    return nullptr;
}

// Quirk (usage-text): it leaves out -A, spells "sensivity", has a blank after one line, and names
// "notrad", which is not accepted.
void print_usage() {
    put_banner(standard_output);
    standard_output.put({"\n", kNotice, "\n\n", kProgramName,
                         " creates a S-record format file named 'file.s19'\n",
                         "from an assembly source file e.g. \"file", kSourceExtension, "\"\n",
                         "Usage: ", kProgramName, " [ options ] file\n"});
    standard_output.put(
        {"options: -L Create list file \"file.lst\"\n", "         -w Print warnings\n",
         "         -S Print symbol table\n",
         "         -g Generate source level debug information\n",
         "         -o [FILENAME] Rename output file\n",
         "         -d [DIRECTORY] Set directory for source (debugger info)\n",
         "         -D SYMBOL Enter 'SYMBOL' as defined in symbol table\n",
         "         -I [FILENAME] Include file\n", "         -S1 Force generation of S1-records\n",
         "         -S2 Force generation of S2-records\n",
         "         -S3 Force generation of S3-records\n", "compatibility options: -C option\n",
         "         nocase - Turn case sensivity OFF\n",
         "         nopure - Turn recognition of 'pure' assembler directives OFF \n",
         "         notrad - Turn recognition of 'traditional' assembler directives OFF\n"});
}
