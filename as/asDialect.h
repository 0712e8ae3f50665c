// Directives of other dialects: the numbers of the shared dispatcher to which no word of this
// assembler leads.
//
// The dialects number their directives alike, so that their words can share one dispatcher. What it
// does for those numbers is kept here and tested by number; sources can't reach it. A dialect that
// adds a table of words gets its handlers from here.
#pragma once

#include <cstdint>

// ---- State owned here ----

extern std::uint32_t
    MC6809_anticipated_dp; // direct page that DIR_SETDP assumes; reset at each pass

// ---- Functions ----

// Carries out a directive by its number, with the scan position at its operand. 1 or 2 when it was
// carried out; -1 when it failed or was ignored, as all numbers are that have no handler.
int do_directive(std::uint32_t token);

void dialect_new_pass();
