// The words of a text by their meaning, in the numbers of the protocol.
#pragma once

#include "zirpa/lsp/view.h"

#include <cstdint>
#include <vector>

namespace lsp {

// Five numbers a word: lines on, characters on, length, type, modifiers.
using TokenData = std::vector<std::uint32_t>;

TokenData semantic_tokens(const View &view, int first, int last);

// The names of types and modifiers, by their numbers.
Json legend();

// The one edit that makes the later data of the earlier.
Json token_edits(const TokenData &earlier, const TokenData &later);

} // namespace lsp
