// The command line: options, their oddities, and the usage text.
//
// The options stand in tables, which documents, completions and tests are held against; the usage
// text stays as it is, oddities included, because users know it.
#pragma once

#include "as/asOptions.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// An option without a value, and the flag that it sets.
struct Switch {
    std::string_view text;
    std::int16_t *flag;
};
inline constexpr auto kSwitches = std::to_array<Switch>({
    {"-L", &O_list},
    {"-S", &O_symtab},
    {"-A", &O_cout},
    {"-g", &O_symdebug},
    {"-w", &O_warn},
});

// An option for the width of the addresses in the records.
struct RecordOption {
    std::string_view text;
    int type;
};
inline constexpr auto kRecordOptions = std::to_array<RecordOption>({
    {"-S1", 1},
    {"-S2", 2},
    {"-S3", 3},
});

// An option with a value: in the next argument, or joined, for some only in double quotes.
struct ValueOption {
    char letter;
    bool joined_in_quotes_only;
    void (*carry_out)(const char *value);
};
extern const std::array<ValueOption, 5> kValueOptions;

// A value of -C, and the flag that it clears.
struct CompatibilityWord {
    std::string_view text;
    std::int16_t *flag;
};
inline constexpr auto kCompatibilityWords = std::to_array<CompatibilityWord>({
    {"nopure", &O_directive_style_pure},
    {"nonative", &O_directive_style_native},
    {"nocase", &O_symbol_case_sensitive},
});

// ---- State owned here; set by read_command_line ----

extern std::string OutputTitle; // output name of -o, without its quotes
extern std::string DbgSrcDir;   // directory of -d, without its quotes

// ---- Functions ----

void command_new_run();

// Carries out the options. Returns the source's name, or null when the options use up all
// arguments.
const char *read_command_line(int argc, const char *const *argv);

// Prints the usage text on standard output.
void print_usage();
