// The line assembler: splits a line into label, operation and operand fields and has them carried
// out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// ---- State owned here ----

extern int label;            // the line has a label field; reset at each line
extern int IsEqu;            // a directive has defined the label itself; reset at each line
extern int IsEquDirective;   // the line is an EQU line; reset at each line
extern int pending_listLC;   // the listing shows an address; set at each assembled line
extern std::uint32_t listLC; // that address; reset at each pass

extern std::string last_seen_label;          // the label that data belongs to; empty: none
extern std::uint32_t last_seen_label_value;  // its address
extern std::uint32_t last_seen_label_offset; // bytes registered for it by its first data directive

// ---- Functions ----

// Assembles the line in Line for pass 0, 1 or 2.
void assaline(int pass);

// Reads a name and one ":" behind it: 1, or 0 without moving.
int IsLabel();

// The label of the line, which has one.
std::string_view label_name();

// Takes a ",": 0. Anything else is taken and reported as "Bad delimiter": 1.
int Skip_Delimiter();

// Skips blanks and tabs. Returns the position, or none at the end of the line, where work on the
// line ends.
const char *SkipSpace();

// Forgets the last seen label, or sets it with nothing registered for it yet.
void resetLabel();
void SetLastLabel(std::string_view name, std::uint32_t value);

// For directives: defines the line's label, if it has one, at the location counter, in place of the
// line assembler.
void define_directive_label();

void line_new_run();
void line_new_pass();

inline void line_new_line() {
    label = 0;
    IsEqu = 0;
    IsEquDirective = 0;
    pending_listLC = 0;
}
