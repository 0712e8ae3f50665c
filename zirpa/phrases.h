// How diagnostics name pieces of a source, and values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// 'text'
std::string quoted(std::string_view text);

// "$12C", "-$3".
std::string in_hexadecimal(std::int64_t value);

// "300 ($12C)", "-3 (-$3)".
std::string in_both_bases(std::int64_t value);
