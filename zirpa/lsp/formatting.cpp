// Only statements that the assembler has read are laid out anew. Comments of whole lines,
// conditional words and skipped blocks stay as they are, but for blanks at their ends.
#include "zirpa/lsp/formatting.h"

#include <algorithm>

namespace lsp {

namespace {

bool is_plain(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char ch) { return ch == '\t' || (ch >= ' ' && ch <= '~'); });
}

// A line that is written field by field.
class Layout {
  public:
    explicit Layout(const Blanks &blanks) : blanks_(blanks) {}

    // At the column, or after one blank where that is passed.
    void put(std::size_t column, std::string_view field) {
        if (field.empty()) {
            return;
        }
        const std::size_t target = text_.empty() ? column : std::max(column, width_ + 1);
        move_to(target);
        text_ += field;
        width_ += field.size();
    }

    const std::string &text() const { return text_; }

  private:
    void move_to(std::size_t column) {
        while (!blanks_.are_spaces && width_ < column) {
            text_ += '\t';
            width_ += blanks_.tab_size - width_ % blanks_.tab_size;
        }
        text_.append(column > width_ ? column - width_ : 0, ' ');
        width_ = std::max(width_, column);
    }

    Blanks blanks_;
    std::string text_;
    std::size_t width_ = 0;
};

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::string_view piece(std::string_view line, const door::Place &place) {
    if (!place.has_column()) {
        return {};
    }
    const auto begin = static_cast<std::size_t>(place.first) - 1;
    return line.substr(begin, static_cast<std::size_t>(place.last) - begin);
}

bool is_statement(door::LineKind kind) {
    return kind == door::LineKind::kInstruction || kind == door::LineKind::kDirective ||
           kind == door::LineKind::kLabel;
}

// Where an instruction takes no operand, what follows it is a comment.
door::Place operand_of(std::string_view line, const LineFacts &facts) {
    const bool is_alone = facts.kind == door::LineKind::kInstruction &&
                          door::operands_of(piece(line, facts.operation)).empty();
    return is_alone ? door::Place{} : facts.operand;
}

std::string laid_out(std::string_view line, const LineFacts &facts, const Columns &columns,
                     const Blanks &blanks) {
    const door::Place operand = operand_of(line, facts);
    const int label = facts.label.last;
    const bool has_colon = label > 0 && static_cast<std::size_t>(label) < line.size() &&
                           line[static_cast<std::size_t>(label)] == ':';
    const int label_end = label + (has_colon ? 1 : 0);
    const int end = std::max({label_end, facts.operation.last, operand.last});
    Layout layout(blanks);
    layout.put(0, line.substr(0, static_cast<std::size_t>(label_end)));
    layout.put(columns.operation, piece(line, facts.operation));
    layout.put(columns.operand, piece(line, operand));
    layout.put(columns.comment, trimmed(line.substr(static_cast<std::size_t>(end))));
    return layout.text();
}

std::string_view without_blanks_at_end(std::string_view line) {
    return line.substr(0, line.find_last_not_of(" \t") + 1);
}

std::string formatted(std::string_view line, const LineFacts &facts, const Columns &columns,
                      const Blanks &blanks) {
    if (!facts.is_told || facts.kind == door::LineKind::kDebugger || !is_plain(line)) {
        return std::string(line);
    }
    return is_statement(facts.kind) ? laid_out(line, facts, columns, blanks)
                                    : std::string(without_blanks_at_end(line));
}

} // namespace

std::vector<TextEdit> formatting(const View &view, int first, int last, const Blanks &blanks) {
    std::vector<TextEdit> edits;
    for (int line = first; line <= last; ++line) {
        const std::string_view text = view.line_text(line);
        std::string better =
            formatted(text, view.analysis.facts(line), view.settings.columns, blanks);
        if (better != text) {
            edits.push_back({view.range_of_line(line), std::move(better)});
        }
    }
    return edits;
}

} // namespace lsp
