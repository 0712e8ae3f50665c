// One record serves all operands of a run, since only one is worked on at a time; so each use
// begins with a cleared one.
#include "expr/record.h"

#include "symtab/symtab.h"

OperandRecord opnd1;
OperandRecord opnd2;

void ClearOp(OperandRecord &operand) { operand = {}; }

void note_symbol(OperandRecord &operand, Symbol *symbol) {
    const auto count = static_cast<std::size_t>(operand.symbol_count++);
    if (count < kOperandSymbolLimit) {
        operand.symbols[count] = symbol;
    }
    if (operand.first_symbol == nullptr) {
        operand.first_symbol = symbol;
    }
    operand.symbol_size = symbol->bit_size;
}
