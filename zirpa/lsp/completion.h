// What may stand at a place in a line, and the forms that an instruction's operand has.
#pragma once

#include "zirpa/lsp/view.h"

#include <optional>
#include <vector>

namespace lsp {

std::vector<CompletionItem> completion(const View &view, Position position);

std::optional<SignatureHelp> signature_help(const View &view, Position position);

} // namespace lsp
