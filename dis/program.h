// What a file of bytes holds: a program of at most 64 KiB, and what is known of it besides.
//
// The processor has addresses of 8 bits; records and sources can go beyond, and up to FFFF they are
// kept as they are. A byte that no record gives is not part of the program, which is something else
// than a zero.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dis {

inline constexpr std::uint32_t kAddresses = 0x10000;

// Bytes by their addresses. Addresses from kAddresses on are never held.
class Image {
  public:
    bool holds(std::uint32_t address) const {
        return address < cells_.size() && cells_[address] != kNone;
    }
    // 0 for an address that is not held.
    std::uint8_t at(std::uint32_t address) const {
        return holds(address) ? static_cast<std::uint8_t>(cells_[address]) : std::uint8_t{0};
    }
    // False, and nothing done, if the address is held already or can't be.
    bool set(std::uint32_t address, std::uint8_t byte);
    // The first held address from there on; kAddresses if there is none.
    std::uint32_t next_held(std::uint32_t address) const;

    bool operator==(const Image &) const = default;

  private:
    static constexpr std::uint16_t kNone = 0x100;

    std::vector<std::uint16_t> cells_; // up to the last one that is held: most programs are short
};

// A name for an address, which may be outside of the image.
struct Name {
    std::string text;
    std::uint32_t address;
};

// The line of a source that an instruction has come from.
struct SourceLine {
    std::uint32_t address;
    std::string file;
    int line; // from 1
};

struct Program {
    Image image;
    std::optional<std::uint32_t> entry; // where it starts, if the file says so
    std::vector<SourceLine> lines;      // in the order of the file
    std::vector<Name> names;
};

// The entry if it is known; else the first address that is held, or 0.
std::uint32_t start_of(const Program &program);

} // namespace dis
