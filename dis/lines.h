// The lines of a text, and the words in them, for all readers of this folder.
#pragma once

#include "dis/fault.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dis {

// A line is at most so long in a fault; a column beyond is named in words.
inline constexpr std::size_t kShownLine = 600;

class Lines {
  public:
    explicit Lines(std::string_view text) : rest_(text) {}

    // To the next line; false at the end of the text.
    bool next();
    std::string_view text() const { return line_; } // without line end and blanks before it

    // A fault of the characters from begin up to end, offsets in the line; of at least one.
    Fault fault(std::string_view id, std::string message, std::size_t begin, std::size_t end) const;
    // A fault of the whole line.
    Fault fault(std::string_view id, std::string message) const;

  private:
    std::string_view rest_;
    std::string_view line_;
    int number_ = 0;
};

bool is_blank(char ch);

// True for what a text may hold: printing characters of any coding, blanks and tabs.
bool is_text_character(char ch);

// A word and the blanks before it are cut off the text. Empty at its end.
std::string_view take_word(std::string_view &text);

// The value of a digit in hexadecimal, -1 for other characters.
int hex_digit(char ch);

// A number of digits alone, at most 8 of them in base 16 and 9 in others.
std::optional<std::uint32_t> number_of(std::string_view digits, unsigned base);

// Upper-case digits, at least so many (up to 8).
std::string hex(std::uint32_t value, std::size_t digits = 2);

// An address as people are told of it: two digits where that is enough, else four or more.
std::string hex_address(std::uint32_t address);

// An address as people write it: $1C, 0x1C or 28. Nothing for others and beyond FFFF.
std::optional<std::uint32_t> address_of(std::string_view text);

} // namespace dis
