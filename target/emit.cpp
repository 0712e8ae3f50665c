// A record is collected until it is full, until the address jumps (ORG) or until the program ends;
// it begins with its address, so that a full one is just as many bytes for every width of address.
// The capacity counts the address: wider addresses leave less room for data.
//
// Bytes for the listing are kept apart from those for the record, because a line may generate more
// than is listed, and because data that is not emitted, a constant's value, is listed as well.
#include "target/emit.h"

#include "as/asOptions.h"
#include "target/location.h"

#include <vector>

std::array<std::uint8_t, 128> Code{};
std::size_t code_i = 0;
int Byte_Extension = 1;

namespace {

Record outrec; // the record being collected

std::vector<ByteWriter> byte_writers;
std::vector<RecordWriter> record_writers;

bool is_data_type(int type) { return type >= kDataRecord16 && type <= kDataRecord32; }

bool is_end_type(int type) { return type >= kEndRecord32 && type <= kEndRecord16; }

// Address bytes that an address needs: 2, 3 or 4.
std::size_t address_width(std::uint32_t address) {
    return address >> 24U != 0 ? 4 : address >> 16U != 0 ? 3 : 2;
}

// Not inlined, as the next one: rare, while the way of a byte is short.
[[gnu::noinline]] void start_next_record() {
    putout1();
    outrecinit(record_type, LC);
}

[[gnu::noinline]] void hand_to_byte_writers(std::uint32_t value) {
    for (const ByteWriter writer : byte_writers) {
        writer(value);
    }
}

// Adds a byte to the record and to the formats that take bytes, and advances the location counter.
inline void emit_byte(std::uint32_t value) {
    if (outrec.count == kRecordCapacity) {
        start_next_record();
    }
    outrec.bytes[outrec.count++] = static_cast<std::uint8_t>(value);
    // Quirk (beyond-ff): nothing ends at FF; S-records show the whole address, listing and script
    // its low byte.
    ++LC;
    if (!byte_writers.empty()) {
        hand_to_byte_writers(value);
    }
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

void emit_to(ByteWriter byte_writer, RecordWriter record_writer) {
    if (byte_writer != nullptr) {
        byte_writers.push_back(byte_writer);
    }
    if (record_writer != nullptr) {
        record_writers.push_back(record_writer);
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
    for (const RecordWriter writer : record_writers) {
        writer(outrec);
    }
}

void emit_new_run() {
    outrec = Record{};
    byte_writers.clear();
    record_writers.clear();
    emit_new_line();
}
