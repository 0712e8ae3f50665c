#include "zirpa/warnings.h"

#include <algorithm>

namespace {

// The operand with what stands behind it, without the blanks.
void offer_joined_operand(Diagnostic &diagnostic, std::string_view line) {
    const SourcePlace &place = diagnostic.place;
    const auto first = static_cast<std::size_t>(place.first) - 1;
    const std::size_t blanks = line.find_last_not_of(" \t", first - 1) + 1;
    std::string joined(line.substr(first, static_cast<std::size_t>(place.last) - first));
    if (joined.find('\'') != std::string::npos) {
        return; // a quoted blank is one of the operand
    }
    std::erase_if(joined, [](char ch) { return ch == ' ' || ch == '\t'; });
    diagnostic.fixes.push_back(
        {"Join it to the operand", {place.line, static_cast<int>(blanks) + 1, place.last}, joined});
}

void append(std::vector<Diagnostic> &all, std::vector<Diagnostic> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

} // namespace

Diagnostic warning(std::string id, const door::Place &place, std::string message,
                   std::string hint) {
    Diagnostic diagnostic;
    diagnostic.severity = Severity::kWarning;
    diagnostic.id = std::move(id);
    diagnostic.place = without_text(place);
    diagnostic.message = std::move(message);
    diagnostic.hint = std::move(hint);
    return diagnostic;
}

std::string_view text_at(const door::Line &line, const door::Place &place) {
    if (!place.has_column()) {
        return {};
    }
    const auto begin = static_cast<std::size_t>(place.first) - 1;
    return line.source.substr(begin, static_cast<std::size_t>(place.last) - begin);
}

// Directives are letters alone, and case does not count.
bool is_directive(const door::Line &line, std::string_view name) {
    const std::string_view word = text_at(line, line.operation);
    return line.kind == door::LineKind::kDirective &&
           std::equal(word.begin(), word.end(), name.begin(), name.end(),
                      [](char ch, char letter) { return ch == letter || ch == (letter | 0x20); });
}

void Warnings::take(const door::Reference &reference) {
    names_.take(reference);
    expressions_.take(reference);
}

void Warnings::take(const door::Line &line, bool is_faulty) {
    addresses_.take(line);
    names_.take(line);
    lines_.take(line, is_faulty);
    expressions_.take(line);
}

std::vector<Diagnostic> Warnings::findings(const Heard &heard, bool with_unused) {
    std::vector<Diagnostic> all = std::move(addresses_.findings);
    append(all, names_.findings(with_unused));
    append(all, std::move(lines_.findings));
    append(all, std::move(expressions_.findings));
    for (const LineWarnings::Computed &computed : lines_.computed) {
        const bool is_known =
            std::all_of(computed.names.begin(), computed.names.end(),
                        [&](const std::string &name) { return heard.names.contains(name); });
        if (is_known) {
            all.push_back(warning("text-after-operand", computed.place,
                                  "a blank ends the operand, so this is a comment"));
            offer_joined_operand(all.back(), heard.lines.of(computed.place.line));
        }
    }
    for (Diagnostic &diagnostic : all) {
        diagnostic.file = heard.file;
    }
    return all;
}
