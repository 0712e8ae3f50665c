#include "zirpa/heard.h"

#include <algorithm>

namespace {

std::string piece_of(std::string_view line, const door::Place &place) {
    if (!place.has_column()) {
        return {};
    }
    const auto begin = static_cast<std::size_t>(place.first) - 1;
    return std::string(line.substr(begin, static_cast<std::size_t>(place.last) - begin));
}

bool goes_on(const door::Line &line) {
    const std::size_t next =
        line.source.find_first_not_of(" \t", static_cast<std::size_t>(line.operand.last));
    return line.operand.has_column() && next != std::string_view::npos && line.source[next] != ';';
}

// A report on a byte of a character is one on the character.
void take_whole_character(SourcePlace &place) {
    const std::string_view text = place.text;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t size = character_size(text.substr(begin));
        const int first = static_cast<int>(begin) + 1;
        const int last = static_cast<int>(begin + size);
        if (size > 1 && first <= place.last && place.first <= last) {
            place.first = std::min(place.first, first);
            place.last = std::max(place.last, last);
        }
        begin += size;
    }
}

} // namespace

SourcePlace place_in(const door::Place &place, std::string_view line) {
    return {place.line, place.first, place.last, std::string(line)};
}

SourcePlace without_text(const door::Place &place) { return {place.line, place.first, place.last}; }

void LineTexts::take(const door::Line &line) {
    pieces_.resize(static_cast<std::size_t>(line.line), {text_.size(), line.source.size()});
    text_ += line.source;
}

std::string_view LineTexts::of(int line) const {
    const auto index = static_cast<std::size_t>(line) - 1;
    return index < pieces_.size()
               ? std::string_view(text_).substr(pieces_[index].begin, pieces_[index].size)
               : std::string_view();
}

std::string HeardReport::pointed_at() const {
    const auto begin =
        std::min(static_cast<std::size_t>(std::max(place.first, 1)) - 1, place.text.size());
    return place.first == 0
               ? std::string()
               : place.text.substr(begin, static_cast<std::size_t>(place.last) - begin);
}

void Heard::take(const door::Report &report) {
    reports.push_back({report.kind,
                       std::string(report.id),
                       std::string(report.text),
                       report.is_counted,
                       place_in(report.place, report.source),
                       {}});
    if (report.place.has_column()) {
        take_whole_character(reports.back().place);
    }
}

void Heard::take(const door::Definition &definition) {
    if (!names.contains(definition.name)) {
        names.emplace(definition.name,
                      HeardName{definition.kind, definition.place, definition.value});
    }
}

// A line is told after all that is told of it.
void Heard::take(const door::Line &line) {
    for (; reports_with_words_ < reports.size(); ++reports_with_words_) {
        LineWords &words = reports[reports_with_words_].words;
        words.label = piece_of(line.source, line.label);
        words.operation = piece_of(line.source, line.operation);
        words.operand = piece_of(line.source, line.operand);
        words.label_place = place_in(line.label, line.source);
        words.is_label_cut = line.label.has_column() && line.operation.first == line.label.last + 1;
        words.goes_on = goes_on(line);
    }
    if (line.displaces) {
        phase_place = {line.line, 0, 0};
    }
    lines.take(line);
}

void add_texts(std::vector<Diagnostic> &diagnostics, const LineTexts &lines) {
    const auto add = [&](SourcePlace &place) {
        if (place.text.empty()) {
            place.text = lines.of(place.line);
        }
    };
    for (Diagnostic &diagnostic : diagnostics) {
        add(diagnostic.place);
        for (Note &note : diagnostic.notes) {
            add(note.place);
        }
    }
}
