// Records are fields between colons. A file's name may hold colons itself, so the fields of an
// instruction's record are counted from its end.
#include "dis/lines.h"
#include "dis/reading.h"

#include <algorithm>

namespace dis {

namespace {

constexpr std::string_view kInstruction = "SY:C:X:";
constexpr std::string_view kFunction = "SY:C:f:";
constexpr std::string_view kStatic = "SY:C:S:v:";

// The last field and its colon are cut off. Empty if there is no colon.
std::string_view take_last_field(std::string_view &text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return {};
    }
    const std::string_view field = text.substr(colon + 1);
    text = text.substr(0, colon);
    return field;
}

// Field number index, from 0; empty if there are fewer.
std::string_view field_at(std::string_view text, std::size_t index) {
    for (; index > 0; --index) {
        text.remove_prefix(std::min(text.find(':'), text.size() - 1) + 1);
        if (text.empty()) {
            return {};
        }
    }
    return text.substr(0, text.find(':'));
}

// File, line, count, segment, address.
void take_instruction(std::string_view fields, Program &program) {
    const auto address = number_of(take_last_field(fields), 16);
    (void)take_last_field(fields);
    (void)take_last_field(fields);
    const auto line = number_of(take_last_field(fields), 10);
    if (address && *address < kAddresses && line) {
        program.lines.push_back({*address, std::string(fields), static_cast<int>(*line)});
    }
}

void take_name(std::string_view name, std::string_view value, Program &program) {
    const auto address = number_of(value, 16);
    if (!name.empty() && address && *address < kAddresses) {
        program.names.push_back({std::string(name), *address});
    }
}

} // namespace

bool take_debug_record(std::string_view line, Program &program) {
    if (line.starts_with(kInstruction)) {
        take_instruction(line.substr(kInstruction.size()), program);
    } else if (line.starts_with(kFunction)) {
        // File, segment, name, three numbers, first address, ...
        const std::string_view fields = line.substr(kFunction.size());
        take_name(field_at(fields, 2), field_at(fields, 6), program);
    } else if (line.starts_with(kStatic)) {
        // File, segment, a name of the compiler's, name, address, ...
        const std::string_view fields = line.substr(kStatic.size());
        take_name(field_at(fields, 3), field_at(fields, 4), program);
    }
    return line.starts_with("SX:") || line.starts_with("SY:") || line.starts_with("ST:");
}

} // namespace dis
