// The location counters: where the next byte goes, and where the current statement began.
//
// Emission moves LC on, in every pass, so that labels get the same addresses each time; nothing but
// ORG and the start of a pass sets it.
#pragma once

#include <cstdint>

// ---- State owned here; reset at each pass ----

extern std::uint32_t LC;    // address of the next byte
extern std::uint32_t dotLC; // address at which the current statement began

// ---- Functions ----

void location_new_pass();
