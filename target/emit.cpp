#include "target/emit.h"

#include "as/asOptions.h"
#include "as/asOutput.h"
#include "target/location.h"

#include <string_view>

std::array<std::uint8_t, 128> Code{};
std::size_t code_i = 0;
int Byte_Extension = 1;
unsigned algofilecount = 0;

namespace {

// The record being collected: its bytes are the address, then the data.
struct Record {
    int type = 0;
    std::size_t count = 0; // bytes held, address included, checksum not
    std::array<std::uint8_t, kRecordCapacity> bytes{};
};
Record outrec;

// Characters of a record's line: type, length, bytes, checksum and line feed.
constexpr std::size_t kRecordTextCapacity = 2 + 2 * (1 + kRecordCapacity + 1) + 1;

// The script lines of a record assume an address of this many bytes.
constexpr std::size_t kScriptAddressBytes = 2;

bool is_data_type(int type) { return type >= kDataRecord16 && type <= kDataRecord32; }

bool is_end_type(int type) { return type >= kEndRecord32 && type <= kEndRecord16; }

// Address bytes that an address needs: 2, 3 or 4.
std::size_t address_width(std::uint32_t address) {
    return address >> 24U != 0 ? 4 : address >> 16U != 0 ? 3 : 2;
}

// Kept apart, like the next record, so that emitting a byte stays short.
[[gnu::noinline]] void put_array_value(std::uint32_t value) {
    algofile.put(algofilecount == 0 ? "0x" : ",0x");
    algofile.put_hex_byte(value);
    if (++algofilecount == kArrayRowValues) {
        algofile.put(",\n");
        algofilecount = 0;
    }
}

[[gnu::noinline]] void start_next_record() {
    putout1();
    outrecinit(record_type, LC);
}

// Adds a byte to the record and to the C array and advances the location counter.
void emit_byte(std::uint32_t value) {
    if (outrec.count == kRecordCapacity) {
        start_next_record();
    }
    outrec.bytes[outrec.count++] = static_cast<std::uint8_t>(value);
    // Quirk (beyond-ff): nothing ends at FF; S-records show the whole address, listing and script
    // its low byte.
    ++LC;
    if (O_cout != 0) {
        put_array_value(value);
    }
}

void put_script_line(unsigned address, unsigned value) {
    // Two blanks after the keyword, since readers of the script may count columns.
    std::array<char, 19> line = {'\n', ' ', '#', 's', 'e', 't', 'M', 'e', 'm', 'o',
                                 'r',  'y', ' ', ' ', 0,   0,   '=', 0,   0};
    hex_byte(&line[14], address);
    hex_byte(&line[17], value);
    zirpafile.put(std::string_view(line.data(), line.size()));
}

} // namespace

void ebyte(std::uint32_t value) {
    if (Pass2 == 0) {
        ++LC;
        return;
    }
    emit_byte(value);
    Byte_Extension = 1;
    list_byte(value);
}

void eshort(std::uint32_t value) {
    if (Pass2 == 0) {
        LC += 2;
        return;
    }
    if (code_i < kListedBytesLimit) {
        Code[code_i++] = static_cast<std::uint8_t>(value >> 8U);
        Code[code_i++] = static_cast<std::uint8_t>(value);
    }
    emit_byte(value >> 8U);
    emit_byte(value);
}

void ecode(std::uint32_t value) { eshort(value); }

void elong(std::uint32_t value) {
    if (Pass2 == 0) {
        LC += 4;
        return;
    }
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        outcode(value >> (shift - 8));
    }
    if (code_i <= kListedBytesLimit) {
        for (unsigned shift = 32; shift > 0; shift -= 8) {
            Code[code_i++] = static_cast<std::uint8_t>(value >> (shift - 8));
        }
    }
}

void outcode(std::uint32_t value) {
    if (Pass2 != 0) {
        emit_byte(value);
    }
}

void emit_zeros(std::uint64_t count) {
    if (Pass2 == 0) {
        LC += static_cast<std::uint32_t>(count);
        return;
    }
    for (; count > 0; --count) {
        // Quirk (rmb-lists-one): each zero is dropped again, so that one is left to be listed.
        drop_listed_bytes();
        ebyte(0);
    }
}

void list_byte(std::uint32_t value) {
    if (code_i < kListedBytesLimit) {
        Code[code_i++] = static_cast<std::uint8_t>(value);
    }
}

void outrecinit(int type, std::uint32_t address) {
    if (Pass2 == 0) {
        return;
    }
    std::size_t width = address_width(address);
    if (is_data_type(type)) {
        // Quirk (record-type): the narrowest type that holds the address, whatever the options
        // asked for, because loaders have always been given such files.
        type = static_cast<int>(width) - 1;
        record_type = type;
    } else if (is_end_type(type)) {
        type = kEndRecord16 + 2 - static_cast<int>(width);
    } else {
        width = record_type == kDataRecord32 ? 4 : record_type == kDataRecord24 ? 3 : 2;
    }
    outrec.type = type;
    outrec.count = width;
    for (std::size_t i = 0; i < width; ++i) {
        outrec.bytes[i] = static_cast<std::uint8_t>(address >> (8 * (width - 1 - i)));
    }
}

void putout() {
    const bool is_empty =
        is_data_type(outrec.type) && outrec.count == static_cast<std::size_t>(outrec.type) + 1;
    if (Pass2 != 0 && !is_empty) {
        putout1();
    }
}

void putout1() {
    std::array<char, kRecordTextCapacity> line;
    const auto length = static_cast<unsigned>(outrec.count) + 1;
    unsigned sum = length;
    line[0] = 'S';
    line[1] = kHexDigits[static_cast<unsigned>(outrec.type) & 0xFU];
    char *end = hex_byte(&line[2], length);
    for (std::size_t i = 0; i < outrec.count; ++i) {
        sum += outrec.bytes[i];
        end = hex_byte(end, outrec.bytes[i]);
    }
    end = hex_byte(end, ~sum);
    *end++ = '\n';
    objectfile.put(std::string_view(line.data(), static_cast<std::size_t>(end - line.data())));
    // Quirk (wide-script): a wider address spills into the script as memory contents at shifted
    // addresses, since simulators replay the script as it is.
    for (std::size_t i = kScriptAddressBytes; i < outrec.count; ++i) {
        put_script_line(outrec.bytes[1] + static_cast<unsigned>(i - kScriptAddressBytes),
                        outrec.bytes[i]);
    }
}

void end_array() { algofile.put(algofilecount != 0 ? "\n};\n" : "};\n"); }

void emit_new_run() {
    outrec = Record{};
    algofilecount = 0;
    emit_new_line();
}
