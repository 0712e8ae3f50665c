// Where a name is defined and used, and another name for it.
#pragma once

#include "zirpa/lsp/view.h"

#include <optional>
#include <string>
#include <vector>

namespace lsp {

std::vector<Location> definitions(const View &view, Position position);
std::vector<Location> references(const View &view, Position position, bool with_definitions);
std::vector<DocumentHighlight> highlights(const View &view, Position position);

// A name that may be renamed.
struct Renamable {
    Range range;
    std::string name; // as it is written there
};
std::optional<Renamable> renamable(const View &view, Position position);

// Also in blocks that are skipped, where the same names stand. Throws ResponseError for a name that
// is none, that is taken or that would change what is assembled. The settings are those of the
// document.
WorkspaceEdit rename(const View &view, Position position, const std::string &name,
                     const Settings &settings);

} // namespace lsp
