// What build, check and map do alike: assemble a source as the request asks for, and show what has
// been found.
#pragma once

#include "zirpa/commands.h"
#include "zirpa/formats.h"

inline constexpr int kUnusable = 2; // status: wrong use, or a file that can't be used

// The source is a file, or standard input. The listener is told of lines and definitions too.
Inspection assemble(const Request &request, const std::string &source, door::Outputs outputs,
                    const door::Listener &also = {});

// A name that looks like an option would be taken for one.
std::string as_file_name(const std::string &source);

// Diagnostics and their number on standard error; false when that can't be done.
bool show(const Request &request, const std::vector<FileReport> &reports);
