// A command begins with its line feed, so the script ends without one.
#include "target/script.h"

#include "as/asOptions.h"
#include "as/asStreams.h"

#include <cstring>
#include <string_view>

namespace {

// Addresses in the script have one byte, the second of an address of this many.
constexpr std::size_t kAddressBytes = 2;

OutputBuffer buffer;

} // namespace

OutputFile zirpafile(buffer);

void begin_script(const std::string &name) {
    put_banner(zirpafile);
    zirpafile.put(
        {"\n", kNotice, "\nFile: ", name, "\n", "\n # ClearAllMemory", "\n # ClearAllRegisters"});
}

// Quirk (wide-script): a wider address spills into the script as memory contents at shifted
// addresses, since simulators replay the script as it is.
void put_script_lines(const Record &record) {
    // Two blanks after the keyword, since readers of the script may count columns.
    static constexpr std::string_view kCommand = "\n #setMemory  00=00";
    unsigned address = record.bytes[1];
    for (std::size_t i = kAddressBytes; i < record.count; ++i) {
        char *line = zirpafile.room(kCommand.size());
        std::memcpy(line, kCommand.data(), kCommand.size());
        char *end = line + kCommand.size();
        (void)hex_byte(end - 5, address++);
        (void)hex_byte(end - 2, record.bytes[i]);
        zirpafile.add(end);
    }
}
