// Conditional assembly: the words that select which lines are assembled, and define names for that.
//
// The words are recognised on every line of every pass, also inside skipped regions. Nesting and
// skipping carry over from pass to pass.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Deepest nesting of conditionals.
inline constexpr std::int32_t kDeepestConditional = 19;
// Longest rest of a conditional line that is read, in characters.
inline constexpr std::size_t kConditionalTextLimit = 512;

// ---- State owned here; set up once for all passes ----

extern std::int32_t ifdepth;  // depth of open conditionals
extern std::int32_t skipping; // depth of the conditional whose lines are skipped; 0: assembled

// ---- Functions ----

void init_as_conditional_handling();

// Carries out the conditional word of that number, with the scan position after it: 1; or 0 for
// any other number. Kept apart from the way of all other lines.
[[gnu::noinline]] int DoCond(int token);

// The 0-based column of a position in the copy of the conditional line that was read last; -1 for
// any other position.
int column_of_conditional_word(const char *position);

// 1 while lines are assembled, 0 while they are skipped.
inline int is_true_level() { return skipping == 0 ? 1 : 0; }
