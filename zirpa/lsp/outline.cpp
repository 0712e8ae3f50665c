#include "zirpa/lsp/outline.h"

#include "zirpa/phrases.h"

#include <algorithm>

namespace lsp {

namespace {

SymbolKind kind_of(door::NameKind kind) {
    switch (kind) {
    case door::NameKind::kLabel: return SymbolKind::kFunction;
    case door::NameKind::kConstant: return SymbolKind::kConstant;
    default: return SymbolKind::kVariable;
    }
}

bool is_before(const door::Place &one, const door::Place &other) {
    return one.line != other.line ? one.line < other.line : one.first < other.first;
}

bool holds_letters(std::string_view name, std::string_view letters) {
    for (const char ch : name) {
        if (!letters.empty() && door::upper({&ch, 1}) == door::upper(letters.substr(0, 1))) {
            letters.remove_prefix(1);
        }
    }
    return letters.empty();
}

// The line of the protocol on which a line of the assembler begins.
int shown_line(const View &view, int line) {
    return view.document.position_of(view.analysis.line_begin(line)).line;
}

void add_comments(const View &view, std::vector<FoldingRange> &ranges) {
    const auto is_comment = [&](int line) {
        return view.analysis.facts(line).kind == door::LineKind::kComment;
    };
    for (int line = 1; line <= view.analysis.line_count(); ++line) {
        const int first = line;
        while (is_comment(line) && is_comment(line + 1)) {
            ++line;
        }
        if (line > first) {
            ranges.push_back({shown_line(view, first), shown_line(view, line), true});
        }
    }
}

bool is_inside(const Range &inner, const Range &outer) {
    return !(inner.start < outer.start) && !(outer.end < inner.end);
}

bool is_same(const Range &one, const Range &other) {
    return one.start == other.start && one.end == other.end;
}

// Leaves out what does not hold all before it, or is no more than that.
void add_selection(const Range &range, std::vector<Range> &ranges) {
    if (ranges.empty() || (is_inside(ranges.back(), range) && !is_same(ranges.back(), range))) {
        ranges.push_back(range);
    }
}

// The word that begins or goes on at a place, else the one that ends there; or nothing of the line.
Range word_at(const View &view, const View::Spot &spot) {
    Token word = {TokenKind::kComment, spot.offset, spot.offset};
    for (const Token &token : view.tokens(spot.line)) {
        if (token.begin <= spot.offset && spot.offset <= token.end) {
            word = token;
        }
    }
    return view.range_of(spot.line, word.begin, word.end);
}

} // namespace

std::vector<Symbol> symbols(const View &view) {
    struct Defined {
        const NameFacts *name;
        door::Place place;
    };
    std::vector<Defined> all;
    for (const NameFacts &name : view.analysis.names) {
        for (const door::Place &place : name.definitions) {
            all.push_back({&name, place});
        }
    }
    std::sort(all.begin(), all.end(), [](const Defined &one, const Defined &other) {
        return is_before(one.place, other.place);
    });
    std::vector<Symbol> found(all.size());
    std::transform(all.begin(), all.end(), found.begin(), [&](const Defined &each) {
        return Symbol{each.name->name, in_both_bases(each.name->value), kind_of(each.name->kind),
                      view.range_of_line(each.place.line), view.range_of(each.place)};
    });
    return found;
}

std::vector<Symbol> matching(std::vector<Symbol> all, const std::string &letters) {
    std::erase_if(all, [&](const Symbol &each) { return !holds_letters(each.name, letters); });
    return all;
}

std::vector<FoldingRange> folding_ranges(const View &view) {
    std::vector<FoldingRange> ranges;
    for (const BlockFacts &block : view.analysis.blocks) {
        const int last = block.last == 0 ? view.analysis.line_count() : block.last - 1;
        if (last > block.first) {
            ranges.push_back({shown_line(view, block.first), shown_line(view, last), false});
        }
    }
    add_comments(view, ranges);
    std::sort(ranges.begin(), ranges.end(), [](const FoldingRange &one, const FoldingRange &other) {
        return one.first != other.first ? one.first < other.first : one.last > other.last;
    });
    return ranges;
}

std::vector<Range> selection_ranges(const View &view, Position position) {
    const View::Spot spot = view.spot_at(position);
    std::vector<Range> ranges;
    const LineFacts &facts = view.analysis.facts(spot.line);
    ranges.push_back(word_at(view, spot));
    if (facts.operand.has_column()) {
        add_selection(view.range_of(facts.operand), ranges);
    }
    add_selection(view.range_of_line(spot.line), ranges);
    // The innermost block ends first.
    for (const BlockFacts &block : view.analysis.blocks) {
        if (block.first <= spot.line && (spot.line <= block.last || block.last == 0)) {
            const int last = block.last == 0 ? view.analysis.line_count() : block.last;
            add_selection({view.range_of_line(block.first).start, view.range_of_line(last).end},
                          ranges);
        }
    }
    add_selection(view.document.range_of(0, view.text().size()), ranges);
    return ranges;
}

std::vector<CodeLens> code_lenses(const View &view) {
    const std::size_t used = kCells - view.analysis.memory.count(CellKind::kFree);
    return {
        {{{0, 0}, {0, 0}}, std::to_string(used) + " of " + std::to_string(kCells) + " bytes used"}};
}

} // namespace lsp
