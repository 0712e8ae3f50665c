// The fields of lines moved to columns, where that changes nothing of the program.
#pragma once

#include "zirpa/lsp/view.h"

#include <vector>

namespace lsp {

// How blanks are written.
struct Blanks {
    std::size_t tab_size = 8;
    bool are_spaces = true;
};

// Edits for the lines from first to last.
std::vector<TextEdit> formatting(const View &view, int first, int last, const Blanks &blanks);

} // namespace lsp
