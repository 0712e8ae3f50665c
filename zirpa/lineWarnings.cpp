#include "zirpa/suggest.h"
#include "zirpa/warnings.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

using Text = std::string_view;

door::Place piece(const door::Line &line, std::size_t begin, std::size_t end) {
    return {line.line, static_cast<int>(begin) + 1, static_cast<int>(end)};
}

constexpr Text kBlanks = " \t";

std::size_t skip_blanks(Text text, std::size_t i) {
    return std::min(text.find_first_not_of(kBlanks, i), text.size());
}

Text without_blanks(Text text) { return text.substr(0, text.find_last_not_of(kBlanks) + 1); }

// ---- Characters that can't be seen ----

// A character and what it is called, or nothing if it can be seen. A byte-order mark at the
// beginning has a warning of its own.
struct Invisible {
    Text bytes;
    Text name;
};

constexpr std::array kInvisible = std::to_array<Invisible>({
    {"\xC2\xA0", "a no-break space (U+00A0)"},
    {"\xC2\xAD", "a soft hyphen (U+00AD)"},
    {"\xE2\x80\x8B", "a zero-width space (U+200B)"},
    {"\xE2\x80\x8C", "a zero-width non-joiner (U+200C)"},
    {"\xE2\x80\x8D", "a zero-width joiner (U+200D)"},
    {"\xE2\x80\x8E", "a mark of direction (U+200E)"},
    {"\xE2\x80\x8F", "a mark of direction (U+200F)"},
    {"\xE2\x80\xAF", "a narrow no-break space (U+202F)"},
    {"\xEF\xBB\xBF", "a byte-order mark (U+FEFF)"},
    {"\r", "a carriage return"},
    {"\v", "a vertical tab"},
    {"\f", "a form feed"},
    {"\x1A", "an end-of-file mark (U+001A)"},
    {"\x7F", "a delete (U+007F)"},
});

constexpr Text kByteOrderMark = "\xEF\xBB\xBF";

bool is_surely_visible(char ch) { return (ch >= ' ' && ch < '\x7F') || ch == '\t'; }

const Invisible *invisible_at(Text text, std::size_t i) {
    const auto *row =
        std::find_if(kInvisible.begin(), kInvisible.end(),
                     [&](const Invisible &each) { return text.substr(i).starts_with(each.bytes); });
    return row == kInvisible.end() ? nullptr : row;
}

// What is read of a line: up to the character that ends its operand, or to its comment.
std::size_t end_of_code(const door::Line &line) {
    if (line.operand.has_column()) {
        return std::min(static_cast<std::size_t>(line.operand.last) + 1, line.source.size());
    }
    return std::min(line.source.find(';'), line.source.size());
}

// ---- What stands behind an operand ----

constexpr Text kOperators = "+-*/&|^<>=!%,";

// The value that begins a text, and its size; 0 for none.
std::size_t value_size(Text text) {
    if (text.empty()) {
        return 0;
    }
    if (text[0] == '\'') {
        return text.size() > 2 && text[2] == '\'' ? 3 : 0;
    }
    std::size_t size = text[0] == '$' || text[0] == '%' ? 1 : 0;
    while (size < text.size() && door::is_name_character(text[size])) {
        ++size;
    }
    return size > 1 || door::is_name_character(text[0]) ? size : 0;
}

// The names of a text that goes on with an operand: operators and values in turn up to its end.
// Nothing for any other text.
std::optional<std::vector<std::string>> names_of_continuation(Text text) {
    std::vector<std::string> names;
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t begin = i;
        while (i < text.size() && kOperators.find(text[i]) != Text::npos) {
            ++i;
        }
        const std::size_t value = skip_blanks(text, i);
        const std::size_t size = value_size(text.substr(value));
        if (i == begin || size == 0) {
            return std::nullopt;
        }
        const Text word = text.substr(value, size);
        if (door::begins_name(word[0]) && !door::is_register(word)) {
            names.emplace_back(word);
        }
        i = value + size;
        // A step of an index register.
        if (door::is_register(word) && i < text.size() && (text[i] == '+' || text[i] == '-')) {
            ++i;
        }
        i = skip_blanks(text, i);
    }
    return names;
}

bool takes_operand(const door::Line &line) {
    if (line.kind == door::LineKind::kDirective) {
        return !is_directive(line, "END");
    }
    return line.kind == door::LineKind::kInstruction &&
           !door::operands_of(text_at(line, line.operation)).empty();
}

// ---- Texts ----

void note_escapes(const door::Line &line, std::size_t begin, std::size_t end,
                  std::vector<Diagnostic> &findings) {
    const Text text = line.source;
    for (std::size_t i = begin; i + 1 < end; ++i) {
        if (text[i] != '\\') {
            continue;
        }
        if (text[i + 1] == 't') {
            findings.push_back(warning("tab-escape", piece(line, i, i + 2),
                                       "'\\t' is a vertical tab here",
                                       "FCB 9 is a horizontal one"));
        } else if (door::is_digit(text[i + 1]) && i + 2 < end && door::is_digit(text[i + 2])) {
            findings.push_back(warning("two-digit-escape", piece(line, i, i + 3),
                                       "a backslash takes one digit: '" +
                                           std::string(1, text[i + 2]) + "' is text"));
        }
        ++i;
    }
}

void note_text(const door::Line &line, std::vector<Diagnostic> &findings) {
    const Text text = line.source;
    const auto begin = static_cast<std::size_t>(line.operand.first) - 1;
    const auto end = static_cast<std::size_t>(line.operand.last);
    if (begin + 1 < end && text[begin + 1] == '"') {
        findings.push_back(warning("quote-as-character", piece(line, begin + 1, begin + 2),
                                   "this quote is the first character of the text",
                                   "there is no empty text; write \\\" for a quote"));
    }
    note_escapes(line, begin + 1, end - 1, findings);
}

// Where a directive stops reading its operand, in the line.
std::size_t end_of_reading(const door::Line &line) {
    const auto begin = static_cast<std::size_t>(line.operand.first) - 1;
    const auto end = static_cast<std::size_t>(line.operand.last);
    if (is_directive(line, "FCS")) {
        return end;
    }
    return std::min(line.source.find_first_of(",:[]{}", begin), end);
}

} // namespace

void LineWarnings::note_characters(const door::Line &line) {
    const Text text = line.source;
    std::size_t i = 0;
    if (line.line == 1 && text.starts_with(kByteOrderMark)) {
        findings.push_back(
            warning("byte-order-mark", piece(line, 0, kByteOrderMark.size()),
                    "the source begins with a byte-order mark, which counts as blanks",
                    "save it as UTF-8 without one"));
        offer_text(findings.back(), "Remove the byte-order mark", "");
        i = kByteOrderMark.size();
    }
    const bool is_text = is_directive(line, "FCS");
    const std::size_t end =
        is_text ? static_cast<std::size_t>(line.operation.last) : end_of_code(line);
    // Hardly any line has such a character.
    if (std::all_of(text.begin(), text.end(), is_surely_visible)) {
        return;
    }
    for (; i < end; ++i) {
        if (const Invisible *found = invisible_at(text, i); found != nullptr) {
            findings.push_back(
                warning("invisible-character", piece(line, i, i + found->bytes.size()),
                        "this is " + std::string(found->name) + ", which counts as a blank"));
            offer_text(findings.back(), "Replace it by a blank", " ");
            return;
        }
    }
}

// True when there is something right after what a directive reads.
bool LineWarnings::note_dropped(const door::Line &line, std::string_view reader) {
    const Text text = line.source;
    const std::size_t read = end_of_reading(line);
    if (read >= std::min(text.find(';', read), text.size()) || text[read] <= ' ') {
        return false;
    }
    const std::size_t word = std::min(text.find_first_of(" \t;", read), text.size());
    findings.push_back(warning("dropped-text", piece(line, read, word),
                               "this is not read: " + std::string(reader)));
    return true;
}

void LineWarnings::note_tail(const door::Line &line) {
    const Text text = line.source;
    const std::size_t begin = skip_blanks(text, static_cast<std::size_t>(line.operand.last));
    const Text tail = without_blanks(text.substr(begin, text.find(';', begin) - begin));
    if (tail.empty()) {
        return;
    }
    auto names = names_of_continuation(tail);
    if (names && takes_operand(line)) {
        computed.push_back({piece(line, begin, begin + tail.size()), std::move(*names)});
    }
}

// END ends the source where it stands alone or before a name.
void LineWarnings::note_end(const door::Line &line) {
    const Text text = line.source;
    const std::size_t begin = skip_blanks(text, static_cast<std::size_t>(line.operation.last));
    if (begin < text.size() && !door::begins_name(text[begin])) {
        findings.push_back(warning("end-with-comment", piece(line, begin, text.size()),
                                   "this keeps END from ending the source",
                                   text[begin] == ';' ? "move the comment to a line of its own"
                                                      : "the start address is given by a label"));
    }
}

void LineWarnings::take(const door::Line &line, bool is_faulty) {
    note_characters(line);
    if (line.kind == door::LineKind::kConditional) {
        conditionals_[line.line] = line.operation;
    }
    if (line.kind == door::LineKind::kSkipped) {
        const Text word = text_at(line, line.operation);
        if (word == "#if") {
            findings.push_back(warning("single-hash-if", line.operation,
                                       "#if with one hash opens no conditional",
                                       "an expression is tested by ##if"));
            offer_words(findings.back(), {"##if"});
        }
        return;
    }
    if (is_directive(line, "END")) {
        note_end(line);
    }
    if (is_faulty || !line.operand.has_column()) {
        return;
    }
    if (is_directive(line, "FCS")) {
        note_text(line, findings);
    }
    const bool is_dropped =
        (is_directive(line, "FCS") && note_dropped(line, "FCS takes one text")) ||
        (is_directive(line, "ORG") && note_dropped(line, "ORG takes one value")) ||
        (is_directive(line, "EQU") && note_dropped(line, "EQU takes one value"));
    if (!is_dropped) {
        note_tail(line);
    }
}

void LineWarnings::take(const door::Block &block) {
    const auto opened = conditionals_.find(block.first);
    if (block.last == 0 && opened != conditionals_.end()) {
        findings.push_back(
            warning("open-conditional", opened->second, "this conditional has no #endif"));
    }
}
