// Emission: every byte of code and data passes through here.
//
// Before the final pass the primitives only advance the location counter. In the final pass they
// also collect the bytes into the current S-record, keep a copy for the listing line, and write the
// C array; each finished record goes to the S-record file and, byte by byte, to the simulator
// script. Multi-byte values are emitted most significant byte first.
#pragma once

#include "util/clear.h"

#include <array>
#include <cstddef>
#include <cstdint>

// Bytes of a record, address included.
inline constexpr std::size_t kRecordCapacity = 32;
// Bytes of a line that are kept for the listing: further single bytes are emitted but not listed.
inline constexpr std::size_t kListedBytesLimit = 120;
// Values of a row of the C array.
inline constexpr unsigned kArrayRowValues = 16;

// Types of records.
enum RecordType : int {
    kDataRecord16 = 1,
    kDataRecord24 = 2,
    kDataRecord32 = 3,
    kEndRecord32 = 7,
    kEndRecord24 = 8,
    kEndRecord16 = 9,
};

// ---- State owned here ----

extern std::array<std::uint8_t, 128> Code; // bytes that the line generated, for the listing
extern std::size_t code_i;                 // their count; reset at each line
extern int Byte_Extension;     // 1: the listing shows bytes one by one; set at each line
extern unsigned algofilecount; // values on the current row of the C array

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

// Keeps a byte for the listing without emitting it.
void list_byte(std::uint32_t value);

// In the final pass, begins a record. The address alone chooses among the data types (1 to 3) and
// among the end types (7 to 9); a data type is stored in record_type.
void outrecinit(int type, std::uint32_t address);

// In the final pass, writes the record, unless it is a data record without data.
void putout();

// Writes the record.
void putout1();

// Ends the C array.
void end_array();

void emit_new_run();

// Forgets the bytes of the line. Those behind code_i are always 0.
inline void drop_listed_bytes() {
    clear_used<16>(Code, code_i);
    code_i = 0;
}

inline void emit_new_line() {
    drop_listed_bytes();
    Byte_Extension = 1;
}
