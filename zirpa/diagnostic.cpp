#include "zirpa/diagnostic.h"

#include <algorithm>
#include <tuple>

namespace {

bool is_continuation(char ch) { return (static_cast<unsigned char>(ch) & 0xC0U) == 0x80; }

// Bytes of the character that a first byte announces; 1 for a byte that begins none.
std::size_t announced_size(unsigned char first) {
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 1;
}

int characters_in(std::string_view text) {
    int count = 0;
    while (!text.empty()) {
        text.remove_prefix(character_size(text));
        ++count;
    }
    return count;
}

// Characters before a byte of the line; a place may lie beyond its last one.
int characters_before(const std::string &text, int byte) {
    const auto size = static_cast<int>(text.size());
    const int inside = std::min(byte, size);
    return characters_in(std::string_view(text).substr(0, static_cast<std::size_t>(inside))) +
           (byte - inside);
}

} // namespace

std::string_view name_of(Severity severity) {
    return severity == Severity::kError ? "error" : "warning";
}

Diagnostic error_of_file(std::string id, std::string file, std::string message) {
    Diagnostic diagnostic;
    diagnostic.id = std::move(id);
    diagnostic.file = std::move(file);
    diagnostic.message = std::move(message);
    return diagnostic;
}

void offer_words(Diagnostic &diagnostic, const std::vector<std::string> &words) {
    for (const std::string &word : words) {
        offer_text(diagnostic, "Replace by " + word, word);
    }
}

void offer_text(Diagnostic &diagnostic, std::string title, std::string text) {
    diagnostic.fixes.push_back(
        {std::move(title), diagnostic.place.without_text(), std::move(text)});
}

std::size_t character_size(std::string_view text) {
    const std::size_t size = announced_size(static_cast<unsigned char>(text[0]));
    if (size > text.size() ||
        !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(size),
                     is_continuation)) {
        return 1;
    }
    return size;
}

CharacterRange characters_of(const SourcePlace &place) {
    if (place.first == 0) {
        return {};
    }
    const int begin = characters_before(place.text, place.first - 1) + 1;
    return {begin, std::max(begin, characters_before(place.text, place.last)) + 1};
}

void sort_by_place(std::vector<Diagnostic> &diagnostics) {
    std::stable_sort(diagnostics.begin(), diagnostics.end(),
                     [](const Diagnostic &one, const Diagnostic &other) {
                         return std::tie(one.place.line, one.place.first) <
                                std::tie(other.place.line, other.place.first);
                     });
}

std::size_t count_of(const std::vector<Diagnostic> &diagnostics, Severity severity) {
    return static_cast<std::size_t>(
        std::count_if(diagnostics.begin(), diagnostics.end(),
                      [=](const Diagnostic &each) { return each.severity == severity; }));
}
