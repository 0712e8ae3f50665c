#include "dis/pieces.h"

#include <algorithm>

namespace dis {

namespace {

// Fewer characters are as likely to be numbers.
constexpr std::uint32_t kShortestText = 4;
constexpr std::uint32_t kLongestText = 40; // bytes of a line
constexpr std::uint32_t kBytesOfLine = 8;
constexpr std::uint32_t kFewestZeros = 2;

constexpr std::uint8_t kLineFeed = 10;
constexpr std::uint8_t kReturn = 13;

bool is_printing(std::uint8_t byte) { return byte >= 0x20 && byte < 0x7F; }

bool is_of_text(std::uint8_t byte) {
    return is_printing(byte) || byte == kLineFeed || byte == kReturn;
}

class Splitter {
  public:
    Splitter(const Image &image, std::vector<Item> &items) : image_(image), items_(items) {}

    void unknown(std::uint32_t begin, std::uint32_t end);
    void data(std::uint32_t begin, std::uint32_t end);
    void text(std::uint32_t begin, std::uint32_t end);
    void lines(ItemKind kind, std::uint32_t begin, std::uint32_t end);

  private:
    std::uint32_t end_of_text(std::uint32_t begin, std::uint32_t end) const;
    std::uint32_t end_of_zeros(std::uint32_t begin, std::uint32_t end) const;
    std::uint32_t end_of_text_line(std::uint32_t begin, std::uint32_t end) const;

    const Image &image_;
    std::vector<Item> &items_;
};

// The end of the text that begins there, with a zero that closes it; the beginning if there is
// none.
std::uint32_t Splitter::end_of_text(std::uint32_t begin, std::uint32_t end) const {
    std::uint32_t at = begin;
    std::uint32_t printing = 0;
    while (at < end && is_of_text(image_.at(at)) && (at > begin || is_printing(image_.at(at)))) {
        printing += is_printing(image_.at(at++)) ? 1U : 0U;
    }
    if (printing < kShortestText) {
        return begin;
    }
    const bool is_closed =
        at < end && image_.at(at) == 0 && (at + 1 == end || image_.at(at + 1) != 0);
    return is_closed ? at + 1 : at;
}

std::uint32_t Splitter::end_of_zeros(std::uint32_t begin, std::uint32_t end) const {
    while (begin < end && image_.at(begin) == 0) {
        ++begin;
    }
    return begin;
}

// Texts alone are told apart from other data first, so that hints of them bring the same lines
// back.
void Splitter::unknown(std::uint32_t begin, std::uint32_t end) {
    std::uint32_t data_begin = begin;
    for (std::uint32_t at = begin; at < end;) {
        const std::uint32_t text_end = end_of_text(at, end);
        if (text_end == at) {
            ++at;
            continue;
        }
        data(data_begin, at);
        text(at, text_end);
        data_begin = at = text_end;
    }
    data(data_begin, end);
}

void Splitter::data(std::uint32_t begin, std::uint32_t end) {
    std::uint32_t bytes_begin = begin;
    for (std::uint32_t at = begin; at < end;) {
        const std::uint32_t zeros_end = end_of_zeros(at, end);
        const bool is_all = at == begin && zeros_end == end;
        if (zeros_end - at < kFewestZeros && !is_all) {
            at = zeros_end > at ? zeros_end : at + 1;
            continue;
        }
        lines(ItemKind::kBytes, bytes_begin, at);
        items_.push_back({ItemKind::kZeros, at, zeros_end - at});
        bytes_begin = at = zeros_end;
    }
    lines(ItemKind::kBytes, bytes_begin, end);
}

// A zero ends a line, as it ends a text.
std::uint32_t Splitter::end_of_text_line(std::uint32_t begin, std::uint32_t end) const {
    std::uint32_t at = begin;
    while (at < end && at - begin < kLongestText && in_text(image_.at(at))) {
        if (image_.at(at++) == 0) {
            break;
        }
    }
    return at;
}

void Splitter::text(std::uint32_t begin, std::uint32_t end) {
    while (begin < end) {
        const std::uint32_t line_end = end_of_text_line(begin, end);
        if (line_end > begin) {
            items_.push_back({ItemKind::kText, begin, line_end - begin});
            begin = line_end;
            continue;
        }
        std::uint32_t odd_end = begin;
        while (odd_end < end && !in_text(image_.at(odd_end))) {
            ++odd_end;
        }
        lines(ItemKind::kBytes, begin, odd_end);
        begin = odd_end;
    }
}

void Splitter::lines(ItemKind kind, std::uint32_t begin, std::uint32_t end) {
    for (; begin < end; begin += kBytesOfLine) {
        items_.push_back({kind, begin, std::min(kBytesOfLine, end - begin)});
    }
}

} // namespace

// Quirk (one-digit) and quirk (vertical-tab) make these escapes what they are.
std::optional<std::string> in_text(std::uint8_t byte) {
    const char ch = static_cast<char>(byte);
    if (byte < 10) {
        return std::string("\\") + static_cast<char>('0' + byte);
    }
    switch (ch) {
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\v': return "\\t";
    case '"': return "\\\"";
    case '\\': return "\\\\";
    default: return is_printing(byte) ? std::optional(std::string(1, ch)) : std::nullopt;
    }
}

void split_data(const Image &image, Cell kind, std::uint32_t begin, std::uint32_t end,
                std::vector<Item> &items) {
    Splitter splitter(image, items);
    switch (kind) {
    case Cell::kText: splitter.text(begin, end); break;
    case Cell::kTable: splitter.lines(ItemKind::kTable, begin, end); break;
    case Cell::kData: splitter.data(begin, end); break;
    default: splitter.unknown(begin, end); break;
    }
}

} // namespace dis
