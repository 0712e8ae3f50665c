// A line is spelt in an array of the greatest length that one can have, and handed over at once.
#include "target/srecord.h"

#include <array>

namespace {

// Type, length, bytes, checksum and line feed.
constexpr std::size_t kLineCapacity = 2 + 2 * (1 + kRecordCapacity + 1) + 1;

OutputBuffer buffer;

} // namespace

OutputFile objectfile(buffer);

void put_srecord(const Record &record) {
    // The length counts the checksum, which makes the sum of all bytes, itself included, FF.
    const auto length = static_cast<unsigned>(record.count) + 1;
    unsigned sum = length;
    std::array<char, kLineCapacity> line;
    char *end = line.data();
    *end++ = 'S';
    *end++ = kHexDigits[static_cast<unsigned>(record.type) & 0xFU];
    end = hex_byte(end, length);
    for (std::size_t i = 0; i < record.count; ++i) {
        sum += record.bytes[i];
        end = hex_byte(end, record.bytes[i]);
    }
    end = hex_byte(end, ~sum);
    *end++ = '\n';
    objectfile.put(text_between(line.data(), end));
}

void end_srecords(std::uint32_t entry) {
    putout();
    outrecinit(kEndRecord16, entry);
    putout();
}
