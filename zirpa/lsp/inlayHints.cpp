#include "zirpa/lsp/inlayHints.h"

#include "zirpa/lsp/hover.h"
#include "zirpa/phrases.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace lsp {

namespace {

// Bytes of a line that are shown.
constexpr std::size_t kMostBytes = 8;

std::string hexadecimal(std::uint32_t value) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%02X", value);
    return text.data();
}

std::string bytes_text(const Analysis &analysis, const LineFacts &facts) {
    std::string text = hexadecimal(facts.address) + ":";
    for (std::size_t i = 0; i < std::min(facts.count, kMostBytes); ++i) {
        text += " " + hexadecimal(analysis.bytes[facts.bytes + i]);
    }
    if (facts.is_reserved) {
        return text + " (" + std::to_string(facts.size) + ")";
    }
    return facts.size > kMostBytes ? text + " …" : text;
}

InlayHint hint_after(const View &view, int line, std::size_t offset, std::string label,
                     std::string tooltip) {
    return {view.range_of(line, offset, offset).start, std::move(label), std::move(tooltip)};
}

void add_value(const View &view, const door::Place &place, std::int64_t value,
               std::vector<InlayHint> &hints) {
    hints.push_back(hint_after(view, place.line, static_cast<std::size_t>(place.last),
                               "= " + in_both_bases(value), {}));
}

// A name that stands alone has no expression.
bool is_in_one_of(const std::vector<ExpressionFacts> &expressions, const door::Place &place) {
    return std::any_of(expressions.begin(), expressions.end(), [&](const ExpressionFacts &each) {
        return each.place.first <= place.first && place.last <= each.place.last;
    });
}

void add_values(const View &view, int line, std::vector<InlayHint> &hints) {
    const std::vector<ExpressionFacts> expressions = view.analysis.expressions_of(line);
    for (const ExpressionFacts &expression : expressions) {
        add_value(view, expression.place, expression.value, hints);
    }
    for (const UseFacts &use : view.analysis.uses_of(line)) {
        if (use.use == door::Use::kValue && use.is_defined && use.place.has_column() &&
            !is_in_one_of(expressions, use.place)) {
            add_value(view, use.place, use.value, hints);
        }
    }
}

} // namespace

std::vector<InlayHint> inlay_hints(const View &view, const Range &range) {
    std::vector<InlayHint> hints;
    const auto [first, last] = view.lines_in(range);
    for (int line = first; line <= last; ++line) {
        if (view.settings.are_values_shown) {
            add_values(view, line, hints);
        }
        const LineFacts &facts = view.analysis.facts(line);
        if (view.settings.are_bytes_shown && facts.size > 0) {
            hints.push_back(hint_after(view, line, view.line_text(line).size(),
                                       bytes_text(view.analysis, facts), {}));
        }
    }
    return hints;
}

} // namespace lsp
