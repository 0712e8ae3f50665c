#include "zirpa/lsp/hover.h"

#include "zirpa/lsp/forms.h"
#include "zirpa/lsp/steps.h"
#include "zirpa/lsp/wordTexts.h"
#include "zirpa/phrases.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace lsp {

namespace {

using Spot = View::Spot;

std::string digits(std::uint64_t value, int base, std::size_t least) {
    std::array<char, 64> room{};
    char *end = std::to_chars(room.data(), room.data() + room.size(), value, base).ptr;
    const std::string text(room.data(), end);
    return std::string(text.size() < least ? least - text.size() : 0, '0') + door::upper(text);
}

std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string plural(std::size_t count, const char *word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

// ---- Operations ----

std::string instruction_text(std::string_view word) {
    std::string text =
        "**" + door::upper(word) + "**\n\n| form | opcode | bytes |\n|---|---|---|\n";
    for (const Form &form : forms_of(word)) {
        text += "| " + code(in_full(door::upper(word), form)) + " | `$" +
                digits(form.opcode, 16, 2) + "` | " + std::to_string(form.length) + " |\n";
    }
    return text;
}

std::string word_text(std::string_view word) {
    return code(form_of_word(word)) + "\n\n" + std::string(text_of_word(word));
}

std::string text_of_operation(std::string_view word) {
    if (is_instruction(word)) {
        return instruction_text(word);
    }
    return text_of_word(word).empty() ? std::string() : word_text(word);
}

// ---- Names ----

std::string kind_text(door::NameKind kind) {
    switch (kind) {
    case door::NameKind::kLabel: return "label";
    case door::NameKind::kConstant: return "constant";
    case door::NameKind::kDefine: return "defined by `#define`";
    default: return "defined by an option";
    }
}

std::string place_text(const View &view, const NameFacts &name) {
    if (name.definitions.empty()) {
        return {};
    }
    const Position position = view.range_of(name.definitions.front()).start;
    return ", line " + std::to_string(position.line + 1);
}

std::string name_text(const View &view, const NameFacts &name) {
    const auto uses = static_cast<std::size_t>(std::count_if(
        view.analysis.uses.begin(), view.analysis.uses.end(),
        [&](const UseFacts &use) { return &view.analysis.names[use.name] == &name; }));
    if (!name.is_defined) {
        return "**" + name.name + "** is not defined; " + plural(uses, "use");
    }
    return "**" + name.name + "** " + kind_text(name.kind) + place_text(view, name) + "\n\n" +
           in_all_bases(name.value) + "\n\n" + plural(uses, "use");
}

// ---- Expressions ----

std::string expression_text(const View &view, const Spot &spot, const ExpressionFacts &expression) {
    const auto begin = static_cast<std::size_t>(expression.place.first) - 1;
    const std::string_view text =
        spot.text.substr(begin, static_cast<std::size_t>(expression.place.last) - begin);
    const std::vector<UseFacts> uses = view.analysis.uses_of(spot.line);
    const std::vector<Step> steps =
        steps_of(text, [&](std::size_t offset) -> std::optional<std::int32_t> {
            const int column = expression.place.first + static_cast<int>(offset);
            const auto use = std::find_if(uses.begin(), uses.end(), [=](const UseFacts &each) {
                return each.place.first == column;
            });
            return use == uses.end() ? std::nullopt : std::optional(use->value);
        });
    std::string shown = "```\n";
    for (const Step &step : steps) {
        shown += step.text + " = " + in_both_bases(step.value) + "\n";
    }
    return shown + std::string(text) + " = " + in_both_bases(expression.value) + "\n```\n\n" +
           in_all_bases(expression.value);
}

const ExpressionFacts *expression_at(const std::vector<ExpressionFacts> &expressions,
                                     std::size_t offset) {
    const int column = static_cast<int>(offset) + 1;
    const auto found =
        std::find_if(expressions.begin(), expressions.end(), [=](const ExpressionFacts &each) {
            return each.place.first <= column && column <= each.place.last + 1;
        });
    return found == expressions.end() ? nullptr : &*found;
}

// ---- The word ----

std::string token_text(const View &view, const Spot &spot, const Token &token, Position position) {
    const std::string_view word = spot.text.substr(token.begin, token.end - token.begin);
    switch (token.kind) {
    case TokenKind::kInstruction:
    case TokenKind::kDirective:
    case TokenKind::kConditional: return text_of_operation(word);
    case TokenKind::kLabel:
    case TokenKind::kName: {
        const View::NameAt found = view.name_at(position);
        return found.name == nullptr ? std::string() : name_text(view, *found.name);
    }
    case TokenKind::kNumber:
    case TokenKind::kText: {
        const std::optional<std::int64_t> number = number_of(word);
        return number ? in_all_bases(*number) : std::string();
    }
    case TokenKind::kRegister: return "register **" + door::upper(word) + "**";
    default: return {};
    }
}

bool is_in_expression(TokenKind kind) {
    return kind == TokenKind::kName || kind == TokenKind::kNumber || kind == TokenKind::kText ||
           kind == TokenKind::kOperator;
}

} // namespace

std::string in_all_bases(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    const bool is_byte = value >= -128 && value <= 255;
    const std::uint64_t shown = is_byte ? bits & 0xFFU : bits & 0xFFFFFFFFU;
    std::string text = code(std::to_string(value)) + " · " + code("$" + digits(shown, 16, 2)) +
                       " · " + code("%" + digits(shown, 2, 8));
    if (value >= ' ' && value <= '~') {
        text += " · " + (value == '`' ? "`` ` ``"
                                      : code("'" + std::string(1, static_cast<char>(value)) + "'"));
    }
    return text;
}

std::optional<Hover> hover(const View &view, Position position) {
    const Spot spot = view.spot_at(position);
    const std::vector<Token> tokens = view.tokens(spot.line);
    const auto token = std::find_if(tokens.begin(), tokens.end(), [&](const Token &each) {
        return each.begin <= spot.offset && spot.offset < each.end;
    });
    if (token == tokens.end()) {
        return std::nullopt;
    }
    std::string text = token_text(view, spot, *token, position);
    Range range = view.range_of(spot.line, token->begin, token->end);
    const std::vector<ExpressionFacts> expressions = view.analysis.expressions_of(spot.line);
    const ExpressionFacts *expression = expression_at(expressions, spot.offset);
    if (expression != nullptr && is_in_expression(token->kind)) {
        text += (text.empty() ? "" : "\n\n---\n\n") + expression_text(view, spot, *expression);
    }
    return text.empty() ? std::nullopt : std::optional<Hover>({text, range});
}

} // namespace lsp
