// From a report of the assembler to a diagnostic: what is wrong in a user's words, and what helps.
#pragma once

#include "zirpa/diagnostic.h"
#include "zirpa/heard.h"

#include <vector>

// The diagnostics for all reports. Those that follow from one before them are left out.
std::vector<Diagnostic> put_into_words(const Heard &heard);
