// Reading a whole file into memory, once, so that pipes serve as sources too.
#pragma once

#include "util/descriptor.h"

#include <algorithm>
#include <array>
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
using FilePart = __m128i;
#else
using FilePart = std::array<char, 16>;
#endif
static_assert(kFileGuard % sizeof(FilePart) == 0);

// The line feeds of a part, a bit each, the first one lowest.
inline std::uint64_t line_feed_mask(const FilePart &part) {
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(part, _mm_set1_epi8('\n'))));
#else
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < part.size(); ++i) {
        mask |= std::uint64_t{part[i] == '\n'} << i;
    }
    return mask;
#endif
}

// Goes through a text in pieces of kFileGuard bytes, of which visit gets each part with its offset,
// up to the piece with a line feed. Most lines end within the first piece, and unlike a search this
// takes no branch that depends on where.
template <typename Visit>
std::size_t look_for_line_feed(const char *text, std::size_t size, Visit visit) {
    for (std::size_t begin = 0; begin < size; begin += kFileGuard) {
        std::uint64_t mask = 0;
        for (std::size_t i = 0; i < kFileGuard; i += sizeof(FilePart)) {
            FilePart part;
            std::memcpy(&part, text + begin + i, sizeof part);
            visit(begin + i, part);
            mask |= line_feed_mask(part) << i;
        }
        if (mask != 0) {
            return std::min(size, begin + static_cast<unsigned>(std::countr_zero(mask)) + 1);
        }
    }
    return size;
}

// Reads the file. Returns false when it cannot be opened or read (a directory, for one); errno then
// tells why, as it does after can_open.
bool read_file(const char *name, FileText &text);

// The size of the piece that ends in the first line feed, or size if there is none in that many
// bytes. kFileGuard bytes must be readable after them.
inline std::size_t size_with_line_feed(const char *text, std::size_t size) {
    return look_for_line_feed(text, size, [](std::size_t, const auto &) {});
}

// The same, and copies the piece and what follows it, up to kFileGuard bytes more than size.
inline std::size_t copy_with_line_feed(char *to, const char *text, std::size_t size) {
    return look_for_line_feed(text, size, [=](std::size_t at, const auto &bytes) {
        std::memcpy(to + at, &bytes, sizeof bytes);
    });
}

// True when the file can be opened for reading.
bool can_open(const char *name);

// True for failures that say nothing about the file: a search must not go on after them, because it
// could find another file than it would have found otherwise.
bool is_passing_failure(int error);
