// What is shown of the word under the pointer.
#pragma once

#include "zirpa/lsp/view.h"

#include <optional>

namespace lsp {

std::optional<Hover> hover(const View &view, Position position);

// "10", "$A", "%1010", and the character if there is one; for a byte as both signs have it.
std::string in_all_bases(std::int64_t value);

} // namespace lsp
