// Assembles a text, and tells all that is known of it: diagnostics, lines, symbols, outputs.
#pragma once

#include "web/answer.h"

#include <string_view>

namespace web {

// The answer's bytes are those of all outputs, one after the other.
Answer assemble(std::string_view options, std::string_view source);

} // namespace web
