// What a program is as lines of a source, before these have a text: names, references and items.
#pragma once

#include "dis/flow.h"
#include "dis/hints.h"
#include "dis/pieces.h"
#include "dis/program.h"
#include "dis/references.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace dis {

struct Listing {
    Program program;
    Flow flow;
    std::vector<Reference> references; // by the address that is referred to
    // Labels of addresses at which an item begins.
    std::vector<std::uint8_t> is_labelled;                   // by address
    std::map<std::uint32_t, std::vector<std::string>> given; // names that are not made up
    std::vector<Name> constants;                             // names of addresses outside
    std::string start;                                       // the label of END; empty: none needed
    std::vector<Item> items;                                 // by address
};

Listing list(Program program, const Hints &hints);

// The address at which the item begins that this byte belongs to, as far as labels are concerned:
// that of the opcode for an operand byte.
std::uint32_t anchor_of(const Listing &listing, std::uint32_t address);

// The first label of an address that has one.
std::string label_of(const Listing &listing, std::uint32_t address);

// The references to an address, and to the byte after it if that is its operand.
std::span<const Reference> references_to(const Listing &listing, std::uint32_t address);

// Everything that was found, as hints that bring it back.
Hints hints_of(const Listing &listing);

} // namespace dis
