// Emission: every byte of code and data passes through here.
//
// Before the final pass the primitives only advance the location counter. In the final pass they
// also keep a copy for the listing line and collect the bytes into records of consecutive
// addresses. An output format that has joined with emit_to takes each byte at once, or each record
// when it is finished; emission knows none of them by name. Multi-byte values are emitted most
// significant byte first.
#pragma once

#include "util/clear.h"

#include <array>
#include <cstddef>
#include <cstdint>

// Bytes of a record, address included.
inline constexpr std::size_t kRecordCapacity = 32;
// Bytes of a line that are kept for the listing: further single bytes are emitted but not listed.
inline constexpr std::size_t kListedBytesLimit = 120;

// Types of records.
enum RecordType : int {
    kDataRecord16 = 1,
    kDataRecord24 = 2,
    kDataRecord32 = 3,
    kEndRecord32 = 7,
    kEndRecord24 = 8,
    kEndRecord16 = 9,
};

// The bytes are the address, most significant byte first, and then the data.
struct Record {
    int type = 0;          // a digit
    std::size_t count = 0; // bytes held, address included
    std::array<std::uint8_t, kRecordCapacity> bytes{};
};

// What an output format does with the low 8 bits of a value, or with a finished record.
using ByteWriter = void (*)(std::uint32_t value);
using RecordWriter = void (*)(const Record &record);

// ---- State owned here ----

extern std::array<std::uint8_t, 128> Code; // bytes that the line generated, for the listing
extern std::size_t code_i;                 // their count; reset at each line
extern int Byte_Extension; // 1: the listing shows bytes one by one; set at each line

// ---- Functions ----

// Emits the low 8, 16 or 32 bits. ecode is eshort.
void ebyte(std::uint32_t value);
void eshort(std::uint32_t value);
void ecode(std::uint32_t value);
void elong(std::uint32_t value);

// In the final pass, emits a byte without keeping it for the listing.
void outcode(std::uint32_t value);

// Emits count bytes of 0. At most one of them is kept for the listing.
void emit_zeros(std::uint64_t count);

// Has an output format take the bytes and records of the run's final pass. Null: it doesn't want
// those.
void emit_to(ByteWriter byte_writer, RecordWriter record_writer);

// Keeps a byte for the listing without emitting it.
void list_byte(std::uint32_t value);

// In the final pass, begins a record. The address alone chooses among the data types (1 to 3) and
// among the end types (7 to 9); a data type is stored in record_type.
void outrecinit(int type, std::uint32_t address);

// In the final pass, finishes the record, unless it is a data record without data.
void putout();

// Finishes the record: hands it to the formats.
void putout1();

void emit_new_run();

// Forgets the bytes of the line. Those after code_i are always 0.
inline void drop_listed_bytes() {
    clear_used<16>(Code, code_i);
    code_i = 0;
}

inline void emit_new_line() {
    drop_listed_bytes();
    Byte_Extension = 1;
}
