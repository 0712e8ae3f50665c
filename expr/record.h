// The operand record: what is known about one operand, or about the expression of a directive.
//
// The parser of operands clears it and sets the mode, the evaluator sets the value and notes the
// symbols, the encoder of branches sets the bias, and the relocation writes bytes from it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

struct Symbol;

// Symbols of one expression that are remembered; further ones are only counted.
inline constexpr std::size_t kOperandSymbolLimit = 30;

struct OperandRecord {
    std::uint64_t mode = 0;   // one ADR_ bit after a successful parse
    std::int64_t value = 0;   // of the expression
    std::int32_t pc_bias = 0; // bytes from the given location to the end of the instruction
    std::int16_t forward_references = 0;
    std::int32_t symbol_size = 0;     // bit size of the last symbol, -1: none was used
    std::int64_t external_offset = 0; // always 0: nothing is external
    std::int32_t term_count = 0;      // always 1, likewise
    std::int32_t symbol_count = 0;    // names in the expression
    Symbol *first_symbol = nullptr;   // the first of them
    std::array<Symbol *, kOperandSymbolLimit> symbols{}; // in order of appearance
};

// ---- State owned here; cleared by each user before use ----

extern OperandRecord opnd1; // the operand being read
extern OperandRecord opnd2; // a second one, for two-operand targets

// The last forward or undefined reference of the current expression in the final pass, or null;
// reset for each expression.
extern Symbol *errorsp;

// ---- Functions ----

// Zeroes the whole record.
void ClearOp(OperandRecord &operand);

// Adds the next symbol of the expression.
void note_symbol(OperandRecord &operand, Symbol *symbol);

// The value of a name that an expression refers to. Counts a forward reference and adds the symbol
// to the record, which may be null.
std::int64_t name_value(std::string_view name, OperandRecord *operand);

// The same for a symbol that has been found already.
std::int64_t symbol_value(std::string_view name, Symbol *symbol, OperandRecord *operand);
