// A row holds sixteen addresses, each as its byte with a sign behind it, and names the labels.
#include "zirpa/memoryMap.h"

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::string_view kReset = "\x1b[0m";
constexpr std::string_view kBeyond = "\x1b[1;37;45m"; // of bytes that have no place

// How a kind of cell is shown.
struct Look {
    char sign;
    std::string_view colour;
};
constexpr std::array<Look, kCellKinds> kLooks = {{{' ', "\x1b[2m"},
                                                  {' ', "\x1b[30;46m"},
                                                  {'\'', "\x1b[30;43m"},
                                                  {' ', "\x1b[30;47m"},
                                                  {'!', "\x1b[1;37;41m"}}};

const Look &look_of(CellKind kind) { return kLooks[static_cast<std::size_t>(kind)]; }

std::string hexadecimal(std::size_t value) {
    std::string text;
    do {
        text.insert(text.begin(), kDigits[value & 0xFU]);
        value >>= 4U;
    } while (value > 0);
    return text.size() < 2 ? "0" + text : text;
}

std::string text_of(const Cell &cell) {
    switch (cell.kind) {
    case CellKind::kFree: return ".. ";
    case CellKind::kReserved: return "-- ";
    default: return hexadecimal(cell.byte) + look_of(cell.kind).sign;
    }
}

std::string shaded(std::string_view text, std::string_view colour, bool is_coloured) {
    if (!is_coloured) {
        return std::string(text);
    }
    return std::string(colour) + std::string(text) + std::string(kReset);
}

std::string coloured(std::string_view text, CellKind kind, bool is_coloured) {
    return shaded(text, look_of(kind).colour, is_coloured);
}

std::string names_of_row(const MemoryMap &memory, std::size_t row) {
    std::string text;
    const auto begin = memory.labels.lower_bound(static_cast<std::uint32_t>(row));
    const auto end = memory.labels.lower_bound(static_cast<std::uint32_t>(row + kColumnsOfMap));
    for (auto label = begin; label != end; ++label) {
        text += "  " + hexadecimal(label->first);
        for (const std::string &name : label->second) {
            text += " " + name;
        }
    }
    return text;
}

std::string row_text(const MemoryMap &memory, std::size_t row, bool is_coloured) {
    std::string text = hexadecimal(row) + "  ";
    for (std::size_t i = row; i < row + kColumnsOfMap; ++i) {
        text += coloured(text_of(memory.cells[i]), memory.cells[i].kind, is_coloured);
    }
    text += names_of_row(memory, row);
    text.erase(text.find_last_not_of(' ') + 1);
    return text + "\n";
}

std::string legend(const MemoryMap &memory, bool is_coloured) {
    static constexpr std::array<std::pair<CellKind, std::string_view>, kCellKinds> kSamples = {
        {{CellKind::kCode, "12 "},
         {CellKind::kData, "12'"},
         {CellKind::kReserved, "-- "},
         {CellKind::kTwice, "12!"},
         {CellKind::kFree, ".. "}}};
    std::string text;
    for (const auto &[kind, sample] : kSamples) {
        text += (text.empty() ? "" : "   ") + coloured(sample, kind, is_coloured) + " " +
                std::string(name_of(kind)) + " " + std::to_string(memory.count(kind));
    }
    return text + "\n";
}

} // namespace

std::string picture_of(const MemoryMap &memory, const std::string &title, bool is_coloured) {
    std::string text = title + "\n\n    ";
    for (const char digit : kDigits) {
        text += std::string(" ") + digit + " ";
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += "\n";
    for (std::size_t row = 0; row < kCells; row += kColumnsOfMap) {
        text += row_text(memory, row, is_coloured);
    }
    text += "\n" + legend(memory, is_coloured);
    if (memory.beyond > 0) {
        text += shaded(std::to_string(memory.beyond), kBeyond, is_coloured) + " above FF, from " +
                hexadecimal(memory.first_beyond) + "\n";
    }
    return text;
}
