// Commands are told to the parser, and refused words are answered.
#include "zirpa/commandLine.h"

#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/disCommands.h"
#include "zirpa/sourceCommands.h"
#include "zirpa/suggest.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <new>

namespace {

constexpr const char *kDescription =
    "zirpa - assembles sources for the ZIRPA, as HXzirpa does, and says what is wrong with them";
constexpr const char *kFooter = "Exit status: 0 all is well, 1 errors (or warnings with --strict), "
                                "2 wrong use or a file that can't be used.";

// ---- Parsing ----

// "-S1" is one word for the assembler, but two options for a parser.
std::vector<std::string> arguments_of(int argc, const char *const *argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const bool is_width =
            word.size() == 3 && word.starts_with("-S") && word[2] >= '0' && word[2] <= '9';
        arguments.push_back(is_width ? "--address-width=" + std::string(word.substr(2))
                                     : std::string(word));
    }
    std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
    return arguments;
}

std::vector<std::string> options_of(const CLI::App &command) {
    std::vector<std::string> names;
    for (const CLI::Option *option : command.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

// The first word that the parser does not know, and what may be meant.
std::string unknown_word(const CLI::App &command) {
    const std::vector<std::string> rest = command.remaining();
    if (rest.empty()) {
        return {};
    }
    std::vector<std::string> known = options_of(command);
    for (const CLI::App *each : command.get_subcommands([](const CLI::App *) { return true; })) {
        known.push_back(each->get_name());
    }
    const std::string word = rest.front().substr(0, rest.front().find('='));
    const std::string hint = word.ends_with(".szirpa") && command.get_parent() == nullptr
                                 ? "did you mean build " + word + "?"
                                 : did_you_mean(nearest(word, known));
    const char *what = word.starts_with('-')             ? "unknown option "
                       : command.get_parent() != nullptr ? "one argument too many: "
                                                         : "unknown command ";
    return what + word + (hint.empty() ? "" : ": " + hint);
}

int refuse(const CLI::App &app, const CLI::App &command, const CLI::ParseError &error) {
    if (error.get_exit_code() == 0) {
        return print(error.get_name() == "CallForVersion" ? std::string(error.what()) + "\n"
                                                          : app.help())
                   ? 0
                   : kUnusable;
    }
    std::string text = unknown_word(command);
    if (text.empty()) {
        text =
            &command == &app ? "a command is needed: build, check, map or explain" : error.what();
    }
    if (error.get_name() == "ArgumentMismatch") {
        text.resize(std::min(text.find(':'), text.size()));
        text += " needs a value";
    }
    const std::string name = &command == &app ? "zirpa" : "zirpa " + command.get_name();
    (void)complain("zirpa: " + text + "\nSee " + name + " --help.\n");
    return kUnusable;
}

const CLI::App &chosen(const CLI::App &app) {
    const std::vector<const CLI::App *> commands =
        app.get_subcommands([](const CLI::App *command) { return command->parsed(); });
    return commands.empty() ? app : *commands.front();
}

void add_explain(CLI::App &app, std::string &explained, int &status) {
    CLI::App *command = app.add_subcommand("explain", "Explain a diagnostic, or list them");
    command->add_option("ID", explained, "Its identifier, or all")->option_text(" ");
    command->callback([&explained, &status] { status = explain(explained); });
}

// Editors start servers with options that say how to reach them.
void add_lsp(CLI::App &app, int &status) {
    CLI::App *command = app.add_subcommand("lsp", "Serve editors, by the Language Server Protocol");
    const std::string text = "On standard input and output, as always";
    command->add_flag("--stdio", text)->option_text(" ");
    command->callback([&status] { status = serve(); });
}

// Parses a command line and carries it out.
int carry_out(int argc, const char *const *argv) {
    SourceWords words;
    std::string explained;
    DisRequest dis_request;
    DiffRequest diff_request;
    int status = 0;
    CLI::App app(kDescription, "zirpa");
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("zirpa ") + door::version());
    app.require_subcommand(1);
    add_build(app, words, status);
    add_check(app, words, status);
    add_map(app, words, status);
    add_explain(app, explained, status);
    add_dis(app, dis_request, status);
    add_diff(app, diff_request, status);
    add_lsp(app, status);
    try {
        app.parse(arguments_of(argc, argv));
    } catch (const CLI::ParseError &error) {
        return refuse(app, chosen(app), error);
    }
    return status;
}

// The libraries for options and JSON are not made to run out of memory.
[[noreturn]] void end_without_memory() {
    (void)complain("zirpa: out of memory\n");
    std::exit(kUnusable);
}

} // namespace

int zirpa_main(int argc, const char *const *argv) {
    // A write that fails is reported as one.
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
    std::set_new_handler(end_without_memory);
    try {
        return carry_out(argc, argv);
    } catch (const std::bad_alloc &) {
        end_without_memory();
    }
}
