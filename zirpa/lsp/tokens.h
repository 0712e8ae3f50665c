// The words of a line, told apart by what the assembler takes the line for.
#pragma once

#include "zirpa/lsp/analysis.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace lsp {

// In the order of the legend that clients are given.
enum class TokenKind {
    kLabel,
    kInstruction,
    kDirective,
    kConditional,
    kRegister,
    kName,
    kNumber,
    kText,
    kOperator,
    kComment,
};

// Bytes of a line, from begin up to end, counted from 0.
struct Token {
    TokenKind kind;
    std::size_t begin;
    std::size_t end;
};

// In their order. A line that is skipped is one comment.
std::vector<Token> tokens_of(std::string_view line, const LineFacts &facts);

// The words of an operand that begins at an offset.
void add_operand_tokens(std::string_view line, std::size_t begin, std::size_t end,
                        std::vector<Token> &tokens);

} // namespace lsp
