#include "zirpa/lsp/semanticTokens.h"

#include <algorithm>
#include <array>

namespace lsp {

namespace {

// By kind of token, and then what names may be. Clients know these types from other languages.
constexpr std::array<const char *, 13> kTypes = {"function",  // label
                                                 "keyword",   // instruction
                                                 "macro",     // directive
                                                 "macro",     // conditional word
                                                 "parameter", // register
                                                 "variable",  "number",     "string",   "operator",
                                                 "comment",   "enumMember", "property", "type"};
constexpr std::uint32_t kConstant = 10;
constexpr std::uint32_t kDefined = 11;

constexpr std::array<const char *, 3> kModifiers = {"definition", "readonly", "skipped"};
constexpr std::uint32_t kIsDefinition = 1;
constexpr std::uint32_t kIsReadonly = 2;
constexpr std::uint32_t kIsSkipped = 4;

struct Meaning {
    std::uint32_t type;
    std::uint32_t modifiers;
};

Meaning meaning_of_name(const NameFacts *name, std::uint32_t modifiers) {
    if (name == nullptr || !name->is_defined) {
        return {static_cast<std::uint32_t>(TokenKind::kName), modifiers};
    }
    switch (name->kind) {
    case door::NameKind::kLabel: return {static_cast<std::uint32_t>(TokenKind::kLabel), modifiers};
    case door::NameKind::kConstant: return {kConstant, modifiers | kIsReadonly};
    default: return {kDefined, modifiers | kIsReadonly};
    }
}

Meaning meaning_of(const View &view, int line, const Token &token) {
    const bool is_label = token.kind == TokenKind::kLabel;
    if (is_label || token.kind == TokenKind::kName) {
        std::string word(view.line_text(line).substr(token.begin, token.end - token.begin));
        const NameFacts *name =
            view.analysis.find(view.analysis.is_caseless() ? door::upper(word) : word);
        return meaning_of_name(name, is_label ? kIsDefinition : 0);
    }
    const bool is_skipped = view.analysis.facts(line).kind == door::LineKind::kSkipped;
    return {static_cast<std::uint32_t>(token.kind), is_skipped ? kIsSkipped : 0};
}

// The numbers are relative to the word before.
class Data {
  public:
    void add(const Range &range, Meaning meaning) {
        if (range.start.line != range.end.line || !(range.start < range.end)) {
            return;
        }
        const bool is_same_line = range.start.line == last_.line;
        const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
        data.insert(data.end(),
                    {number(range.start.line - last_.line),
                     number(range.start.character - (is_same_line ? last_.character : 0)),
                     number(range.end.character - range.start.character), meaning.type,
                     meaning.modifiers});
        last_ = range.start;
    }

    TokenData data;

  private:
    Position last_;
};

} // namespace

TokenData semantic_tokens(const View &view, int first, int last) {
    Data data;
    for (int line = first; line <= last; ++line) {
        for (const Token &token : view.tokens(line)) {
            data.add(view.range_of(line, token.begin, token.end), meaning_of(view, line, token));
        }
    }
    return data.data;
}

Json legend() { return {{"tokenTypes", kTypes}, {"tokenModifiers", kModifiers}}; }

Json token_edits(const TokenData &earlier, const TokenData &later) {
    const auto [from, to] =
        std::mismatch(earlier.begin(), earlier.end(), later.begin(), later.end());
    const auto [last, last_later] =
        std::mismatch(earlier.rbegin(), std::make_reverse_iterator(from), later.rbegin(),
                      std::make_reverse_iterator(to));
    const auto begin = static_cast<std::size_t>(from - earlier.begin());
    const auto removed = static_cast<std::size_t>(last.base() - from);
    if (removed == 0 && to == last_later.base()) {
        return Json::array();
    }
    return Json::array(
        {{{"start", begin}, {"deleteCount", removed}, {"data", TokenData(to, last_later.base())}}});
}

} // namespace lsp
