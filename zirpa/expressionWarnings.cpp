#include "zirpa/cExpression.h"
#include "zirpa/phrases.h"
#include "zirpa/warnings.h"

void ExpressionWarnings::take(const door::Reference &reference) {
    if (reference.use == door::Use::kValue) {
        values_[reference.place.first] = reference.value;
    }
}

void ExpressionWarnings::take(const door::Expression &expression) {
    const auto reading =
        read_as_c(expression.text, [&](std::size_t offset) -> std::optional<std::int64_t> {
            const auto known = values_.find(expression.place.first + static_cast<int>(offset));
            return known == values_.end() ? std::nullopt
                                          : std::optional<std::int64_t>(known->second);
        });
    if (!reading || reading->value == expression.value) {
        return;
    }
    const std::string text(expression.text);
    pending_.push_back(warning(
        "unlike-c", {expression.place.line, expression.place.first, expression.place.last, {}},
        "'" + text + "' is " + in_both_bases(expression.value) + " here, but " +
            in_both_bases(reading->value) + " in C",
        "as in C: " + reading->parenthesised));
    offer_text(pending_.back(), "Compute as in C: " + reading->parenthesised,
               reading->parenthesised);
}

void ExpressionWarnings::take(const door::Line &line) {
    for (Diagnostic &diagnostic : pending_) {
        diagnostic.place.text = line.source;
        findings.push_back(std::move(diagnostic));
    }
    pending_.clear();
    values_.clear();
}
