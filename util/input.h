// Reading a whole file into memory, once, so that pipes serve as sources too.
#pragma once

#include "util/descriptor.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// NULs after a file's text, so that it can be read a few characters ahead without a check.
inline constexpr std::size_t kFileGuard = 64;

struct FileText {
    std::unique_ptr<char[]> data;
    std::size_t size = 0; // bytes
    bool holds_nul = false;
    bool is_regular = false;
    FileIdentity identity;
};

// A copy of a text in memory, as if a file had held it.
FileText copy_text(std::string_view text);

#ifdef __SSE2__
// The line feeds among 64 bytes, a bit each, the first one lowest.
inline std::uint64_t line_feed_mask(const char *text) {
    const __m128i line_feeds = _mm_set1_epi8('\n');
    const auto mask_of_part = [=](unsigned part) {
        __m128i bytes;
        std::memcpy(&bytes, text + sizeof bytes * part, sizeof bytes);
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, line_feeds));
        return static_cast<std::uint64_t>(mask) << sizeof bytes * part;
    };
    return mask_of_part(0) | mask_of_part(1) | mask_of_part(2) | mask_of_part(3);
}
#endif

// Reads the file. Returns false when it cannot be opened or read (a directory, for one); errno then
// tells why, as it does after can_open.
bool read_file(const char *name, FileText &text);

// The size of the piece that ends in the first line feed, or size if there is none in that many
// bytes. kFileGuard bytes must be readable after them.
inline std::size_t size_with_line_feed(const char *text, std::size_t size) {
#ifdef __SSE2__
    // Most lines end within the first bytes, and unlike a search this takes no branch that depends
    // on where.
    for (std::size_t begin = 0; begin < size; begin += kFileGuard) {
        if (const std::uint64_t mask = line_feed_mask(text + begin); mask != 0) {
            return std::min(size, begin + static_cast<unsigned>(std::countr_zero(mask)) + 1);
        }
    }
    return size;
#else
    const auto *line_feed = static_cast<const char *>(std::memchr(text, '\n', size));
    return line_feed == nullptr ? size : static_cast<std::size_t>(line_feed + 1 - text);
#endif
}

// True when the file can be opened for reading.
bool can_open(const char *name);

// True for failures that say nothing about the file: a search must not go on after them, because it
// could find another file than it would have found otherwise.
bool is_passing_failure(int error);
