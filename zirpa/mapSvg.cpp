// Colours are told apart by people who see few of them too, and each kind has a pattern of its own
// where colours are not enough: a frame for what is written twice, no fill for what is free.
#include "zirpa/memoryMap.h"

namespace {

constexpr int kCellWidth = 40;
constexpr int kCellHeight = 34;
constexpr int kLeft = 48;
constexpr int kTop = 72;
constexpr int kColumns = static_cast<int>(kColumnsOfMap);
constexpr int kWidth = kLeft + kColumns * kCellWidth + 24;
constexpr int kGridBottom = kTop + kColumns * kCellHeight;
constexpr int kHeight = kGridBottom + 72;
constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kLongestName = 6; // characters that a cell has room for

constexpr std::array<std::string_view, kCellKinds> kClasses = {"free", "code", "data", "reserved",
                                                               "twice"};

constexpr std::string_view kStyle =
    "text{font-family:ui-monospace,Menlo,Consolas,monospace;fill:#1a1a1a}"
    ".title{font-size:18px;font-weight:bold}.axis{font-size:12px;fill:#555}"
    ".byte{font-size:13px}.name{font-size:9px}.legend{font-size:13px}"
    ".free{fill:#f0f0f0}.code{fill:#8ec7e8}.data{fill:#f5c77e}"
    ".reserved{fill:#cfcfcf}.twice{fill:#e98b8b;stroke:#a00000;stroke-width:2}";

std::string number(int value) { return std::to_string(value); }

std::string escaped(std::string_view text) {
    std::string result;
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        switch (ch) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += byte < 0x20 || byte >= 0x7F ? '?' : ch; break;
        }
    }
    return result;
}

std::string byte_text(std::uint8_t byte) { return {kDigits[byte >> 4U], kDigits[byte & 0xFU]}; }

std::string text_at(int x, int y, std::string_view style, std::string_view text,
                    std::string_view anchor = "middle") {
    return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" class=\"" + std::string(style) +
           "\" text-anchor=\"" + std::string(anchor) + "\">" + escaped(text) + "</text>\n";
}

std::string_view class_of(CellKind kind) { return kClasses[static_cast<std::size_t>(kind)]; }

std::string rectangle(int x, int y, int width, int height, CellKind kind) {
    return "<rect x=\"" + number(x) + "\" y=\"" + number(y) + "\" width=\"" + number(width) +
           "\" height=\"" + number(height) + "\" class=\"" + std::string(class_of(kind)) + "\"/>\n";
}

std::string label_of(const MemoryMap &memory, std::size_t address) {
    const auto label = memory.labels.find(static_cast<std::uint32_t>(address));
    return label == memory.labels.end() ? std::string() : label->second.front();
}

// The whole names are shown where the pointer rests.
std::string cell_svg(const MemoryMap &memory, std::size_t address) {
    const Cell &cell = memory.cells[address];
    const int x = kLeft + static_cast<int>(address % kColumnsOfMap) * kCellWidth;
    const int y = kTop + static_cast<int>(address / kColumnsOfMap) * kCellHeight;
    const std::string name = label_of(memory, address);
    std::string text = "<g><title>" + byte_text(static_cast<std::uint8_t>(address)) + " " +
                       std::string(name_of(cell.kind)) + escaped(name.empty() ? "" : " " + name) +
                       "</title>\n" +
                       rectangle(x + 1, y + 1, kCellWidth - 2, kCellHeight - 2, cell.kind);
    if (cell.kind != CellKind::kFree && cell.kind != CellKind::kReserved) {
        text += text_at(x + kCellWidth / 2, y + 28, "byte", byte_text(cell.byte));
    }
    if (!name.empty()) {
        const bool is_cut = name.size() > kLongestName;
        text += text_at(x + 3, y + 11, "name",
                        is_cut ? name.substr(0, kLongestName - 1) + "~" : name, "start");
    }
    return text + "</g>\n";
}

std::string axes() {
    std::string text;
    for (int i = 0; i < kColumns; ++i) {
        const std::string digit(1, kDigits[static_cast<std::size_t>(i)]);
        text += text_at(kLeft + i * kCellWidth + kCellWidth / 2, kTop - 8, "axis", digit);
        text += text_at(kLeft - 10, kTop + i * kCellHeight + 22, "axis", digit + "0", "end");
    }
    return text;
}

std::string legend(const MemoryMap &memory) {
    static constexpr std::array<CellKind, kCellKinds> kOrder = {
        CellKind::kCode, CellKind::kData, CellKind::kReserved, CellKind::kTwice, CellKind::kFree};
    std::string text;
    int x = kLeft;
    for (const CellKind kind : kOrder) {
        const std::string words =
            std::string(name_of(kind)) + " " + std::to_string(memory.count(kind));
        text += rectangle(x, kGridBottom + 18, 16, 16, kind);
        text += text_at(x + 22, kGridBottom + 31, "legend", words, "start");
        x += 22 + static_cast<int>(words.size()) * 8 + 18;
    }
    if (memory.beyond > 0) {
        text += text_at(kLeft, kGridBottom + 56, "legend",
                        std::to_string(memory.beyond) + " above FF", "start");
    }
    return text;
}

} // namespace

std::string svg_of(const MemoryMap &memory, const std::string &title) {
    const std::string size = number(kWidth) + " " + number(kHeight);
    std::string text = R"(<svg xmlns="http://www.w3.org/2000/svg" role="img" viewBox="0 0 )" +
                       size + R"(" width=")" + number(kWidth) + R"(" height=")" + number(kHeight) +
                       "\">\n";
    text += "<title>Memory map of " + escaped(title) + "</title>\n<style>" + std::string(kStyle) +
            "</style>\n";
    text +=
        R"(<path d="M0 0H)" + number(kWidth) + "V" + number(kHeight) + "H0Z\" fill=\"#fff\"/>\n";
    text += text_at(kLeft, 32, "title", title, "start") + axes();
    for (std::size_t address = 0; address < kCells; ++address) {
        text += cell_svg(memory, address);
    }
    return text + legend(memory) + "</svg>\n";
}
