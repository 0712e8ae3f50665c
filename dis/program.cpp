#include "dis/program.h"

namespace dis {

bool Image::set(std::uint32_t address, std::uint8_t byte) {
    if (address >= kAddresses || holds(address)) {
        return false;
    }
    if (address >= cells_.size()) {
        cells_.resize(address + 1, kNone);
    }
    cells_[address] = byte;
    return true;
}

std::uint32_t Image::next_held(std::uint32_t address) const {
    while (address < cells_.size() && cells_[address] == kNone) {
        ++address;
    }
    return address < cells_.size() ? address : kAddresses;
}

std::uint32_t start_of(const Program &program) {
    const std::uint32_t first = program.image.next_held(0);
    return program.entry.value_or(first < kAddresses ? first : 0);
}

} // namespace dis
