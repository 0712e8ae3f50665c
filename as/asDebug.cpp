// The records are kept in memory until close-down, because the S-records come first in the file.
// Those of instructions are two numbers each until then: that takes a quarter of the memory of
// their text. Before any other record they become text, so that the order is kept.
#include "as/asDebug.h"

#include "as/asList.h"
#include "as/asPlace.h"
#include "target/srecord.h"
#include "util/format.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <vector>

std::string symdebfile;
std::string startsymname;

namespace {

// Fewest digits of a value.
constexpr unsigned kValueDigits = 8;

std::string_view current_file() { return getCurrentFileInfo(-1)->name; }

std::string_view current_segment() {
    return current_seg == nullptr ? std::string_view() : current_seg->name;
}

// ---- Instructions ----

struct InstructionRecord {
    std::int32_t line;
    std::uint32_t address;
};
std::vector<InstructionRecord> instructions;
int instructions_file = 0;                     // index of the file that all of them are in
const Segment *instructions_segment = nullptr; // and their segment

bool fits_the_others() {
    return instructions_file == current_file_index() && instructions_segment == current_seg;
}

// Hands the records over as text, one by one.
template <typename Put> void put_instructions(Put put) {
    if (instructions.empty()) {
        return;
    }
    const std::string head = "SY:C:X:" + getCurrentFileInfo(instructions_file)->name + ":";
    const std::string middle =
        ":1:" + (instructions_segment == nullptr ? "" : instructions_segment->name) + ":";
    // All records begin alike, so the text of one is changed into that of the next.
    std::vector<char> text(head.size() + middle.size() + 2 * NumberText().size() + 1);
    char *number = std::copy(head.begin(), head.end(), text.data());
    for (const InstructionRecord &record : instructions) {
        NumberText address;
        const std::string_view digits = hex_text(address, record.address, 1);
        char *end = std::to_chars(number, text.data() + text.size(), record.line).ptr;
        end = std::copy(middle.begin(), middle.end(), end);
        end = std::copy(digits.begin(), digits.end(), end);
        *end++ = '\n';
        put(text_between(text.data(), end));
    }
    instructions.clear();
}

void note_instruction(std::int32_t line, std::uint32_t address) {
    if (!fits_the_others()) {
        (void)debug_text();
        instructions_file = current_file_index();
        instructions_segment = current_seg;
    }
    instructions.push_back({line, address});
}

// ---- Records of fields ----

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
    add_debug_text(kind);
    for (const std::string_view field : fields) {
        symdebfile += ':';
        symdebfile += field;
    }
    symdebfile += '\n';
}

} // namespace

const std::string &debug_text() {
    put_instructions([](std::string_view text) { symdebfile += text; });
    return symdebfile;
}

void add_debug_text(std::string_view text) {
    if (!text.empty()) {
        (void)debug_text();
        symdebfile += text;
    }
}

void asm_write_sd_exec(int line, std::int32_t count, std::uint32_t address) {
    if (count == 1) {
        note_instruction(line, address);
        return;
    }
    NumberText text;
    put_record("SY:C:X", {current_file(), decimal(line), decimal(count), current_segment(),
                          hex_text(text, address, 1)});
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
    add_debug_text("ST:");
    symdebfile.append(current_file()).append(":").append(text);
}

void write_debug_part() {
    objectfile.put({"SX:C:s:", startsymname, "\n", symdebfile});
    symdebfile.clear();
    put_instructions([](std::string_view text) { objectfile.put(text); });
}

void debug_new_run() {
    symdebfile.clear();
    instructions.clear();
    startsymname = "start";
}
