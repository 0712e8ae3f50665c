// What directives and conditional words do, with their surprises, as Markdown.
#pragma once

#include <string_view>

namespace lsp {

// The word in any case, conditional ones with their hash; empty for any other word.
std::string_view text_of_word(std::string_view word);

// How a line with that word is written: "name EQU value".
std::string_view form_of_word(std::string_view word);

} // namespace lsp
