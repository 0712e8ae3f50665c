#include "zirpa/lsp/tokens.h"

#include "zirpa/cases.h"

#include <algorithm>

namespace lsp {

namespace {

bool is_blank(char ch) { return ch == ' ' || ch == '\t'; }

std::size_t skip_blanks(std::string_view line, std::size_t i) {
    while (i < line.size() && is_blank(line[i])) {
        ++i;
    }
    return i;
}

std::size_t end_of_word(std::string_view line, std::size_t i) {
    while (i < line.size() && door::is_name_character(line[i])) {
        ++i;
    }
    return i;
}

// "%" begins a number where a value is to come, and else is an operator.
Token number_or_operator(std::string_view line, std::size_t begin, bool is_value_next) {
    const char ch = line[begin];
    const bool is_number = ch == '$' || door::is_digit(ch) || (ch == '%' && is_value_next);
    const std::size_t end = is_number ? end_of_word(line, begin + 1) : begin + 1;
    return {is_number ? TokenKind::kNumber : TokenKind::kOperator, begin, end};
}

Token token_at(std::string_view line, std::size_t begin, std::size_t end, bool is_value_next) {
    const char ch = line[begin];
    if (ch == '"') {
        return {TokenKind::kText, begin, end};
    }
    if (ch == '\'') {
        const bool is_closed = begin + 2 < end && line[begin + 2] == '\'';
        return {TokenKind::kText, begin, std::min(end, begin + (is_closed ? 3 : 1))};
    }
    if (door::begins_name(ch)) {
        const std::size_t word = std::min(end_of_word(line, begin), end);
        const bool is_one = door::is_register(line.substr(begin, word - begin));
        return {is_one ? TokenKind::kRegister : TokenKind::kName, begin, word};
    }
    Token token = number_or_operator(line, begin, is_value_next);
    token.end = std::min(token.end, end);
    return token;
}

void add_piece(const door::Place &place, TokenKind kind, std::vector<Token> &tokens) {
    if (place.has_column()) {
        tokens.push_back({kind, static_cast<std::size_t>(place.first) - 1,
                          static_cast<std::size_t>(place.last)});
    }
}

// From the first character that is no blank to the last one.
void add_comment(std::string_view line, std::size_t from, std::vector<Token> &tokens) {
    const std::size_t begin = skip_blanks(line, std::min(from, line.size()));
    if (begin < line.size()) {
        tokens.push_back({TokenKind::kComment, begin, line.size()});
    }
}

TokenKind kind_of_operation(door::LineKind kind) {
    switch (kind) {
    case door::LineKind::kInstruction: return TokenKind::kInstruction;
    case door::LineKind::kConditional: return TokenKind::kConditional;
    default: return TokenKind::kDirective;
    }
}

bool takes_operand(std::string_view line, const LineFacts &facts) {
    if (facts.kind != door::LineKind::kInstruction) {
        return true;
    }
    const auto begin = static_cast<std::size_t>(facts.operation.first) - 1;
    const auto end = static_cast<std::size_t>(facts.operation.last);
    return !door::operands_of(line.substr(begin, end - begin)).empty();
}

// A conditional word may be followed by a name and a value.
std::size_t add_second_word(std::string_view line, std::size_t from, std::vector<Token> &tokens) {
    const std::size_t begin = skip_blanks(line, from);
    if (begin == line.size() || line[begin] == ';') {
        return from;
    }
    const std::size_t end = std::min(line.find_first_of(" \t", begin), line.size());
    add_operand_tokens(line, begin, end, tokens);
    return end;
}

} // namespace

void add_operand_tokens(std::string_view line, std::size_t begin, std::size_t end,
                        std::vector<Token> &tokens) {
    bool is_value_next = true;
    for (std::size_t i = begin; i < end;) {
        if (is_blank(line[i])) {
            ++i;
            continue;
        }
        const Token token = token_at(line, i, end, is_value_next);
        is_value_next = token.kind == TokenKind::kOperator && line[i] != ')';
        tokens.push_back(token);
        i = std::max(token.end, i + 1);
    }
}

std::vector<Token> tokens_of(std::string_view line, const LineFacts &facts) {
    std::vector<Token> tokens;
    if (facts.kind == door::LineKind::kSkipped) {
        add_comment(line, 0, tokens);
        return tokens;
    }
    add_piece(facts.label, TokenKind::kLabel, tokens);
    if (!facts.operation.has_column()) {
        add_comment(line, tokens.empty() ? 0 : tokens.back().end, tokens);
        return tokens;
    }
    auto end = static_cast<std::size_t>(facts.operation.last);
    if (facts.kind != door::LineKind::kFaulty && facts.kind != door::LineKind::kDebugger) {
        add_piece(facts.operation, kind_of_operation(facts.kind), tokens);
    }
    if (facts.operand.has_column() && takes_operand(line, facts)) {
        end = static_cast<std::size_t>(facts.operand.last);
        add_operand_tokens(line, static_cast<std::size_t>(facts.operand.first) - 1, end, tokens);
        if (facts.kind == door::LineKind::kConditional) {
            end = add_second_word(line, end, tokens);
        }
    }
    add_comment(line, end, tokens);
    return tokens;
}

} // namespace lsp
