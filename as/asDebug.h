// Debug records: text lines that let a debugger map addresses to source lines and find symbols.
//
// They are gathered during the final pass, one for each instruction and those that ".stab" lines of
// a compiler ask for, and follow the end record in the S-record file. A record is a list of fields
// with colons between them. Most name the file being read and the current segment, of which there
// is none, so that its field is empty.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// ---- State owned here ----

// The records of the final pass as text, but for the instructions noted last; emptied when they are
// written. debug_text gives all of them.
extern std::string symdebfile;
extern std::string startsymname; // the symbol at which a debugger starts; always "start"

// ---- Functions ----

// The records so far as text.
const std::string &debug_text();

// Adds text after the records so far.
void add_debug_text(std::string_view text);

// The last field, the rest of a ".stab" line, is not looked into and may hold colons.

// An instruction or statement stands at an address. Most records are of this kind, with a count of
// 1, and stay numbers until they are written.
void asm_write_sd_exec(int line, std::int32_t count, std::uint32_t address);

// A function, with three numbers and three addresses that the compiler gives.
void asm_write_sd_function(std::string_view name, const std::array<std::int32_t, 3> &numbers,
                           const std::array<std::int64_t, 3> &addresses);

// A symbol known to all files, one known to its file, and one known to its function.
void asm_write_sd_global_symbol(std::string_view first, std::string_view name, std::int32_t line,
                                std::string_view rest);
void asm_write_sd_static_symbol(std::string_view first, std::string_view name, std::int64_t value,
                                std::int32_t line, std::string_view rest);
void asm_write_sd_local_symbol(const std::array<std::string, 3> &fields, std::int32_t number,
                               std::string_view rest);

// Begins the record of a type, which may go on with further source lines and so lacks its line end.
void begin_type_record(std::string_view text);

// Writes the start symbol and all records to the S-record file.
void write_debug_part();

void debug_new_run();
