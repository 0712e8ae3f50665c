// What a zirpa.json beside a source says of it: the names, words and warnings that would else be
// given on the command line, so that zirpa and editors see the source alike. Its schema is
// zirpa/project.schema.json.
#pragma once

#include "zirpa/inspection.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

inline constexpr const char *kProjectFile = "zirpa.json";

struct Project {
    std::vector<std::string> options; // of the assembler
    WarningChoice warnings;

    // What the other says comes later, and so counts where both say something.
    void add(const Project &other);
};

// Adds what the JSON says; or tells what is wrong with it. Members that it does not know are
// passed over where they belong to somebody else, as in the settings of an editor.
std::optional<std::string> read_project(const nlohmann::json &json, bool are_others_known,
                                        Project &project);

// The same for the text of a file.
std::optional<std::string> read_project(std::string_view text, Project &project);

// The file that belongs to a source.
std::string project_file_of(const std::string &source);
