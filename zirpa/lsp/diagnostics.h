// Diagnostics of zirpa in the form of the protocol, and the fixes that they suggest.
#pragma once

#include "zirpa/lsp/view.h"

#include <vector>

namespace lsp {

// With related places if the client shows them.
std::vector<PublishedDiagnostic> diagnostics(const View &view);

// The fixes of the diagnostics in a range.
std::vector<CodeAction> quick_fixes(const View &view, const Range &range);

} // namespace lsp
