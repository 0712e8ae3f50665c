// The fields of a line as its writer sees them, and the place in the line that a report is about.
//
// The assembler reads a line as far as it makes sense and reports at once, so it could not say
// which characters are at fault. What a report means tells where to look for them (messages.h).
#pragma once

#include "door/messages.h"

#include <cstddef>
#include <string_view>

namespace door {

// Characters from begin up to end, offsets in the line.
struct Piece {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool is_empty() const { return begin == end; }
};

struct Fields {
    Piece label; // without a colon
    Piece operation;
    Piece operand;
    bool is_conditional = false; // the operation is a conditional word with its hash
};

Fields split(std::string_view line);

// What the state of the assembler tells of a report, as offsets in the line.
struct Traces {
    std::size_t scan_position = 0;
    std::size_t offset = 0; // where the check of an expression has stopped
    std::size_t digit = 0;  // the faulty one
    Piece undefined;        // the last name that is not defined
};

// Where a report points. Where something is missing, that is the character after the last one.
Piece piece_of(Where where, std::string_view line, const Traces &traces);

// The line without its line end and blanks before that.
std::string_view without_end(std::string_view line);

} // namespace door
