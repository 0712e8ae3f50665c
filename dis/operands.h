// Operands of instructions as a source has them.
#pragma once

#include "dis/listing.h"

#include <string>

namespace dis {

// The operand of an instruction; empty if it has none. A value is written by name where it is an
// address of the program, as a character where it is one, and as a number otherwise.
std::string operand_of(const Listing &listing, const Step &step);

// An address by name, with what is missing to it or to the 8 bits of it; else in hexadecimal.
std::string address_text(const Listing &listing, std::int32_t address);

} // namespace dis
