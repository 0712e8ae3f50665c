// A line is spelt in an array of the greatest length that one can have, and handed over at once.
#include "target/srecord.h"

#include <span>

namespace {

// Type, length, bytes, checksum and line feed.
constexpr std::size_t kLineCapacity = 2 + 2 * (1 + kRecordCapacity + 1) + 1;
static_assert(kLineCapacity <= kRoomLimit);

OutputBuffer buffer;

} // namespace

OutputFile objectfile(buffer);

void put_srecord(const Record &record) {
    // The length counts the checksum, which makes the sum of all bytes, itself included, FF.
    const auto length = static_cast<unsigned>(record.count) + 1;
    unsigned sum = length;
    char *end = objectfile.room(kLineCapacity);
    *end++ = 'S';
    *end++ = kHexDigits[static_cast<unsigned>(record.type) & 0xFU];
    end = hex_byte(end, length);
    for (const std::uint8_t byte : std::span(record.bytes).first(record.count)) {
        sum += byte;
        end = hex_byte(end, byte);
    }
    end = hex_byte(end, ~sum);
    *end++ = '\n';
    objectfile.add(end);
}

void end_srecords(std::uint32_t entry) {
    putout();
    outrecinit(kEndRecord16, entry);
    putout();
}
