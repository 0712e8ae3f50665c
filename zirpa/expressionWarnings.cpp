#include "zirpa/cExpression.h"
#include "zirpa/phrases.h"
#include "zirpa/warnings.h"

#include <algorithm>

void ExpressionWarnings::take(const door::Reference &reference) {
    if (reference.use == door::Use::kValue) {
        values_.emplace_back(reference.place.first, reference.value);
    }
}

void ExpressionWarnings::take(const door::Expression &expression) {
    const auto value_at = [&](std::size_t offset) -> std::optional<std::int64_t> {
        const int column = expression.place.first + static_cast<int>(offset);
        const auto known = std::find_if(values_.rbegin(), values_.rend(),
                                        [=](const auto &each) { return each.first == column; });
        return known == values_.rend() ? std::nullopt : std::optional<std::int64_t>(known->second);
    };
    const auto reading = read_as_c(expression.text, value_at);
    if (!reading || reading->value == expression.value) {
        return;
    }
    const std::string text(expression.text);
    findings.push_back(warning("unlike-c", expression.place,
                               "'" + text + "' is " + in_both_bases(expression.value) +
                                   " here, but " + in_both_bases(reading->value) + " in C",
                               "as in C: " + reading->parenthesised));
    offer_text(findings.back(), "Compute as in C: " + reading->parenthesised,
               reading->parenthesised);
}

void ExpressionWarnings::take(const door::Line & /*line*/) { values_.clear(); }
