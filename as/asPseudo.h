// Directives: from the word to its handler, and ORG and END, which move and end the program.
//
// A word is matched in any case and must end at a blank. A new directive is one more row of
// pseudo_zirpa. The numbers go through all dialects that share the tables' layout; conditional
// words are known by theirs alone.
#pragma once

#include "as/asOptions.h"

#include <cstddef>
#include <cstdint>

// Longest word of a directive, in characters.
inline constexpr std::size_t kDirectiveLimit = 7;

// A row of a directive table; one without a name ends a table.
struct DirectiveEntry {
    char name[kDirectiveLimit + 1]; // lower case; a pointer would be relocated at each start
    std::uint32_t token;
    std::int32_t reserved; // 0
    int (*handler)();      // with the scan position at the operand; null for conditional words
};

// Directive numbers.
enum DirectiveToken : std::uint32_t {
    DIR_NONE = 0,
    DIR_INCLUDE = 2,
    DIR_LIST = 3,
    DIR_LISTCOND = 4,
    DIR_NOLIST = 5,
    DIR_NOLISTCOND = 6,
    DIR_ORG = 7,
    DIR_EQU = 8,
    DIR_SET = 9,
    DIR_END = 10,
    DIR_BYTES = 11,
    DIR_RESERVE = 16,
    DIR_STRING = 20,
    DIR_DEFINE = 27,
    DIR_EXTERN = 29,
    DIR_IF = 44,
    DIR_ELSE = 45,
    DIR_ENDIF = 46,
    DIR_ELIF = 47,
    DIR_IFDEF = 48,
    DIR_COND_DEFINE = 49,
    DIR_IFNDEF = 50,
    DIR_ERROR = 51,
    DIR_SETDP = 53,
};

extern const DirectiveEntry pseudo_zirpa[]; // directives of the operation field
extern const DirectiveEntry macro_pure[];   // conditional words after a "#"
extern const DirectiveEntry macro_native[]; // dotted conditional words

// ---- State owned here ----

extern int default_entry_seen;       // an ORG has been carried out; set once in a run
extern std::uint32_t defaultentryLC; // the operand of that first ORG
extern int entry_is_defined;         // END has named a start symbol; set once in a run
extern std::int64_t entryLC;         // its value

// ---- Functions ----

// The number of the directive at word, or 0.
std::uint32_t GetPseudoToken(const char *word);

// Carries out the directive at the scan position. 0 and the scan position unchanged when there is
// none; 1 or 2 when it was carried out; -1 when it failed or was ignored.
int PseudoOp();

// 1 when EQU stands at the scan position, which then moves past it and the blanks after it; else
// 0.
int isPseudoEqu();

// The number 44 to 51 of a conditional word at position, which then moves past it, or 0.
int find_conditional_word(const char *&position);

// The same, asked on every line: where only the "#" words count, most lines need no search.
inline int is_conditional_macro_directive(const char *&position) {
    const bool only_pure = O_directive_style_native == 0 && O_directive_style_gnu == 0;
    return only_pure && *position != '#' ? 0 : find_conditional_word(position);
}

// ORG. 2, or -1 after an error.
int DoOrg();

// END. Always 1.
int DoEnd();

void pseudo_new_run();
