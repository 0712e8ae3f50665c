// Readers of programs: S-records, plain bytes, the simulator's script, a C array. They take all
// that the assembler writes and what other tools write of the same formats, check whatever can be
// checked, and say where something is wrong. A program with faults is not to be used.
#pragma once

#include "dis/fault.h"
#include "dis/program.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace dis {

enum class InputFormat { kUnknown, kRecords, kImage, kScript, kArray };

struct Reading {
    Program program;
    std::vector<Fault> faults;
};

// What a content looks like; never kImage, which looks like anything.
InputFormat format_of(std::string_view content);

// The base is the address of the first byte where the format has no addresses.
Reading read(std::string_view content, InputFormat format, std::uint32_t base);

// The same where neither may be known. A base says that there are bytes without addresses: those of
// an array if it looks like one.
Reading read_program(std::string_view content, std::optional<InputFormat> format,
                     std::optional<std::uint32_t> base);

// ---- Each format ----

// S0 to S9, and after the end record debug records of the assembler.
void read_records(std::string_view content, Program &program, Faults &faults);

// Each byte is one.
void read_image(std::string_view content, std::uint32_t base, Program &program, Faults &faults);

// Lines " #setMemory  AA=BB", below text that belongs to no command.
void read_script(std::string_view content, Program &program, Faults &faults);

// "const unsigned char name[] = { 0x01, 2 };", with comments.
void read_array(std::string_view content, std::uint32_t base, Program &program, Faults &faults);

// ---- What is known besides ----

// Takes what a debug record says. False for a line that is none.
bool take_debug_record(std::string_view line, Program &program);

// The symbol table as the assembler prints it, alone or at the end of a listing.
std::vector<Fault> read_symbols(std::string_view content, std::vector<Name> &names);

// ---- For readers ----

// What is said of an address that is set twice, or that is too high.
Fault fault_of_address(std::uint32_t address);

} // namespace dis
