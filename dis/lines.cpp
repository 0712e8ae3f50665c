#include "dis/lines.h"

#include "dis/program.h"

#include <algorithm>

namespace dis {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

std::string_view without_blanks_at_end(std::string_view line) {
    while (!line.empty() && (is_blank(line.back()) || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace

bool Lines::next() {
    if (rest_.empty()) {
        return false;
    }
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    line_ = without_blanks_at_end(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    ++number_;
    return true;
}

Fault Lines::fault(std::string_view id, std::string message, std::size_t begin,
                   std::size_t end) const {
    if (begin >= kShownLine) {
        message = "column " + std::to_string(begin + 1) + ": " + message;
        return {id, message, number_, 0, 0, std::string(line_.substr(0, kShownLine))};
    }
    end = std::clamp(end, begin + 1, kShownLine);
    return {id,
            std::move(message),
            number_,
            static_cast<int>(begin) + 1,
            static_cast<int>(end),
            std::string(line_.substr(0, kShownLine))};
}

Fault Lines::fault(std::string_view id, std::string message) const {
    return fault(id, std::move(message), 0, line_.size());
}

bool is_blank(char ch) { return ch == ' ' || ch == '\t'; }

bool is_text_character(char ch) {
    const auto code = static_cast<unsigned char>(ch);
    return code == '\t' || (code >= 0x20 && code != 0x7F);
}

std::string_view take_word(std::string_view &text) {
    const auto *begin = std::find_if_not(text.begin(), text.end(), is_blank);
    const auto *end = std::find_if(begin, text.end(), is_blank);
    const std::string_view word = text.substr(static_cast<std::size_t>(begin - text.begin()),
                                              static_cast<std::size_t>(end - begin));
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    return word;
}

int hex_digit(char ch) {
    if (ch >= '0' && ch <= '9') {
        return ch - '0';
    }
    const char upper = static_cast<char>(ch & ~0x20);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::optional<std::uint32_t> number_of(std::string_view digits, unsigned base) {
    std::uint32_t value = 0;
    if (digits.empty() || digits.size() > (base == 16 ? 8U : 9U)) {
        return std::nullopt;
    }
    for (const char ch : digits) {
        const int digit = hex_digit(ch);
        if (digit < 0 || digit >= static_cast<int>(base)) {
            return std::nullopt;
        }
        value = value * base + static_cast<unsigned>(digit);
    }
    return value;
}

std::string hex(std::uint32_t value, std::size_t digits) {
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 4) {
        const std::uint32_t rest = value >> (shift - 4);
        if (rest != 0 || shift <= 4 * digits) {
            text += kDigits[rest & 0xFU];
        }
    }
    return text;
}

std::string hex_address(std::uint32_t address) { return hex(address, address > 0xFF ? 4 : 2); }

std::optional<std::uint32_t> address_of(std::string_view text) {
    std::optional<std::uint32_t> value;
    if (text.starts_with('$')) {
        value = number_of(text.substr(1), 16);
    } else if (text.starts_with("0x") || text.starts_with("0X")) {
        value = number_of(text.substr(2), 16);
    } else {
        value = number_of(text, 10);
    }
    return value && *value < kAddresses ? value : std::nullopt;
}

} // namespace dis
