// The symbol table: what the names of the assembly mean, and the rules of the passes.
//
// The table lives for the whole run. The passes before the final one give names their values; the
// final pass defines every label again and checks that none has moved, but changes no value: what
// came ahead of the label has used the first one already. Only the final pass reports, so a second
// definition is noted in the flags when it is met, and both lines are reported when it comes by.
#pragma once

#include "symtab/names.h"
#include "util/output.h"

#include <cstdint>
#include <string>
#include <string_view>

// Kind and element count with which names are created that have no data.
inline constexpr int kNameKind = 32;
inline constexpr std::int32_t kNoData = -1;

// Bits of a symbol's flags.
enum SymbolFlag : std::uint32_t {
    SYM_DEFINED = 0x1,
    SYM_MULTIPLE = 0x2,     // defined again
    SYM_EXTERNAL = 0x4,     // has no segment
    SYM_OPEN_8 = 0x8,       // tested by defsym only, like the next two open bits
    SYM_VALUE_MARK = 0x10,  // exempt from the phase check
    SYM_UNDEFINED = 0x20,   // entered by a reference
    SYM_ABSOLUTE = 0x40,    // constant given by EQU
    SYM_DEBUG = 0xFFFFFF80, // debug-information name: every bit from 0x80 up
    SYM_OPEN_100 = 0x100,
    SYM_OPEN_200 = 0x200,
    SYM_CONDITIONAL = 0x400, // entered by conditional assembly
    SYM_REDEFINABLE = 0x1000,
    SYM_FORWARD = 0x2000, // referred to before its definition in passes 0 and 1
};

// ---- State owned here ----

// References of the current expression that count as forward or undefined. The evaluator counts on
// from what refsym leaves.
extern std::int16_t forwardref;

// ---- Functions ----

// Creates a record and returns it, or reports "(F1024)" and returns null if the name exists. The
// name is taken up to its first blank. The kind and file arguments are not used.
Symbol *putsym(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
               int kind, const char *file, std::int32_t count);

// The same for a name as valid_sym reads it, which holds no blank.
Symbol *putname(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
                std::int32_t count);

// The record whose whole name equals the leading run of symbol characters, or null.
Symbol *getsym(std::string_view name);

// The record of a name as valid_sym reads it, entered as undefined if it is new.
Symbol *lookup(std::string_view name);

// As lookup, for a reference from an expression: notes forward references.
Symbol *refsym(std::string_view name);

// The part of refsym after the look-up; the name is that in the text.
void note_reference(std::string_view name, Symbol &symbol);

// Defines a name as valid_sym reads it; the final pass compares instead, and with check set reports
// a value that has moved. Returns the record.
const Symbol *defsym(std::string_view name, std::int64_t value, int check);

// Prints the table. The header differs between the listing and standard output.
void symwrite(OutputFile &stream);

// The place of the type records of symbols with data (element count above 0), which follow the
// debug records of the final pass. This target has no types to describe, so nothing is written.
void symdebugwrite(std::string &stream);

// Before the final pass: makes the names of conditional assembly undefined again.
void prep_undefine();

inline void symtab_new_line() { forwardref = 0; }

// ---- Not called here: debugger lines keep their names out of the table ----

// Before the final pass, enters a debug-information name: the text up to its first colon.
void addstabsym(std::string_view text, std::int32_t value);
