// Data as lines: texts, zeros and bytes.
//
// A run of bytes that looks like a text is one, and zeros are reserved. Both give the same bytes
// back: RMB writes its zeros into every output, as FCB would, and FCS has escapes for what a text
// can't hold.
#pragma once

#include "dis/flow.h"
#include "dis/program.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dis {

// A piece of the program that a line, or for texts and bytes some lines, can stand for.
enum class ItemKind { kInstruction, kText, kBytes, kZeros, kTable };

struct Item {
    ItemKind kind;
    std::uint32_t address;
    std::uint32_t size;
};

// How FCS writes a byte; nothing if it can't.
std::optional<std::string> in_text(std::uint8_t byte);

// Adds items for the data from one address up to another, which belong together and are of one
// kind.
void split_data(const Image &image, Cell kind, std::uint32_t begin, std::uint32_t end,
                std::vector<Item> &items);

} // namespace dis
