#include "zirpa/lsp/document.h"

#include <algorithm>
#include <iterator>

namespace lsp {

namespace {

bool is_continuation(char ch) { return (static_cast<unsigned char>(ch) & 0xC0U) == 0x80U; }

// What the character that begins with a byte counts in UTF-16.
int units_of(char first) { return static_cast<unsigned char>(first) >= 0xF0U ? 2 : 1; }

// The offset after a line end at or after an offset; npos after the last one.
std::size_t next_start(std::string_view text, std::size_t offset) {
    const std::size_t end = text.find_first_of("\r\n", offset);
    if (end == std::string_view::npos) {
        return end;
    }
    return end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
}

std::size_t begin_of_character(std::string_view text, std::size_t offset) {
    while (offset > 0 && offset < text.size() && is_continuation(text[offset])) {
        --offset;
    }
    return offset;
}

std::size_t bytes_of_units(std::string_view line, int units) {
    std::size_t offset = 0;
    while (offset < line.size()) {
        const int size = units_of(line[offset]);
        if (units < size) {
            break;
        }
        units -= size;
        do {
            ++offset;
        } while (offset < line.size() && is_continuation(line[offset]));
    }
    return offset;
}

int units_in(std::string_view text) {
    int units = 0;
    for (const char ch : text) {
        units += is_continuation(ch) ? 0 : units_of(ch);
    }
    return units;
}

} // namespace

Document::Document(std::string_view text, Encoding encoding) : starts_{0}, encoding_(encoding) {
    replace(0, 0, text);
}

std::string_view Document::line(std::size_t index) const {
    if (index >= starts_.size()) {
        return {};
    }
    const std::size_t begin = starts_[index];
    const std::string_view rest = std::string_view(text_).substr(begin);
    return index + 1 == starts_.size()
               ? rest
               : rest.substr(
                     0, rest.substr(0, starts_[index + 1] - begin).find_last_not_of("\r\n") + 1);
}

std::size_t Document::offset_of(Position position) const {
    const auto index = static_cast<std::size_t>(position.line);
    if (index >= starts_.size()) {
        return text_.size();
    }
    const std::string_view text = line(index);
    const auto character = static_cast<std::size_t>(position.character);
    const std::size_t offset = encoding_ == Encoding::kUtf16
                                   ? bytes_of_units(text, position.character)
                                   : begin_of_character(text, std::min(character, text.size()));
    return starts_[index] + offset;
}

Position Document::position_of(std::size_t offset) const {
    offset = begin_of_character(text_, std::min(offset, text_.size()));
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), offset);
    const auto index = static_cast<std::size_t>(std::distance(starts_.begin(), next)) - 1;
    const std::string_view before =
        std::string_view(text_).substr(starts_[index], offset - starts_[index]);
    const int character =
        encoding_ == Encoding::kUtf16 ? units_in(before) : static_cast<int>(before.size());
    return {static_cast<int>(index), character};
}

Range Document::range_of(std::size_t begin, std::size_t end) const {
    return {position_of(begin), position_of(std::max(begin, end))};
}

void Document::apply(const ContentChange &change) {
    if (!change.range) {
        replace(0, text_.size(), change.text);
        return;
    }
    const std::size_t begin = offset_of(change.range->start);
    const std::size_t end = offset_of(change.range->end);
    replace(std::min(begin, end), std::max(begin, end), change.text);
}

// Lines are looked for anew from the one before the change, whose end may have been the first half
// of a CR LF, up to the first one that begins beyond the change.
void Document::replace(std::size_t begin, std::size_t end, std::string_view text) {
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), begin > 0 ? begin - 1 : 0);
    const auto first = after == starts_.begin() ? after : std::prev(after);
    const auto last = std::upper_bound(first, starts_.end(), end + 1);
    const std::size_t from = *first;
    text_.replace(begin, end - begin, text);
    std::vector<std::size_t> rest(last, starts_.end());
    for (std::size_t &start : rest) {
        start += text.size() - (end - begin);
    }
    starts_.erase(std::next(first), starts_.end());
    for (std::size_t start = next_start(text_, from);
         start != std::string::npos && (rest.empty() || start < rest.front());
         start = next_start(text_, start)) {
        starts_.push_back(start);
    }
    starts_.insert(starts_.end(), rest.begin(), rest.end());
}

} // namespace lsp
