// Whether a source is what a program says: it is assembled, in memory, and compared.
#pragma once

#include "dis/program.h"

#include <string>

namespace dis {

// Empty if the source assembles without errors to the same bytes at the same addresses with the
// same start; else what is different.
std::string difference(const std::string &source, const Program &program);

} // namespace dis
