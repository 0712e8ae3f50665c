// The chapters of zirpa explain, one for each identifier: what a diagnostic means, an example, the
// cure. docs/diagnostics.md is made of them.
#pragma once

#include "zirpa/diagnostic.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

struct Chapter {
    std::string_view id;
    Severity severity;
    std::string_view meaning;
    std::string_view cure;
    std::string_view example; // a source that draws it; empty where no short one does
};

std::span<const Chapter> report_chapters();
std::span<const Chapter> warning_chapters();
std::span<const Chapter> program_chapters(); // of files that dis and diff read

// All of them, reports first, those of programs last.
std::vector<Chapter> all_chapters();

// The identifiers that --allow, --deny and --warn take.
std::vector<std::string> all_identifiers();
