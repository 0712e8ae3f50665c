// Hints in the text: the address and the bytes of a line, as the listing shows them, and the values
// of operands.
#pragma once

#include "zirpa/lsp/view.h"

#include <vector>

namespace lsp {

std::vector<InlayHint> inlay_hints(const View &view, const Range &range);

} // namespace lsp
