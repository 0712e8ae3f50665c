// What a program makes of the 256 addresses, and the pictures of it.
#pragma once

#include "door/door.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

inline constexpr std::size_t kCells = 256;
inline constexpr std::size_t kColumnsOfMap = 16;

enum class CellKind { kFree, kCode, kData, kReserved, kTwice };
inline constexpr std::size_t kCellKinds = 5;

struct Cell {
    CellKind kind = CellKind::kFree;
    std::uint8_t byte = 0; // written last
};

class MemoryMap {
  public:
    void take(const door::Line &line);
    void take(const door::Definition &definition);

    std::array<Cell, kCells> cells;
    std::map<std::uint32_t, std::vector<std::string>> labels; // by address, in the order of lines
    std::uint64_t beyond = 0;                                 // bytes above FF
    std::uint32_t first_beyond = 0;                           // the lowest of their addresses

    std::size_t count(CellKind kind) const;

  private:
    void put(std::uint32_t address, CellKind kind, std::uint8_t byte);
};

std::string_view name_of(CellKind kind);

// A picture for a terminal. Kinds are told apart by signs too, where there are no colours.
std::string picture_of(const MemoryMap &memory, const std::string &title, bool is_coloured);

// A picture as SVG.
std::string svg_of(const MemoryMap &memory, const std::string &title);
