// Standard streams: a program that can't say what it has found has failed.
#pragma once

#include "zirpa/commands.h"

#include <optional>
#include <string>
#include <string_view>

// Write everything; false when that fails.
bool print(std::string_view text);    // to standard output; a failure is told
bool complain(std::string_view text); // to standard error

// All of standard input, or nothing when it can't be read; errno tells why.
std::optional<std::string> read_standard_input();

// The bytes of a file, or nothing when it can't be read; errno tells why.
std::optional<std::string> read_file(const std::string &name);

// Whether text on standard error, or on standard output, is coloured. NO_COLOR and a terminal that
// can't show colours speak against it, unless they are asked for.
bool is_coloured(Colour colour, bool is_output = false);
