// From a report of the assembler to a diagnostic: what is wrong in a user's words, and what helps.
#pragma once

#include "zirpa/diagnostic.h"
#include "zirpa/heard.h"

#include <string>
#include <string_view>
#include <vector>

// The diagnostics for all reports. Those that follow from one before them are left out.
std::vector<Diagnostic> put_into_words(const Heard &heard);

// 'text', as diagnostics name a piece of a source.
std::string quoted(std::string_view text);

// "$12C", "-$3".
std::string in_hexadecimal(std::int64_t value);

// "300 ($12C)", "-3 (-$3)".
std::string in_both_bases(std::int64_t value);
