#include "dis/references.h"

#include <algorithm>

namespace dis {

namespace {

// CMPX #n as well as LDX #n: the instruction's name ends with that of its register.
bool is_of_address_register(std::string_view mnemonic) {
    return mnemonic.ends_with('X') || mnemonic.ends_with('Y') || mnemonic.ends_with("SP");
}

} // namespace

std::optional<ReferenceKind> reference_kind(const Step &step) {
    const door::Opcode &opcode = *step.opcode;
    if (step.target) {
        return step.way == Way::kCall   ? ReferenceKind::kCall
               : step.way == Way::kJump ? ReferenceKind::kJump
                                        : ReferenceKind::kBranch;
    }
    if (opcode.operand == "n") {
        return ReferenceKind::kData;
    }
    if (opcode.operand == "#n" && is_of_address_register(opcode.mnemonic)) {
        return ReferenceKind::kPointer;
    }
    return std::nullopt;
}

std::int32_t value_of(const Step &step) { return step.target.value_or(step.operand); }

std::vector<Reference> references_in(const Program &program, const Flow &flow) {
    std::vector<Reference> references;
    const auto add = [&](std::uint32_t from, std::int32_t value, ReferenceKind kind) {
        if (const auto to = resolved(program.image, value)) {
            references.push_back({from, *to, kind});
        }
    };
    for (std::uint32_t address = 0; address < kAddresses; ++address) {
        if (flow.cells[address] == Cell::kCode) {
            const Step step = step_at(program.image, address);
            if (const auto kind = reference_kind(step)) {
                add(address, value_of(step), *kind);
            }
        } else if (flow.cells[address] == Cell::kTable) {
            add(address, program.image.at(address), ReferenceKind::kTable);
        }
    }
    std::stable_sort(
        references.begin(), references.end(),
        [](const Reference &one, const Reference &other) { return one.to < other.to; });
    return references;
}

} // namespace dis
