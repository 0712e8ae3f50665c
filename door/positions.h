// From a position in the assembler's line to an offset in it.
#pragma once

#include <cstddef>
#include <string_view>

namespace door {

// The current line, without its line end.
std::string_view line_text();

// The offset in the line of a position in it, or in a copy of a part of it; the size of the line
// for any other.
std::size_t offset_of(const char *position);

} // namespace door
