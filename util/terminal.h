// Text for a terminal, which obeys control bytes: a file name or a source could move its cursor,
// change its title or answer in the user's place.
#pragma once

#include <cstddef>
#include <string_view>

// The longest part of a character that lacks a byte, in bytes.
inline constexpr std::size_t kLongestBegunCharacter = 3;

// The bytes at the end of a text that may be the first ones of a character.
std::size_t begun_character_size(std::string_view text);

// Writes text to a descriptor. Where that is a terminal, each byte that is not part of a visible
// character (in UTF-8), a tab or a line feed is shown as \xHH. Files and pipes get the exact bytes.
class TerminalGuard {
  public:
    // Another descriptor follows.
    void reset() { terminal_ = Answer::kUnknown; }

    // Writes whole characters. Returns false when a write fails.
    bool write(int descriptor, std::string_view text);

  private:
    enum class Answer { kUnknown, kNo, kYes };

    bool is_terminal(int descriptor);

    Answer terminal_ = Answer::kUnknown; // asked only when there is a byte to hide
};
