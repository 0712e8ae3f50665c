#include "zirpa/warnings.h"

#include <algorithm>

namespace {

// The operand with what stands behind it, without the blanks.
void offer_joined_operand(Diagnostic &diagnostic) {
    const SourcePlace &place = diagnostic.place;
    const auto first = static_cast<std::size_t>(place.first) - 1;
    const std::size_t blanks = place.text.find_last_not_of(" \t", first - 1) + 1;
    std::string joined = place.text.substr(first, static_cast<std::size_t>(place.last) - first);
    if (joined.find('\'') != std::string::npos) {
        return; // a quoted blank is one of the operand
    }
    std::erase_if(joined, [](char ch) { return ch == ' ' || ch == '\t'; });
    diagnostic.fixes.push_back({"Join it to the operand",
                                {place.line, static_cast<int>(blanks) + 1, place.last, place.text},
                                joined});
}

void append(std::vector<Diagnostic> &all, std::vector<Diagnostic> more) {
    std::move(more.begin(), more.end(), std::back_inserter(all));
}

} // namespace

Diagnostic warning(std::string id, SourcePlace place, std::string message, std::string hint) {
    Diagnostic diagnostic;
    diagnostic.severity = Severity::kWarning;
    diagnostic.id = std::move(id);
    diagnostic.place = std::move(place);
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

bool is_directive(const door::Line &line, std::string_view name) {
    return line.kind == door::LineKind::kDirective &&
           door::upper(text_at(line, line.operation)) == name;
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

std::vector<Diagnostic> Warnings::findings(const Heard &heard, bool with_unused) const {
    std::vector<Diagnostic> all = addresses_.findings;
    append(all, names_.findings(with_unused));
    append(all, lines_.findings);
    append(all, expressions_.findings);
    for (const LineWarnings::Computed &computed : lines_.computed) {
        const bool is_known =
            std::all_of(computed.names.begin(), computed.names.end(),
                        [&](const std::string &name) { return heard.names.contains(name); });
        if (is_known) {
            all.push_back(warning("text-after-operand", computed.place,
                                  "a blank ends the operand, so this is a comment"));
            offer_joined_operand(all.back());
        }
    }
    for (Diagnostic &diagnostic : all) {
        diagnostic.file = heard.file;
    }
    return all;
}
