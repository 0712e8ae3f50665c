// The forms of an instruction, with the bytes that the assembler itself makes of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lsp {

struct Form {
    std::string operand; // with n for a value; empty: none
    std::uint8_t opcode = 0;
    std::size_t length = 0; // bytes
};

// Nothing for a word that is no instruction.
const std::vector<Form> &forms_of(std::string_view instruction);

bool is_instruction(std::string_view word);

// "LDA #n".
std::string in_full(std::string_view instruction, const Form &form);

} // namespace lsp
