// One run of the assembler for zirpa: what came of it, and the diagnostics.
#pragma once

#include "door/door.h"
#include "zirpa/diagnostic.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

// A warning that is shown when it is asked for.
inline constexpr const char *kUnusedLabel = "unused-label";

// Which warnings are wanted.
struct WarningChoice {
    std::set<std::string, std::less<>> allowed; // not shown
    std::set<std::string, std::less<>> denied;  // errors
    std::set<std::string, std::less<>> wanted;  // shown, though they are not by default
    bool all_denied = false;
    bool is_strict = false; // a warning fails the run

    bool operator==(const WarningChoice &) const = default;
};

struct Settings {
    std::vector<std::string> options; // of the assembler
    std::string source;               // as it is named in diagnostics
    std::optional<std::string> text;  // instead of the file
    door::Outputs outputs = door::Outputs::kNowhere;
    WarningChoice warnings;
    std::int64_t most_reserved = 0; // bytes, as for door::Run
};

struct Inspection {
    std::string file; // as it is named in diagnostics
    door::Result result;
    std::vector<Diagnostic> diagnostics; // in the order of the source; failures of files first
    bool has_failed = false;             // as is_strict asks for
    bool is_unusable = false;            // a file could not be read or written

    // A file could not be used.
    void take(const door::Failure &failure);

    int status() const { return is_unusable ? 2 : has_failed ? 1 : 0; }
};

// The listener is told of everything but reports, too.
Inspection inspect(const Settings &settings, const door::Listener &also);
