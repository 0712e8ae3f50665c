// A comma stands ahead of each value but the first of a row, and a full row ends in one: so nothing
// has to be known of the values that follow, and a C compiler takes the comma at the end.
#include "target/carray.h"

namespace {

OutputBuffer buffer;

} // namespace

OutputFile algofile(buffer);
unsigned algofilecount = 0;

void begin_array() {
    algofile.put("const unsigned char algo[] = {\n");
    algofilecount = 0;
}

void put_array_value(std::uint32_t value) {
    algofile.put(algofilecount == 0 ? "0x" : ",0x");
    algofile.put_hex_byte(value);
    if (++algofilecount == kArrayRowValues) {
        algofile.put(",\n");
        algofilecount = 0;
    }
}

void end_array() { algofile.put(algofilecount != 0 ? "\n};\n" : "};\n"); }
