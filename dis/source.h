// A program as a source that assembles to the same bytes at the same addresses.
#pragma once

#include "dis/listing.h"

#include <string>

namespace dis {

// What is written besides, in comments.
struct Comments {
    bool bytes = false;      // address and bytes of each line
    bool references = false; // where a label is used
};

std::string source_of(const Listing &listing, const Comments &comments);

// An item without its label: operation and operand. Texts, zeros and bytes are data directives.
std::string statement_of(const Listing &listing, const Item &item);

} // namespace dis
