// The records are kept in memory until close-down, because the S-records come first in the file.
#include "as/asDebug.h"

#include "as/asList.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "target/srecord.h"
#include "util/format.h"

#include <algorithm>
#include <initializer_list>

std::string symdebfile;
std::string startsymname;

namespace {

// Room for the records of 300,000 lines. Memory that is reserved costs nothing until it is used;
// moving the records whenever they have outgrown their place would touch all of it again.
constexpr std::size_t kRoom = std::size_t{1} << 24U;

// Fewest digits of a value.
constexpr unsigned kValueDigits = 8;

std::string_view current_file() { return getCurrentFileInfo(-1)->name; }

std::string_view current_segment() {
    return current_seg == nullptr ? std::string_view() : current_seg->name;
}

std::string decimal(std::int64_t value) {
    NumberText text;
    return std::string(decimal_text(text, value));
}

// A value has 64 bits in a record, so a negative one takes 16 digits.
std::string hex_value(std::int64_t value) {
    NumberText text;
    return std::string(hex_text(text, static_cast<std::uint64_t>(value), kValueDigits));
}

void put_record(std::string_view kind, std::initializer_list<std::string_view> fields) {
    std::size_t size = kind.size() + 1;
    for (const std::string_view field : fields) {
        size += 1 + field.size();
    }
    const std::size_t begin = symdebfile.size();
    symdebfile.resize(begin + size);
    char *end = std::copy(kind.begin(), kind.end(), &symdebfile[begin]);
    for (const std::string_view field : fields) {
        *end++ = ':';
        end = std::copy(field.begin(), field.end(), end);
    }
    *end = '\n';
}

} // namespace

void begin_debug_records() { symdebfile.reserve(kRoom); }

void asm_write_sd_exec(int line, std::int32_t count, std::uint32_t address) {
    NumberText line_text;
    NumberText count_text;
    NumberText address_text;
    put_record("SY:C:X",
               {current_file(), decimal_text(line_text, line), decimal_text(count_text, count),
                current_segment(), hex_text(address_text, address, 1)});
}

void asm_write_sd_function(std::string_view name, const std::array<std::int32_t, 3> &numbers,
                           const std::array<std::int64_t, 3> &addresses) {
    put_record("SY:C:f", {current_file(), current_segment(), name, decimal(numbers[0]),
                          decimal(numbers[1]), decimal(numbers[2]), hex_value(addresses[0]),
                          hex_value(addresses[1]), hex_value(addresses[2])});
}

void asm_write_sd_global_symbol(std::string_view first, std::string_view name, std::int32_t line,
                                std::string_view rest) {
    put_record("SY:C:S:V", {current_file(), current_segment(), first, name, decimal(line), rest});
}

void asm_write_sd_static_symbol(std::string_view first, std::string_view name, std::int64_t value,
                                std::int32_t line, std::string_view rest) {
    put_record("SY:C:S:v", {current_file(), current_segment(), first, name, hex_value(value),
                            decimal(line), rest});
}

void asm_write_sd_local_symbol(const std::array<std::string, 3> &fields, std::int32_t number,
                               std::string_view rest) {
    put_record("SY:C:S:L", {current_file(), current_segment(), fields[0], fields[1], fields[2],
                            decimal(number), rest});
}

void begin_type_record(std::string_view text) {
    symdebfile.append("ST:").append(current_file()).append(":").append(text);
}

void write_debug_part() {
    objectfile.put({"SX:C:s:", startsymname, "\n", symdebfile});
    symdebfile.clear();
}

void debug_new_run() {
    symdebfile.clear();
    startsymname = "start";
}
