// The command lines of dis and diff. Operands of hints are read where they are checked, so that a
// wrong one is refused in the words of the hints.
#include "dis/lines.h"
#include "zirpa/disCommands.h"

#include <CLI/CLI.hpp>

#include <map>

namespace {

const std::map<std::string, dis::InputFormat> kFormats = {{"records", dis::InputFormat::kRecords},
                                                          {"image", dis::InputFormat::kImage},
                                                          {"script", dis::InputFormat::kScript},
                                                          {"array", dis::InputFormat::kArray}};
const std::map<std::string, Colour> kColours = {
    {"auto", Colour::kAuto}, {"always", Colour::kAlways}, {"never", Colour::kNever}};

template <typename Value> CLI::Validator one_of(const std::map<std::string, Value> &words) {
    const auto check = [&words](const std::string &given) {
        std::string known;
        for (const auto &row : words) {
            known += (known.empty() ? "" : ", ") + row.first;
        }
        return words.contains(given) ? std::string() : given + " is none of " + known;
    };
    return {check, ""};
}

template <typename Value>
void add_choice(CLI::App &command, const std::string &name,
                const std::map<std::string, Value> &words, const std::string &type,
                const std::string &text, const std::function<void(Value)> &take) {
    command
        .add_option_function<std::string>(
            name, [&words, take](const std::string &word) { take(words.at(word)); }, text)
        ->check(one_of(words))
        ->option_text(type);
}

void add_hint(CLI::App &command, dis::HintKind kind, const std::string &type,
              const std::string &text, dis::Hints &hints) {
    const auto take = [kind, &hints](const std::vector<std::string> &operands) {
        for (const std::string &operand : operands) {
            (void)dis::add_hint(kind, operand, hints);
        }
    };
    const auto check = [kind](const std::string &operand) {
        dis::Hints none;
        const std::string lack = dis::add_hint(kind, operand, none);
        return lack.empty() ? lack : operand + ": " + lack;
    };
    command
        .add_option_function<std::vector<std::string>>("--" + std::string(dis::word_of(kind)), take,
                                                       text)
        ->check(CLI::Validator(check, ""))
        ->option_text(type)
        ->allow_extra_args(false);
}

void add_files(CLI::App &command, const std::string &name, std::vector<std::string> &files,
               const std::string &text) {
    command.add_option(name, files, text)->option_text("FILE")->allow_extra_args(false);
}

void add_file(CLI::App &command, const std::string &name, std::string &file,
              const std::string &text) {
    command.add_option(name, file, text)->option_text("FILE");
}

std::string refuse_address(const std::string &word) {
    return dis::address_of(word) ? "" : word + ": an address up to $FFFF is expected";
}

void add_reading_options(CLI::App &command, ProgramRequest &request) {
    add_choice<dis::InputFormat>(command, "--from", kFormats, "FORMAT",
                                 "records, image, script or array, if it can't be seen",
                                 [&request](dis::InputFormat format) { request.format = format; });
    command
        .add_option_function<std::string>(
            "--base", [&request](const std::string &word) { request.base = dis::address_of(word); },
            "Address of the first byte of a plain image or an array")
        ->check(CLI::Validator(refuse_address, ""))
        ->option_text("ADDRESS");
    add_hint(command, dis::HintKind::kCode, "ADDRESS", "Code begins there", request.hints);
    add_hint(command, dis::HintKind::kData, "FROM-TO", "Data, not code", request.hints);
    add_hint(command, dis::HintKind::kString, "FROM-TO", "A text", request.hints);
    add_hint(command, dis::HintKind::kTable, "FROM-TO", "Addresses of code", request.hints);
    add_hint(command, dis::HintKind::kLabel, "NAME=ADDRESS", "What an address is called",
             request.hints);
    add_files(command, "--hints", request.hint_files, "Read hints, one a line");
    add_files(command, "--symbols", request.symbol_files, "Take names from a symbol table");
    add_files(command, "--debug", request.debug_files,
              "Take lines and names from the debug records of another file");
    add_choice<Colour>(command, "--color", kColours, "WHEN",
                       "Colours: auto for a terminal, always or never",
                       [&request](Colour colour) { request.common.colour = colour; });
}

} // namespace

void add_dis(CLI::App &app, DisRequest &request, int &status) {
    CLI::App *command = app.add_subcommand("dis", "Make a source of a program's bytes");
    command
        ->add_option("FILE", request.file,
                     "S-records, a plain image, a script or a C array; - for standard input")
        ->required()
        ->option_text(" ");
    add_file(*command, "-o,--output", request.output,
             "Write the source there, not to standard output");
    command->add_flag("--bytes", request.has_bytes, "Comments with address and bytes");
    command->add_flag("--xref", request.has_references, "Comments where labels are used");
    command->add_flag("--verify", request.is_verified,
                      "Assemble the source and compare the bytes before anything is written");
    add_file(*command, "--graph", request.graph_output, "Write the flow as a picture for Graphviz");
    add_file(*command, "--save-hints", request.hints_output, "Write what was found as hints");
    add_reading_options(*command, request.reading);
    command->callback([&request, &status] { status = disassemble(request); });
}

void add_diff(CLI::App &app, DiffRequest &request, int &status) {
    CLI::App *command = app.add_subcommand("diff", "Compare two programs by their instructions");
    command->add_option("A", request.first, "A program, as dis takes it")
        ->required()
        ->option_text(" ");
    command->add_option("B", request.second, "Another one")->required()->option_text(" ");
    add_reading_options(*command, request.reading);
    command->callback([&request, &status] { status = diff(request); });
}
