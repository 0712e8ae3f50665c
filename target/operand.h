// The operand parser: turns the operand field of an instruction into one addressing mode and a
// value.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct Symbol;

// Symbols of one expression that are remembered; further ones are only counted.
inline constexpr std::size_t kOperandSymbolLimit = 30;

// What the parser and the evaluator find out about one operand.
struct OperandResult {
    std::uint64_t mode = 0;   // one ADR_ bit after a successful parse
    std::int64_t value = 0;   // of the expression
    std::int32_t pc_bias = 0; // bytes from the given location to the end of the instruction
    std::int16_t forward_references = 0;
    std::int32_t symbol_size = 0;     // bit size of the last symbol, -1: none was used
    std::int64_t external_offset = 0; // always 0: nothing is external
    std::int32_t term_count = 0;      // always 1, likewise
    std::int32_t symbol_count = 0;    // names in the expression
    Symbol *first_symbol = nullptr;   // the first of them
};

// The same with the symbols of the expression.
struct OperandRecord : OperandResult {
    std::array<Symbol *, kOperandSymbolLimit> symbols{}; // in order of appearance
};

// ---- State owned here ----

extern OperandRecord opnd1; // the operand being parsed
extern OperandRecord opnd2; // a second one, for two-operand targets
extern int commadel;        // cleared at the start of every operand and every line

// ---- Functions ----

// Zeroes the whole record.
void ClearOp(OperandRecord &operand);

// Reads an operand at the scan position. 0 and one mode bit set, or nonzero for a syntax fault,
// which the caller reports.
int Parse_Operand(OperandRecord &operand);

// Reads two register names with a comma between. 1 and their tokens, or 0.
int ParseReglist(int &first, int &second);

inline void operand_new_line() { commadel = 0; }
