// The caret line repeats the tabs of the source line, so that carets stand right whatever a tab's
// width is, and has two blanks for a character that terminals show in two columns.
#include "zirpa/formats.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr std::size_t kNumberWidth = 5;

// ---- Colours ----

struct Style {
    std::string_view bold;
    std::string_view error;
    std::string_view warning;
    std::string_view note;
    std::string_view caret;
    std::string_view end;
};

constexpr Style kPlain = {"", "", "", "", "", ""};
constexpr Style kColoured = {"\x1b[1m",    "\x1b[1;31m", "\x1b[1;35m",
                             "\x1b[1;36m", "\x1b[1;32m", "\x1b[0m"};

// ---- Characters ----

std::uint32_t code_point(std::string_view character) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
    switch (character.size()) {
    case 2: return (byte(0) & 0x1FU) << 6U | (byte(1) & 0x3FU);
    case 3: return (byte(0) & 0xFU) << 12U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU);
    case 4:
        return (byte(0) & 7U) << 18U | (byte(1) & 0x3FU) << 12U | (byte(2) & 0x3FU) << 6U |
               (byte(3) & 0x3FU);
    default: return byte(0);
    }
}

struct Range {
    std::uint32_t first;
    std::uint32_t last;

    bool holds(std::uint32_t code) const { return first <= code && code <= last; }
};

// Letters and signs of East Asia, and pictures.
constexpr std::array<Range, 8> kWide = {{{0x1100, 0x115F},
                                         {0x2E80, 0xA4CF},
                                         {0xAC00, 0xD7A3},
                                         {0xF900, 0xFAFF},
                                         {0xFE30, 0xFE6F},
                                         {0xFF00, 0xFF60},
                                         {0x1F300, 0x1FAFF},
                                         {0x20000, 0x3FFFD}}};

// Marks that stand with the character before them, and what is not shown at all.
constexpr std::array<Range, 5> kNarrow = {
    {{0x300, 0x36F}, {0x200B, 0x200F}, {0x202A, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}}};

template <typename Ranges> bool is_in(const Ranges &ranges, std::uint32_t code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [=](const Range &range) { return range.holds(code); });
}

// What a terminal would obey instead of showing: controls but the tab, and marks of direction.
bool is_obeyed(std::uint32_t code) {
    return (code < 0x20 && code != '\t') || (code >= 0x7F && code < 0xA0) || is_in(kNarrow, code);
}

bool is_faulty_byte(std::string_view character, std::uint32_t code) {
    return character.size() == 1 && code >= 0x80;
}

std::string shown_character(std::string_view character) {
    const std::uint32_t code = code_point(character);
    return is_obeyed(code) || is_faulty_byte(character, code) ? "?" : std::string(character);
}

std::string blanks_for(std::string_view character) {
    const std::uint32_t code = code_point(character);
    return character == "\t" ? "\t" : is_in(kWide, code) ? "  " : " ";
}

// The text as a terminal may have it.
std::string shown(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t size = character_size(text);
        result += shown_character(text.substr(0, size));
        text.remove_prefix(size);
    }
    return result;
}

// ---- Pieces ----

std::string place_of(const std::string &file, const SourcePlace &place) {
    std::string text = shown(file) + ":";
    if (place.line > 0) {
        text += std::to_string(place.line) + ":";
        if (const int column = characters_of(place).begin; column > 0) {
            text += std::to_string(column) + ":";
        }
    }
    return text;
}

std::string gutter(const std::string &number) {
    return std::string(kNumberWidth - std::min(kNumberWidth, number.size()), ' ') + number + " | ";
}

// Blanks up to the first caret, then a caret and a wave for each further character.
std::string carets(const SourcePlace &place) {
    std::string line;
    std::string_view rest = place.text;
    int byte = 1;
    const auto add = [&](std::string_view blanks) {
        const char mark = byte == place.first ? '^' : '~';
        line += byte < place.first ? std::string(blanks) : std::string(blanks.size(), mark);
    };
    for (; !rest.empty() && byte <= place.last; rest.remove_prefix(character_size(rest))) {
        const std::string_view character = rest.substr(0, character_size(rest));
        const std::string blanks = blanks_for(character);
        add(byte >= place.first && blanks == "\t" ? " " : blanks);
        byte += static_cast<int>(character.size());
    }
    for (; byte <= place.last; ++byte) {
        add(" ");
    }
    return line;
}

std::string source_of(const SourcePlace &place, const std::string &hint, const Style &style) {
    if (place.line == 0) {
        return {};
    }
    std::string text = gutter(std::to_string(place.line)) + shown(place.text) + "\n";
    if (place.first == 0) {
        return hint.empty() ? text : text + gutter("") + shown(hint) + "\n";
    }
    text += gutter("");
    text += style.caret;
    text += carets(place);
    text += style.end;
    return text + (hint.empty() ? "" : " " + shown(hint)) + "\n";
}

std::string text_of(const Diagnostic &diagnostic, const Style &style) {
    const bool is_error = diagnostic.severity == Severity::kError;
    std::string text;
    text += style.bold;
    text += place_of(diagnostic.file, diagnostic.place);
    text += style.end;
    text += " ";
    text += is_error ? style.error : style.warning;
    text += name_of(diagnostic.severity);
    text += ":";
    text += style.end;
    text += " " + shown(diagnostic.message) + " [" + diagnostic.id + "]\n";
    text += source_of(diagnostic.place, diagnostic.hint, style);
    for (const Note &note : diagnostic.notes) {
        text += place_of(diagnostic.file, note.place) + " ";
        text += style.note;
        text += "note:";
        text += style.end;
        text += " " + shown(note.message) + "\n" + source_of(note.place, {}, style);
    }
    return text;
}

std::string counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

} // namespace

std::string text_of(const std::vector<Diagnostic> &diagnostics, bool is_coloured) {
    std::string text;
    for (const Diagnostic &diagnostic : diagnostics) {
        text += text_of(diagnostic, is_coloured ? kColoured : kPlain);
    }
    return text;
}

std::string summary_of(std::size_t errors, std::size_t warnings) {
    std::string text = errors > 0 ? counted(errors, "error") : "";
    if (warnings > 0) {
        text += (text.empty() ? "" : ", ") + counted(warnings, "warning");
    }
    return text.empty() ? text : text + "\n";
}
