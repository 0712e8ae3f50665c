#include "zirpa/lsp/framing.h"

#include <algorithm>
#include <charconv>

namespace lsp {

namespace {

// A line without an end that is longer is no field.
constexpr std::size_t kLongestField = 8192;
constexpr std::string_view kSizeField = "content-length";

char lower(char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch | 0x20) : ch; }

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t\r") + 1 - begin);
}

bool is_size_field(std::string_view name) {
    return std::equal(name.begin(), name.end(), kSizeField.begin(), kSizeField.end(),
                      [](char one, char other) { return lower(one) == other; });
}

std::optional<std::size_t> size_of(std::string_view digits) {
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    const bool is_number = error == std::errc() && end == digits.data() + digits.size();
    return is_number && size <= kLongestMessage ? std::optional(size) : std::nullopt;
}

} // namespace

void Framing::feed(std::string_view bytes) {
    buffer_.erase(0, position_);
    position_ = 0;
    buffer_.append(bytes);
}

void Framing::take_field(std::string_view field) {
    const std::size_t colon = field.find(':');
    if (colon != std::string_view::npos && is_size_field(trimmed(field.substr(0, colon)))) {
        size_ = size_of(trimmed(field.substr(colon + 1)));
    }
}

// True when a header has ended and tells a size.
bool Framing::read_header() {
    while (true) {
        const std::size_t end = buffer_.find('\n', position_);
        if (end == std::string::npos) {
            if (buffer_.size() - position_ > kLongestField) {
                position_ = buffer_.size();
            }
            return false;
        }
        const std::string_view field =
            trimmed(std::string_view(buffer_).substr(position_, end - position_));
        position_ = end + 1;
        if (field.empty() && size_) {
            return true;
        }
        take_field(field);
    }
}

std::optional<std::string> Framing::next() {
    if (!is_in_content_ && !read_header()) {
        return std::nullopt;
    }
    is_in_content_ = true;
    if (buffer_.size() - position_ < *size_) {
        return std::nullopt;
    }
    std::string message = buffer_.substr(position_, *size_);
    position_ += *size_;
    size_.reset();
    is_in_content_ = false;
    return message;
}

std::string framed(std::string_view message) {
    return "Content-Length: " + std::to_string(message.size()) + "\r\n\r\n" + std::string(message);
}

} // namespace lsp
