// An expression as C reads it, for comparison with what the assembler makes of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct CReading {
    std::int64_t value;
    std::string parenthesised; // so that the assembler gives it this value too
};

// The value of a name by its offset in the text; nothing if it is not known.
using NameValue = std::function<std::optional<std::int64_t>(std::size_t offset)>;

// Nothing for a text that C can't read or compute.
std::optional<CReading> read_as_c(std::string_view text, const NameValue &name_value);
