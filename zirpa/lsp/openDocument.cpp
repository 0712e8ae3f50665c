#include "zirpa/lsp/openDocument.h"

#include <array>
#include <charconv>

namespace lsp {

namespace {

constexpr std::string_view kFile = "file://";

int digit_of(char ch) {
    const std::string_view digits = "0123456789abcdef";
    const std::size_t value =
        digits.find(ch >= 'A' && ch <= 'F' ? static_cast<char>(ch | 0x20) : ch);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

bool is_unreserved(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
           std::string_view("-._~/").find(ch) != std::string_view::npos;
}

std::string hexadecimal(std::uint64_t value) {
    std::array<char, 16> digits{};
    return {digits.data(),
            std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr};
}

} // namespace

std::string path_of(const std::string &uri) {
    if (!uri.starts_with(kFile)) {
        return {};
    }
    std::string path;
    // A host may stand before the path.
    for (std::size_t i = std::min(uri.find('/', kFile.size()), uri.size()); i < uri.size(); ++i) {
        const int high = uri[i] == '%' && i + 2 < uri.size() ? digit_of(uri[i + 1]) : -1;
        const int low = high >= 0 ? digit_of(uri[i + 2]) : -1;
        path += low >= 0 ? static_cast<char>(high * 16 + low) : uri[i];
        i += low >= 0 ? 2 : 0;
    }
    return path.find('\0') == std::string::npos ? path : std::string();
}

std::string uri_of(const std::string &path) {
    std::string uri(kFile);
    for (const char ch : path) {
        if (is_unreserved(ch)) {
            uri += ch;
        } else {
            const auto byte = static_cast<unsigned char>(ch);
            uri += byte < 16 ? "%0" : "%";
            uri += hexadecimal(byte);
        }
    }
    return uri;
}

std::string name_of_data(std::string_view bytes) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char ch : bytes) {
        hash = (hash ^ static_cast<unsigned char>(ch)) * 1099511628211U;
    }
    return hexadecimal(hash);
}

} // namespace lsp
