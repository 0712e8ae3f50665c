// Option flags and pass state: the smallest module, read by nearly all others.
//
// The flags are small integers that the command line sets before the first pass; those without an
// option keep their defaults for the whole run and stand for dialects that this assembler shares
// its design with.
#pragma once

#include <cstdint>

inline constexpr const char *kProgramName = "HXzirpa";
inline constexpr const char *kProcessorName = "ZIRPA";
inline constexpr const char *kVersion = "1.3";
inline constexpr const char *kNotice = "Free software under the MIT License.";
inline constexpr const char *kSourceExtension = ".szirpa";

// ---- State owned here; all set to their defaults by options_new_run ----

extern std::int16_t O_symtab;                 // -S: print the symbol table after the final pass
extern std::int16_t O_cout;                   // -A: write the C array file
extern std::int16_t O_symdebug;               // -g: write debug records
extern std::int16_t O_warn;                   // -w: report warnings
extern std::int16_t O_symbol_case_sensitive;  // cleared by -C nocase
extern std::int16_t O_directive_style_pure;   // "#" conditional words; cleared by -C nopure
extern std::int16_t O_directive_style_native; // dotted conditional words; off
extern std::int16_t O_directive_style_gnu;    // GNU-style conditional words; no option sets it
extern std::int16_t O_oflag;                  // -o: an output name was given
extern std::int16_t O_list;                   // -L: write the listing; cleared if it can't be made
extern std::int16_t O_compiler_generated_input; // input comes from a compiler; no option sets it
extern std::int16_t O_aliased_input;            // -d: a source directory was given
extern int record_type; // S-record data type 1 to 3; each data record sets it

extern int Pass;  // 0, 1 or 2: which pass through the source
extern int Pass2; // 1 only in the final pass, which alone reports and writes

// ---- Functions ----

// Sets every flag to its default and the pass to 0.
void options_new_run();
