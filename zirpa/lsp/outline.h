// What a source holds: its names, its blocks, the memory that it fills.
#pragma once

#include "zirpa/lsp/view.h"

#include <vector>

namespace lsp {

// Labels, constants and names of #define, in the order of the source.
std::vector<Symbol> symbols(const View &view);

// Those whose names hold these letters in their order, in any case.
std::vector<Symbol> matching(std::vector<Symbol> all, const std::string &letters);

// Conditional blocks, and comments of several lines.
std::vector<FoldingRange> folding_ranges(const View &view);

// From the word at the position to the whole text, each in the next one.
std::vector<Range> selection_ranges(const View &view, Position position);

// The bytes that are used of all there are, above the first line.
std::vector<CodeLens> code_lenses(const View &view);

} // namespace lsp
