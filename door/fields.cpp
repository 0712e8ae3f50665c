#include "door/fields.h"

#include "target/scan.h"
#include "util/text.h"

#include <algorithm>
#include <string>

namespace door {

namespace {

bool is_blank_at(std::string_view line, std::size_t i) {
    return i >= line.size() || isblanc(line[i]);
}

std::size_t skip_blanks(std::string_view line, std::size_t i) {
    while (i < line.size() && isblanc(line[i])) {
        ++i;
    }
    return i;
}

std::size_t skip_word(std::string_view line, std::size_t i) {
    while (!is_blank_at(line, i)) {
        ++i;
    }
    return i;
}

bool is_comment_at(std::string_view line, std::size_t i) {
    return i < line.size() && line[i] == ';';
}

// A text goes up to its closing quote, the first of which can't be its first character, or up to
// the end of the line.
std::size_t skip_text(std::string_view line, std::size_t i) {
    for (std::size_t at = i + 1; at < line.size(); ++at) {
        if (line[at] == '\\') {
            ++at;
        } else if (line[at] == '"' && at > i + 1) {
            return at + 1;
        }
    }
    return line.size();
}

Piece operand_piece(std::string_view line, std::size_t i) {
    const std::size_t begin = skip_blanks(line, i);
    if (begin == line.size() || is_comment_at(line, begin)) {
        return {};
    }
    if (line[begin] == '"') {
        return {begin, skip_text(line, begin)};
    }
    // A quoted blank is part of the operand.
    std::size_t end = begin;
    while (!is_blank_at(line, end) || (line[end - 1] == '\'' && end + 1 < line.size() &&
                                       line[end + 1] == '\'' && line[end] == ' ')) {
        ++end;
        if (end == line.size()) {
            break;
        }
    }
    return {begin, end};
}

// The operation and what follows it; a conditional word may stand apart from its hash.
void split_operation(std::string_view line, std::size_t i, Fields &fields) {
    const std::size_t begin = skip_blanks(line, i);
    if (begin == line.size() || is_comment_at(line, begin)) {
        return;
    }
    std::size_t end = begin;
    if (line[begin] == '#') {
        fields.is_conditional = true;
        end = skip_blanks(line, begin + 1);
    }
    end = skip_word(line, end);
    fields.operation = {begin, end};
    fields.operand = operand_piece(line, end);
}

std::size_t skip_label(std::string_view line) {
    std::size_t i = 0;
    while (i < line.size() && is_symbol_char(line[i])) {
        ++i;
    }
    return std::min(i, kNameLimit);
}

Piece one_character(std::size_t at) { return {at, at + 1}; }

// The token at an offset: a quoted character, a word or a character.
Piece token_at(std::string_view line, std::size_t at) {
    if (line.substr(std::min(at, line.size())).starts_with('\'') && line.substr(at).size() > 2 &&
        line[at + 2] == '\'') {
        return {at, at + 3};
    }
    std::size_t end = at;
    while (end < line.size() && is_symbol_char(line[end])) {
        ++end;
    }
    return end > at ? Piece{at, end} : one_character(std::min(at, line.size()));
}

bool is_value_end(char ch) { return ch == ',' || isblanc(ch) || ch == '"'; }

// True when a word is that upper-case one, in any case.
bool is_word(std::string_view word, std::string_view name) {
    return std::equal(word.begin(), word.end(), name.begin(), name.end(),
                      [](char ch, char expected) { return to_upper(ch) == expected; });
}

// The value that ends before an offset, or the register after it.
Piece value_before(std::string_view line, const Fields &fields, std::size_t at) {
    std::size_t begin = std::clamp(at, fields.operand.begin, fields.operand.end);
    const std::string_view operand = line.substr(0, begin);
    const bool is_list =
        operand.find(',', fields.operand.begin) != std::string_view::npos &&
        is_word(line.substr(fields.operation.begin, fields.operation.end - fields.operation.begin),
                "FCB");
    if (!is_list) {
        const std::size_t start =
            fields.operand.begin + (line[fields.operand.begin] == '#' ? 1 : 0);
        return {start, std::min(line.find(',', start), fields.operand.end)};
    }
    const std::size_t end = begin;
    while (begin > fields.operand.begin && !is_value_end(line[begin - 1])) {
        --begin;
    }
    return {begin, end};
}

// The number around its faulty digit.
Piece number_around(std::string_view line, std::size_t at) {
    std::size_t begin = std::min(at, line.size());
    while (begin > 0 && (is_symbol_char(line[begin - 1]) || line[begin - 1] == '%')) {
        --begin;
    }
    std::size_t end = at;
    while (end < line.size() && !is_expression_delimiter(line[end])) {
        ++end;
    }
    return {begin, std::max(end, begin + 1)};
}

Piece divisor_before(std::string_view line, std::size_t at) {
    const std::size_t slash = line.substr(0, at).rfind('/');
    return slash == std::string_view::npos ? one_character(at)
                                           : Piece{slash + 1, std::max(at, slash + 2)};
}

Piece label_or_word(const Fields &fields) {
    return fields.is_conditional ? fields.operand : fields.label;
}

} // namespace

std::string_view without_end(std::string_view line) {
    const std::size_t last = line.find_last_not_of("\r\n");
    return line.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

Fields split(std::string_view line) {
    Fields fields;
    line = without_end(line);
    if (line.empty() || is_comment_at(line, 0)) {
        return fields;
    }
    std::size_t i = 0;
    if (!isblanc(line[0]) && line[0] != '#') {
        fields.label = {0, skip_label(line)};
        i = fields.label.end;
        i += i < line.size() && line[i] == ':' ? 1U : 0U;
    }
    split_operation(line, i, fields);
    return fields;
}

Piece piece_of(Where where, std::string_view line, const Traces &traces) {
    line = without_end(line);
    const Fields fields = split(line);
    const std::size_t here = std::min(traces.scan_position, line.size());
    switch (where) {
    case Where::kFirstWord: return {0, std::max<std::size_t>(skip_word(line, 0), 1)};
    case Where::kLabel: return label_or_word(fields);
    case Where::kConditional:
    case Where::kOperation: return fields.operation;
    case Where::kOperand: return fields.operand.is_empty() ? fields.operation : fields.operand;
    case Where::kValue: return value_before(line, fields, here);
    case Where::kOffset: return token_at(line, traces.offset);
    case Where::kUndefined: return traces.undefined;
    case Where::kDigit: return number_around(line, traces.digit);
    case Where::kHere: return one_character(here);
    case Where::kBefore: return one_character(here > 0 ? here - 1 : 0);
    case Where::kDivisor: return divisor_before(line, here);
    default: return {};
    }
}

} // namespace door
