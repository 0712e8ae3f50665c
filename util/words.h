// Words that are known when the program is compiled, found without a search.
//
// A word of up to eight letters is a number: its characters without the bit that tells the cases
// apart. A table of rows, large enough that no two of the words share a place, has at most one word
// to compare. The compiler finds the multiplier that places them so, and an added word takes its
// place by itself.
//
// Fast path: without it the large workload takes 10 % more processor time. To measure it again, let
// find go through the keys one by one.
#pragma once

#include "util/ahead.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Longest word, in characters.
inline constexpr std::size_t kWordLimit = 8;

// No character but a letter becomes an upper-case letter without this bit. The marks below the
// letters become control characters, which are in no word.
inline constexpr unsigned kCaseBit = 0x20;

using WordKey = std::uint64_t; // first character lowest; 0: no word

consteval WordKey key_of_word(std::string_view word) {
    WordKey key = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
        key |= WordKey{static_cast<unsigned char>(word[i]) & ~kCaseBit} << (8 * i);
    }
    return word.size() <= kWordLimit ? key : throw "too long a word";
}

// A word in a text: it ends at the first blank, in the sense of isblanc.
struct Word {
    WordKey key = 0; // 0: the word is empty or longer than any that is looked up
    const char *end = nullptr;
};

inline Word word_at(const char *text) {
    static_assert(std::endian::native == std::endian::little);
    const auto length = run_length(word_char_mask(text));
    if (length == 0 || length > kWordLimit) {
        return {};
    }
    WordKey key = 0;
    std::memcpy(&key, text, sizeof key);
    constexpr WordKey kFold = ~(WordKey{kCaseBit} * 0x0101010101010101U);
    return {key & kFold & (~WordKey{0} >> (8 * (kWordLimit - length))), text + length};
}

template <std::size_t words, unsigned bits> class WordTable {
  public:
    // The words of rows, in the given member of each.
    template <typename Row, typename Name> consteval WordTable(const Row *rows, Name Row::*name) {
        static_assert(words < 256);
        for (std::size_t i = 0; i < words; ++i) {
            keys_[i] = key_of_word(rows[i].*name);
        }
        while (!place_all()) {
            multiplier_ = multiplier_ * 6364136223846793005U + 2;
        }
    }

    // The row of a word, or the number of words if it is none of them.
    std::size_t find(WordKey key) const {
        const std::size_t row = rows_[place_of(key)];
        return keys_[row] == key ? row : words;
    }

  private:
    constexpr std::size_t place_of(WordKey key) const { return key * multiplier_ >> (64U - bits); }

    // False when two words share a place.
    consteval bool place_all() {
        rows_.fill(words);
        for (std::size_t i = 0; i < words; ++i) {
            std::uint8_t &row = rows_[place_of(keys_[i])];
            if (row != words) {
                return keys_[row] != keys_[i] ? false : throw "the same word twice";
            }
            row = static_cast<std::uint8_t>(i);
        }
        return true;
    }

    std::uint64_t multiplier_ = 0x9E3779B97F4A7C15U;
    std::array<WordKey, words + 1> keys_{}; // the last one is that of no word
    std::array<std::uint8_t, std::size_t{1} << bits> rows_{};
};
