// How the assembler computes an expression, step by step: the parts that it has finished one after
// another, each with the value that the assembler itself gives it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lsp {

struct Step {
    std::string text;
    std::int64_t value = 0;
};

// The value of the name that begins at an offset of the text; nothing if it is not known.
using ValueOfName = std::function<std::optional<std::int32_t>(std::size_t offset)>;

// In their order, without the expression as a whole; nothing where there is but one step.
std::vector<Step> steps_of(std::string_view text, const ValueOfName &value_of);

// The value of a number as it is written: decimal, $ hexadecimal, % binary or a quoted character.
std::optional<std::int64_t> number_of(std::string_view text);

} // namespace lsp
