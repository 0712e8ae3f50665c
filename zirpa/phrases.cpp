#include "zirpa/phrases.h"

#include "door/door.h"

#include <array>
#include <charconv>

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

std::string in_hexadecimal(std::int64_t value) {
    std::array<char, 20> digits{};
    const auto magnitude =
        value < 0 ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    char *end = std::to_chars(digits.data(), digits.data() + digits.size(), magnitude, 16).ptr;
    return (value < 0 ? "-$" : "$") +
           door::upper({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

std::string in_both_bases(std::int64_t value) {
    return std::to_string(value) + " (" + in_hexadecimal(value) + ")";
}
