#include "zirpa/memoryMap.h"

#include <algorithm>

void MemoryMap::put(std::uint32_t address, CellKind kind, std::uint8_t byte) {
    Cell &cell = cells[address];
    cell = {cell.kind == CellKind::kFree ? kind : CellKind::kTwice, byte};
}

void MemoryMap::take(const door::Line &line) {
    const CellKind kind = line.is_reserved                            ? CellKind::kReserved
                          : line.kind == door::LineKind::kInstruction ? CellKind::kCode
                                                                      : CellKind::kData;
    const std::uint64_t end = std::uint64_t{line.address} + line.size;
    const std::uint64_t last = std::min<std::uint64_t>(end, kCells);
    for (std::uint64_t address = line.address; address < last; ++address) {
        const auto index = static_cast<std::size_t>(address - line.address);
        put(static_cast<std::uint32_t>(address), kind,
            index < line.bytes.size() ? line.bytes[index] : std::uint8_t{0});
    }
    if (end > kCells && line.size > 0) {
        const std::uint32_t first = std::max<std::uint32_t>(line.address, kCells);
        first_beyond = beyond == 0 ? first : std::min(first_beyond, first);
        beyond += end - first;
    }
}

void MemoryMap::take(const door::Definition &definition) {
    const auto address = static_cast<std::uint32_t>(definition.value);
    if (definition.kind == door::NameKind::kLabel && address < kCells) {
        labels[address].emplace_back(definition.name);
    }
}

std::size_t MemoryMap::count(CellKind kind) const {
    return static_cast<std::size_t>(std::count_if(
        cells.begin(), cells.end(), [=](const Cell &cell) { return cell.kind == kind; }));
}

std::string_view name_of(CellKind kind) {
    static constexpr std::array<std::string_view, kCellKinds> kNames = {
        "free", "code", "data", "reserved", "written twice"};
    return kNames[static_cast<std::size_t>(kind)];
}
