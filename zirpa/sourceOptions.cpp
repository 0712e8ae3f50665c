// Options of the commands that assemble: each is told to the parser and fills in a request.
#include "zirpa/sourceCommands.h"

#include "zirpa/chapters.h"
#include "zirpa/suggest.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace {

// Stands for all identifiers.
constexpr const char *kAllWarnings = "all";

// ---- Options ----

const std::map<std::string, Format> kFormats = {
    {"text", Format::kText}, {"json", Format::kJson}, {"sarif", Format::kSarif}};
const std::map<std::string, Colour> kColours = {
    {"auto", Colour::kAuto}, {"always", Colour::kAlways}, {"never", Colour::kNever}};

template <typename Words> std::string listed(const Words &words) {
    std::string text;
    for (const auto &word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

CLI::Validator one_of(const std::vector<std::string> &words) {
    const auto check = [words](const std::string &given) {
        return std::find(words.begin(), words.end(), given) != words.end()
                   ? std::string()
                   : given + " is none of " + listed(words);
    };
    return {check, ""};
}

template <typename Value>
void add_choice(CLI::App &command, const std::string &name, Value &value,
                const std::map<std::string, Value> &words, const std::string &text,
                const std::string &type) {
    std::vector<std::string> names;
    std::transform(words.begin(), words.end(), std::back_inserter(names),
                   [](const auto &row) { return row.first; });
    command
        .add_option_function<std::string>(
            name, [&](const std::string &word) { value = words.at(word); }, text)
        ->check(one_of(names))
        ->option_text(type);
}

// Options that the assembler has too, under the short name. Their values stay with the parser,
// which knows their order.
CLI::Option *add_shared_flag(CLI::App &command, const std::string &names, const std::string &text) {
    return command.add_flag(names, text)->option_text(" ");
}

CLI::Option *add_shared_option(CLI::App &command, const std::string &names, const std::string &type,
                               const std::string &text) {
    return command.add_option(names)->description(text)->option_text(type)->expected(1)->take_all();
}

// What changes the meaning of a source.
void add_language_options(CLI::App &command) {
    add_shared_option(command, "-D,--define", "NAME",
                      "Define NAME, as 0, for #ifdef and expressions");
    add_shared_option(command, "-C,--compatibility", "WORD",
                      "nocase: case does not count in names; nopure: no conditional words")
        ->check(one_of({"nocase", "nopure", "nonative"}));
}

// An identifier that is not known would do nothing in silence.
std::string refuse_unknown_identifier(const std::string &id) {
    const std::vector<std::string> known = all_identifiers();
    if (id == kAllWarnings || std::find(known.begin(), known.end(), id) != known.end()) {
        return {};
    }
    const std::string hint = did_you_mean(nearest(id, known));
    return "no diagnostic is called " + id + (hint.empty() ? "" : ": " + hint);
}

void add_identifiers(CLI::App &command, const std::string &name, std::vector<std::string> &ids,
                     const std::string &type, const std::string &text) {
    command.add_option(name, ids, text)
        ->option_text(type)
        ->allow_extra_args(false)
        ->check(CLI::Validator(refuse_unknown_identifier, ""));
}

void add_warning_options(CLI::App &command, SourceWords &words) {
    add_identifiers(command, "--allow", words.allowed, "ID", "Don't show warnings of that kind");
    add_identifiers(command, "--deny", words.denied, "ID|all",
                    "Make errors of warnings of that kind, or of all");
    add_identifiers(command, "--warn", words.wanted, "ID",
                    "Show warnings that are not shown otherwise");
    command.add_flag("--strict", words.common().warnings.is_strict, "Fail after warnings too");
}

void add_display_options(CLI::App &command, SourceWords &words) {
    add_choice(command, "--color", words.common().colour, kColours,
               "Colours: auto for a terminal, always or never", "WHEN");
    command.add_flag("-q,--quiet", words.common().is_quiet, "Show errors alone, and no summary");
    command
        .add_option("--stdin-name", words.common().stdin_name,
                    "What a source from standard input is called")
        ->option_text("NAME");
}

void add_output_options(CLI::App &command, SourceWords &words) {
    add_shared_option(command, "-o,--output", "FILE", "Name of the S-record file");
    add_shared_flag(command, "-L,--listing", "Write a listing");
    add_shared_flag(command, "-A,--array", "Write a C array, with --listing");
    add_shared_flag(command, "-S,--symbols",
                    "Print the symbol table, or write it into the listing");
    add_shared_flag(command, "-g,--debug", "Add debug records to the S-records");
    add_shared_flag(command, "-w,--list-warnings",
                    "Write warnings of the assembler into the listing too");
    command.add_option("--depfile", words.build.depfile, "Write dependencies for make and ninja")
        ->option_text("FILE");
    command
        .add_flag("--stdout", words.build.to_stdout,
                  "Print the S-records; no other output is written")
        ->option_text(" ");
}

// What the assembler accepts and nothing depends on.
void add_idle_options(CLI::App &command) {
    add_shared_option(command, "-I,--include", "DIRECTORY", "Accepted; no source includes another");
    add_shared_option(command, "-d,--debug-directory", "DIRECTORY", "Accepted; no record shows it");
    add_shared_option(command, "--address-width", "1|2|3",
                      "Accepted, as -S1, -S2 and -S3 are; addresses choose the record type")
        ->check(one_of({"1", "2", "3"}));
}

// ---- From words to requests ----

// The options that the assembler has too, in the order in which they are given: a name that is
// defined before case ceases to count keeps its case.
std::vector<std::string> assembler_options(const CLI::App &command) {
    std::vector<std::string> options;
    std::map<const CLI::Option *, std::size_t> taken;
    for (const CLI::Option *option : command.parse_order()) {
        const bool is_width = option->check_name("--address-width");
        if (option->get_snames().empty() && !is_width) {
            continue;
        }
        const std::string &value = option->results()[taken[option]++];
        if (is_width) {
            options.push_back("-S" + value);
        } else if (!option->check_name("-q")) {
            options.push_back("-" + option->get_snames().front());
            if (option->get_expected_min() > 0) {
                options.push_back(value);
            }
        }
    }
    return options;
}

void complete(SourceWords &words, const CLI::App &command) {
    Request &request = words.common();
    request.options = assembler_options(command);
    request.warnings.allowed = {words.allowed.begin(), words.allowed.end()};
    request.warnings.denied = {words.denied.begin(), words.denied.end()};
    request.warnings.wanted = {words.wanted.begin(), words.wanted.end()};
    request.warnings.all_denied = request.warnings.denied.erase(kAllWarnings) > 0;
}

} // namespace

void add_build(CLI::App &app, SourceWords &words, int &status) {
    CLI::App *command = app.add_subcommand("build", "Assemble FILE and write its outputs");
    command->add_option("FILE", words.build.source, "The source, or - for standard input")
        ->required()
        ->option_text(" ");
    add_output_options(*command, words);
    add_language_options(*command);
    add_idle_options(*command);
    add_warning_options(*command, words);
    add_display_options(*command, words);
    for (const char *other : {"--output", "--listing", "--array", "--depfile"}) {
        command->get_option("--stdout")->excludes(command->get_option(other));
    }
    command->callback([&words, &status, command] {
        complete(words, *command);
        status = build(words.build);
    });
}

void add_check(CLI::App &app, SourceWords &words, int &status) {
    CLI::App *command =
        app.add_subcommand("check", "Say what is wrong with sources; write nothing");
    command->add_option("FILE", words.sources, "Sources, or - for standard input")
        ->required()
        ->option_text(" ");
    add_choice(*command, "--format", words.common().format, kFormats,
               "text on standard error, or json or sarif on standard output", "FORMAT");
    add_language_options(*command);
    add_shared_flag(*command, "-g,--debug", "Look at lines for debuggers too");
    add_warning_options(*command, words);
    add_display_options(*command, words);
    command->callback([&words, &status, command] {
        complete(words, *command);
        status = check(words.common(), words.sources);
    });
}

void add_map(CLI::App &app, SourceWords &words, int &status) {
    CLI::App *command = app.add_subcommand("map", "Show what FILE makes of the 256 addresses");
    command->add_option("FILE", words.map.source, "The source, or - for standard input")
        ->required()
        ->option_text(" ");
    command->add_option("--svg", words.map.svg, "Write the picture as SVG instead")
        ->option_text("FILE");
    add_language_options(*command);
    add_warning_options(*command, words);
    add_display_options(*command, words);
    command->callback([&words, &status, command] {
        complete(words, *command);
        words.map.common = words.common();
        status = map(words.map);
    });
}
