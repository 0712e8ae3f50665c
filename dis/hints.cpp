#include "dis/hints.h"

#include "dis/lines.h"

#include <algorithm>
#include <array>

namespace dis {

namespace {

constexpr std::array<std::string_view, 5> kWords = {"code", "data", "string", "table", "label"};
constexpr std::size_t kWordColumn = 7;
constexpr std::size_t kLongestLabel = 127;

bool is_letter(char ch) {
    const char upper = static_cast<char>(ch & ~0x20);
    return upper >= 'A' && upper <= 'Z';
}

// A letter, a digit or "_".
bool is_plain(char ch) { return is_letter(ch) || (ch >= '0' && ch <= '9') || ch == '_'; }

bool is_label_character(char ch) { return is_plain(ch) || ch == '$' || ch == '.'; }

// Whether an expression would read a register of that name at the beginning.
bool begins_with(std::string_view text, std::string_view name) {
    return text.size() >= name.size() &&
           std::equal(name.begin(), name.end(), text.begin(),
                      [](char one, char other) { return one == (other & ~0x20); }) &&
           (text.size() == name.size() || !is_plain(text[name.size()]));
}

std::string add_range(HintKind kind, std::string_view operand, Hints &hints) {
    const std::size_t dash = std::min(operand.find('-'), operand.size());
    const auto first = address_of(operand.substr(0, dash));
    const auto last = dash < operand.size() ? address_of(operand.substr(dash + 1)) : first;
    if (!first || !last) {
        return "two addresses up to $FFFF are expected, as $20-$2F";
    }
    if (*last < *first) {
        return "the range ends before it begins";
    }
    hints.ranges.push_back({kind, *first, *last});
    return {};
}

std::string add_name(std::string_view operand, Hints &hints) {
    const std::size_t sign = std::min(operand.find('='), operand.size());
    const auto address = address_of(operand.substr(std::min(sign + 1, operand.size())));
    if (!address) {
        return "a name and an address are expected, as start=$10";
    }
    if (!is_label(operand.substr(0, sign))) {
        return "a label has letters, digits, _, $ and ., begins with a letter or _, and is no "
               "register";
    }
    hints.names.push_back({std::string(operand.substr(0, sign)), *address});
    return {};
}

std::string line_of(HintKind kind, const std::string &operand) {
    std::string line(word_of(kind));
    line.resize(kWordColumn, ' ');
    return line + operand + "\n";
}

std::string address_text(std::uint32_t address) { return "$" + hex_address(address); }

} // namespace

std::string_view word_of(HintKind kind) { return kWords[static_cast<std::size_t>(kind)]; }

void Hints::add(const Hints &other) {
    code.insert(code.end(), other.code.begin(), other.code.end());
    ranges.insert(ranges.end(), other.ranges.begin(), other.ranges.end());
    names.insert(names.begin(), other.names.begin(), other.names.end());
}

std::string add_hint(HintKind kind, std::string_view operand, Hints &hints) {
    if (kind == HintKind::kLabel) {
        return add_name(operand, hints);
    }
    if (kind != HintKind::kCode) {
        return add_range(kind, operand, hints);
    }
    const auto address = address_of(operand);
    if (!address) {
        return "an address up to $FFFF is expected, as $1C, 0x1C or 28";
    }
    hints.code.push_back(*address);
    return {};
}

std::vector<Fault> read_hints(std::string_view content, Hints &hints) {
    Faults faults;
    Lines lines(content);
    while (!faults.is_full() && lines.next()) {
        const std::string_view line = lines.text();
        std::string_view rest = line.substr(0, line.find(';'));
        const std::string_view word = take_word(rest);
        const std::string_view operand = take_word(rest);
        if (word.empty()) {
            continue;
        }
        const auto *known = std::find(kWords.begin(), kWords.end(), word);
        const auto offset = [&](std::string_view piece) {
            return piece.empty() ? line.size()
                                 : static_cast<std::size_t>(piece.data() - line.data());
        };
        if (known == kWords.end()) {
            faults.add(lines.fault("bad-hint",
                                   "a hint begins with code, data, string, table or label",
                                   offset(word), offset(word) + word.size()));
            continue;
        }
        std::string lack = add_hint(static_cast<HintKind>(known - kWords.begin()), operand, hints);
        if (!lack.empty()) {
            faults.add(lines.fault("bad-hint", std::move(lack), offset(operand),
                                   offset(operand) + operand.size()));
        }
    }
    return faults.take();
}

std::string text_of(const Hints &hints) {
    std::string text;
    for (const std::uint32_t address : hints.code) {
        text += line_of(HintKind::kCode, address_text(address));
    }
    for (const Range &range : hints.ranges) {
        text += line_of(range.kind, address_text(range.first) + "-" + address_text(range.last));
    }
    for (const Name &name : hints.names) {
        text += line_of(HintKind::kLabel, name.text + "=" + address_text(name.address));
    }
    return text;
}

bool is_start_label(std::string_view text) {
    return is_label(text) && std::all_of(text.begin(), text.end(), is_plain);
}

bool is_label(std::string_view text) {
    static constexpr std::array<std::string_view, 5> kRegisters = {"A", "X", "Y", "SP", "CC"};
    return !text.empty() && text.size() <= kLongestLabel &&
           (is_letter(text[0]) || text[0] == '_') &&
           std::all_of(text.begin(), text.end(), is_label_character) &&
           std::none_of(kRegisters.begin(), kRegisters.end(),
                        [&](std::string_view name) { return begins_with(text, name); });
}

} // namespace dis
