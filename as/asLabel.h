// The label of a statement, the data that belongs to it, and the address with which it is listed.
//
// The line assembler reads the label field first and defines the label last, at the location where
// the statement began. In between a directive may define it itself, with another value; IsEqu then
// keeps the line assembler from doing it again. So both need the label, and it stands below them.
//
// A label stays the last seen one for the lines after it: the first data directive there registers
// its size with it, for the types of debug records.
#pragma once

#include <cstdint>
#include <string_view>

// ---- State owned here ----

extern int label;            // the line has a label field; reset at each line
extern int IsEqu;            // a directive has defined the label itself; reset at each line
extern int IsEquDirective;   // the line is an EQU line; reset at each line
extern int pending_listLC;   // the listing shows an address; set at each assembled line
extern std::uint32_t listLC; // that address; reset at each pass

// The label that data belongs to, as the symbol table has it; empty: no label.
extern std::string_view last_seen_label;
extern std::uint32_t last_seen_label_value;  // its address
extern std::uint32_t last_seen_label_offset; // bytes registered for it by its first data directive

// ---- Functions ----

// Reads a name and one ":" right after it: 1, or 0 without moving.
int IsLabel();

// The label of the line, which has one.
std::string_view label_name();

// Forgets the last seen label, or sets it with nothing registered for it yet; the name must stay
// where it is.
void resetLabel();
void SetLastLabel(std::string_view name, std::uint32_t value);

// Defines the line's label at an address, and makes it the last seen one.
void define_label(std::uint32_t value);

// For directives: defines the line's label, if it has one, at the location counter, in place of the
// line assembler.
void define_directive_label();

void label_new_run();
void label_new_pass();

inline void label_new_line() {
    label = 0;
    IsEqu = 0;
    IsEquDirective = 0;
    pending_listLC = 0;
}
