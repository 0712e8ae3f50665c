#include "dis/reading.h"

#include "dis/lines.h"

#include <algorithm>

namespace dis {

namespace {

// The first characters, in which a text shows what it is.
constexpr std::size_t kLookedAt = 4096;

bool is_record_head(std::string_view content) {
    const std::size_t begin = std::min(content.find_first_not_of(" \t\r\n"), content.size());
    content.remove_prefix(begin);
    return content.size() >= 2 && content[0] == 'S' && content[1] >= '0' && content[1] <= '9';
}

bool is_script(std::string_view head) {
    return head.find("#setMemory") != std::string_view::npos ||
           head.find("# ClearAll") != std::string_view::npos;
}

// Whatever the type is called, values stand in braces after "=".
bool is_array(std::string_view head) {
    const std::size_t brace = head.find('{');
    const std::size_t sign = head.find('=');
    return brace != std::string_view::npos && sign < brace;
}

bool is_text(std::string_view head) {
    return std::all_of(head.begin(), head.end(),
                       [](char ch) { return is_text_character(ch) || ch == '\n' || ch == '\r'; });
}

} // namespace

InputFormat format_of(std::string_view content) {
    const std::string_view head = content.substr(0, kLookedAt);
    if (is_record_head(head)) {
        return InputFormat::kRecords;
    }
    if (!is_text(head)) {
        return InputFormat::kUnknown;
    }
    return is_script(head)  ? InputFormat::kScript
           : is_array(head) ? InputFormat::kArray
                            : InputFormat::kUnknown;
}

Fault fault_of_address(std::uint32_t address) {
    if (address >= kAddresses) {
        return {"address-beyond-ffff", "the address " + hex_address(address) + " is beyond FFFF"};
    }
    return {"set-twice", "the byte at " + hex_address(address) + " is given a second time"};
}

void read_image(std::string_view content, std::uint32_t base, Program &program, Faults &faults) {
    if (base + content.size() > kAddresses) {
        faults.add({"address-beyond-ffff", std::to_string(content.size()) + " bytes from " +
                                               hex_address(base) + " on go beyond FFFF"});
        return;
    }
    for (const char byte : content) {
        (void)program.image.set(base++, static_cast<std::uint8_t>(byte));
    }
}

Reading read(std::string_view content, InputFormat format, std::uint32_t base) {
    Reading reading;
    Faults faults;
    switch (format) {
    case InputFormat::kRecords: read_records(content, reading.program, faults); break;
    case InputFormat::kImage: read_image(content, base, reading.program, faults); break;
    case InputFormat::kScript: read_script(content, reading.program, faults); break;
    case InputFormat::kArray: read_array(content, base, reading.program, faults); break;
    case InputFormat::kUnknown:
        faults.add(
            {"unknown-format",
             "neither S-records nor a script nor a C array; --base tells where plain bytes begin"});
        break;
    }
    reading.faults = faults.take();
    return reading;
}

Reading read_program(std::string_view content, std::optional<InputFormat> format,
                     std::optional<std::uint32_t> base) {
    const InputFormat looks = format_of(content);
    const bool is_image = base && looks != InputFormat::kArray;
    return read(content, format.value_or(is_image ? InputFormat::kImage : looks), base.value_or(0));
}

} // namespace dis
