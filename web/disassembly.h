// Bytes back to a source that assembles to them, as zirpa dis writes it.
#pragma once

#include "web/answer.h"

#include <string_view>

namespace web {

// The answer has no bytes.
Answer disassemble(std::string_view options, std::string_view content);

} // namespace web
