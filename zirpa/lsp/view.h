// A document as it is asked about: its text, what the assembler says of it, and the way between
// positions of the protocol and lines and columns of the assembler.
#pragma once

#include "zirpa/lsp/analysis.h"
#include "zirpa/lsp/clientSettings.h"
#include "zirpa/lsp/document.h"
#include "zirpa/lsp/tokens.h"

#include <string>
#include <string_view>
#include <vector>

namespace lsp {

struct View {
    const std::string &uri;
    const Document &document;
    const Analysis &analysis;
    const ClientSettings &settings;
    const std::string &chapters; // address of the page that explains diagnostics; empty: unknown

    const std::string &text() const { return document.text(); }

    // The assembler's line at a position, and the offset in it.
    struct Spot {
        int line;
        std::size_t offset;
        std::string_view text; // of the line
    };
    Spot spot_at(Position position) const;

    std::string_view line_text(int line) const { return analysis.line_text(line, text()); }
    std::vector<Token> tokens(int line) const {
        return tokens_of(line_text(line), analysis.facts(line));
    }

    Range range_of(const door::Place &place) const;
    // Bytes of a line, from begin up to end, counted from 0.
    Range range_of(int line, std::size_t begin, std::size_t end) const;
    Range range_of_line(int line) const { return range_of({line, 0, 0}); }

    // The first and the last line that a range touches.
    struct Lines {
        int first;
        int last;
    };
    Lines lines_in(const Range &range) const;

    // The name that is defined or used at a position; null where there is none.
    struct NameAt {
        const NameFacts *name = nullptr;
        door::Place place;
    };
    NameAt name_at(Position position) const;
    NameAt written_name_at(const Spot &spot) const; // the same by the words alone
};

} // namespace lsp
