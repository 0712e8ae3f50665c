// Programs from files, with all that other files say of them.
#pragma once

#include "dis/listing.h"
#include "zirpa/disCommands.h"

#include <optional>

// Nothing if a file can't be used; what is wrong has been shown then.
std::optional<dis::Listing> read_program(const ProgramRequest &request, const std::string &file);

// All files that the request reads besides the program.
std::vector<std::string> other_inputs(const ProgramRequest &request);
