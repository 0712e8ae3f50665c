#include "dis/program.h"

#include <algorithm>

namespace dis {

bool Image::set(std::uint32_t address, std::uint8_t byte) {
    if (address >= kAddresses || held_[address] != 0) {
        return false;
    }
    bytes_[address] = byte;
    held_[address] = 1;
    return true;
}

std::uint32_t Image::next_held(std::uint32_t address) const {
    const auto from = held_.begin() + std::min(address, kAddresses);
    return static_cast<std::uint32_t>(std::find(from, held_.end(), 1) - held_.begin());
}

std::uint32_t Image::end_of_run(std::uint32_t address) const {
    const auto from = held_.begin() + std::min(address, kAddresses);
    return static_cast<std::uint32_t>(std::find(from, held_.end(), 0) - held_.begin());
}

std::uint32_t start_of(const Program &program) {
    const std::uint32_t first = program.image.next_held(0);
    return program.entry.value_or(first < kAddresses ? first : 0);
}

} // namespace dis
