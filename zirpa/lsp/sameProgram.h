// Whether edits of a text leave the program as it is: it is assembled before and after, in memory,
// and all but the source text in the listing must be the same.
#pragma once

#include "zirpa/inspection.h"
#include "zirpa/lsp/document.h"

#include <vector>

namespace lsp {

bool is_same_program(const Document &document, const std::vector<TextEdit> &edits,
                     const Settings &settings);

// The text after edits that do not overlap.
std::string edited(const Document &document, std::vector<TextEdit> edits);

} // namespace lsp
