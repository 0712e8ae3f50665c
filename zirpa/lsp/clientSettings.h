// What a user has set in an editor: what zirpa.json may say too, and what is shown.
#pragma once

#include "zirpa/lsp/protocol.h"
#include "zirpa/project.h"

#include <optional>
#include <string>

namespace lsp {

// Columns, counted from 0, to which formatting moves the fields of a line.
struct Columns {
    std::size_t operation = 8;
    std::size_t operand = 16;
    std::size_t comment = 32;
};

struct ClientSettings {
    Project project;
    bool are_bytes_shown = true;
    bool are_values_shown = true;
    Columns columns;
};

// Changes the settings as the JSON says; or tells what is wrong, and changes nothing.
std::optional<std::string> read_settings(const Json &json, ClientSettings &settings);

} // namespace lsp
