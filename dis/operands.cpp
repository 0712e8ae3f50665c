#include "dis/operands.h"

#include "dis/lines.h"
#include "dis/references.h"

namespace dis {

namespace {

constexpr std::uint8_t kMostDecimal = 9;

std::string number_text(std::uint8_t value) {
    return value <= kMostDecimal ? std::to_string(value) : "$" + hex(value);
}

std::string signed_text(std::int32_t value) {
    return value < 0 ? std::to_string(value) : "$" + hex_address(static_cast<std::uint32_t>(value));
}

// What is compared or loaded as a character most likely is one; masks and sums are not.
bool is_character(const door::Opcode &opcode, std::uint8_t value) {
    return (opcode.mnemonic == "LDA" || opcode.mnemonic == "CMPA") && value >= 0x20 && value < 0x7F;
}

// A constant's name for an address outside of the program; empty if there is none.
std::string constant_at(const Listing &listing, std::int32_t address) {
    for (const Name &name : listing.constants) {
        if (static_cast<std::int32_t>(name.address) == address) {
            return name.text;
        }
    }
    return {};
}

std::string immediate(const door::Opcode &opcode, std::uint8_t value) {
    if (is_character(opcode, value)) {
        return std::string("'") + static_cast<char>(value) + "'";
    }
    return number_text(value);
}

// An offset may be the address of a table: of data that has a label, which 0 is too often.
bool is_table(const Listing &listing, std::uint8_t offset) {
    return offset != 0 && listing.is_labelled[offset] != 0 &&
           listing.flow.cells[offset] != Cell::kCode;
}

std::string value_text(const Listing &listing, const Step &step) {
    const std::string &form = step.opcode->operand;
    if (const auto kind = reference_kind(step)) {
        return *kind == ReferenceKind::kPointer && !listing.program.image.holds(step.operand)
                   ? number_text(step.operand)
                   : address_text(listing, value_of(step));
    }
    if (form == "#n") {
        return immediate(*step.opcode, step.operand);
    }
    if ((form == "n,X" || form == "n,Y") && is_table(listing, step.operand)) {
        return address_text(listing, step.operand);
    }
    return number_text(step.operand);
}

} // namespace

std::string address_text(const Listing &listing, std::int32_t address) {
    const auto found = resolved(listing.program.image, address);
    if (!found) {
        const std::string constant = constant_at(listing, address);
        return constant.empty() ? signed_text(address) : constant;
    }
    const std::uint32_t anchor = anchor_of(listing, *found);
    const std::int32_t rest = address - static_cast<std::int32_t>(anchor);
    std::string text = label_of(listing, anchor);
    if (rest != 0) {
        text += (rest > 0 ? "+" : "") + std::to_string(rest);
    }
    return text;
}

std::string operand_of(const Listing &listing, const Step &step) {
    std::string text = step.opcode->operand;
    if (step.opcode->has_byte) {
        text.replace(text.find('n'), 1, value_text(listing, step));
    }
    return text;
}

} // namespace dis
