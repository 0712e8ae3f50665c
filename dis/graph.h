// The flow of a program as a picture, in the language of Graphviz.
#pragma once

#include "dis/listing.h"

#include <string>

namespace dis {

// A box for each sequence of instructions that is entered at its beginning alone, and an arrow for
// each way on: dashed for calls, dotted to what is not part of the program.
std::string graph_of(const Listing &listing);

} // namespace dis
