// What people know of a program and its bytes don't say: where code is, what is data, what is
// called how. Hints come from a command line or from a file with one a line:
//
//     ; a comment
//     code   $1C
//     data   $20-$2F
//     string $30-$35
//     table  $40-$43
//     label  start=$10
//
// Addresses are $1C, 0x1C or 28; the last one of a range is part of it. A file that is written
// holds what was found, so that people can correct it.
#pragma once

#include "dis/fault.h"
#include "dis/program.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dis {

enum class HintKind { kCode, kData, kString, kTable, kLabel };

// The word of a hint, as options and files have it.
std::string_view word_of(HintKind kind);

struct Range {
    HintKind kind; // of data
    std::uint32_t first;
    std::uint32_t last;
};

struct Hints {
    std::vector<std::uint32_t> code;
    std::vector<Range> ranges;
    std::vector<Name> names;

    // What the other says counts where both name an address.
    void add(const Hints &other);
};

// Adds a hint; what its operand lacks otherwise.
std::string add_hint(HintKind kind, std::string_view operand, Hints &hints);

std::vector<Fault> read_hints(std::string_view content, Hints &hints);

std::string text_of(const Hints &hints);

// True for what a source can have as a label: not for the names of registers, nor for what begins
// with one as an expression reads it.
bool is_label(std::string_view text);

// True for what END can name, too: without $ and dots.
bool is_start_label(std::string_view text);

} // namespace dis
