// What instructions refer to. Whether a value is an address is not written in it: it is one where
// the processor takes it for one, and a value for X, Y or SP is one if the program has that
// address.
#pragma once

#include "dis/flow.h"
#include "dis/program.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace dis {

enum class ReferenceKind { kBranch, kCall, kJump, kData, kPointer, kTable };

// An instruction or a table at one address refers to another one of the image.
struct Reference {
    std::uint32_t from;
    std::uint32_t to;
    ReferenceKind kind;
};

// The kind of a reference by an instruction's operand byte, if it is one.
std::optional<ReferenceKind> reference_kind(const Step &step);

// The address that the operand byte means, before it is looked for in the image.
std::int32_t value_of(const Step &step);

// All references, sorted by the address that is referred to.
std::vector<Reference> references_in(const Program &program, const Flow &flow);

} // namespace dis
