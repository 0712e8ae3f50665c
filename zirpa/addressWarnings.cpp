#include "zirpa/warnings.h"

#include "zirpa/phrases.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kMemory = 256; // addresses that the processor has

} // namespace

void AddressWarnings::take(const door::Line &line) {
    if (is_directive(line, "ORG")) {
        has_origin_ = true;
        was_beyond_ = false;
        was_twice_ = false;
    }
    if (line.size > 0) {
        note_first_bytes(line);
        note_address(line);
        note_second_writing(line);
    }
}

void AddressWarnings::note_first_bytes(const door::Line &line) {
    if (!has_bytes_ && !has_origin_) {
        findings.push_back(warning("bytes-before-org", line.operation,
                                   "bytes above the first ORG: the S-records give them the address "
                                   "at which the source ends",
                                   "write ORG above this line"));
        findings.back().fixes.push_back(
            {"Write ORG above this line", {line.line, 1, 0}, "\tORG\t0\n"});
    }
    has_bytes_ = true;
}

// One line for a run of bytes that are all beyond.
void AddressWarnings::note_address(const door::Line &line) {
    const std::uint64_t end = std::uint64_t{line.address} + line.size;
    if (end > kMemory && !was_beyond_) {
        findings.push_back(warning("address-above-ff", line.operation,
                                   "the address " +
                                       in_hexadecimal(std::max(line.address, kMemory)) +
                                       " of a byte is above $FF"));
    }
    was_beyond_ = end > kMemory;
}

// One line for a run of lines that write again, as when an ORG is wrong.
void AddressWarnings::note_second_writing(const door::Line &line) {
    bool is_twice = false;
    const std::uint64_t end =
        std::min<std::uint64_t>(std::uint64_t{line.address} + line.size, kMemory);
    for (std::size_t address = line.address; address < end; ++address) {
        door::Place &before = writers_[address];
        if (before.line != 0 && !is_twice && !was_twice_) {
            findings.push_back(warning("written-twice", line.operation,
                                       "the byte at " +
                                           in_hexadecimal(static_cast<std::int64_t>(address)) +
                                           " has been given a value already"));
            findings.back().notes.push_back({without_text(before), "here"});
        }
        is_twice = is_twice || before.line != 0;
        before = line.operation;
    }
    was_twice_ = is_twice;
}
