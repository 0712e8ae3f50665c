#include "zirpa/lsp/view.h"

#include <algorithm>

namespace lsp {

namespace {

// Also where the cursor stands after the last character.
bool holds(const door::Place &place, int line, std::size_t offset) {
    const int column = static_cast<int>(offset) + 1;
    return place.line == line && place.has_column() && place.first <= column &&
           column <= place.last + 1;
}

} // namespace

View::Spot View::spot_at(Position position) const {
    const std::size_t offset = document.offset_of(position);
    const int line = analysis.line_at(offset);
    const std::string_view text_of_line = line_text(line);
    return {line, std::min(offset - analysis.line_begin(line), text_of_line.size()), text_of_line};
}

Range View::range_of(const door::Place &place) const {
    const Extent extent = analysis.where(place, text());
    return document.range_of(extent.begin, extent.end);
}

Range View::range_of(int line, std::size_t begin, std::size_t end) const {
    const std::size_t offset = analysis.line_begin(line);
    return document.range_of(offset + begin, offset + end);
}

View::Lines View::lines_in(const Range &range) const {
    return {analysis.line_at(document.offset_of(range.start)),
            analysis.line_at(document.offset_of(range.end))};
}

View::NameAt View::name_at(Position position) const {
    const Spot spot = spot_at(position);
    for (const UseFacts &use : analysis.uses_of(spot.line)) {
        if (holds(use.place, spot.line, spot.offset)) {
            return {&analysis.names[use.name], use.place};
        }
    }
    for (const NameFacts &name : analysis.names) {
        for (const door::Place &place : name.definitions) {
            if (holds(place, spot.line, spot.offset)) {
                return {&name, place};
            }
        }
    }
    return written_name_at(spot);
}

// On a line that has an error, which the assembler does not read to its end.
View::NameAt View::written_name_at(const Spot &spot) const {
    for (const Token &token : tokens(spot.line)) {
        const door::Place place = {spot.line, static_cast<int>(token.begin) + 1,
                                   static_cast<int>(token.end)};
        if (token.kind == TokenKind::kName && holds(place, spot.line, spot.offset)) {
            const std::string_view word = spot.text.substr(token.begin, token.end - token.begin);
            return {analysis.find(analysis.is_caseless() ? door::upper(word) : std::string(word)),
                    place};
        }
    }
    return {};
}

} // namespace lsp
