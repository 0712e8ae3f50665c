// The command line: options, their oddities, and the usage text.
#pragma once

#include <string>

// ---- State owned here; set by read_command_line ----

extern std::string OutputTitle; // output name of -o, without its quotes
extern std::string DbgSrcDir;   // directory of -d, without its quotes

// ---- Functions ----

void command_new_run();

// Carries out the options. Returns the source's name, or none when the options use up all
// arguments.
const char *read_command_line(int argc, const char *const *argv);

// Prints the usage text on standard output.
void print_usage();
