// One record serves all operands of a run, since only one is worked on at a time; so each use
// begins with a cleared one.
#include "expr/record.h"

#include "symtab/symtab.h"
#include "util/clear.h"

#include <algorithm>

OperandRecord opnd1;
OperandRecord opnd2;

// Of the long list only the used part is cleared, since most operands have one symbol or none.
// Earns 3 % of the processor time of the large workload. To measure it again, assign an empty
// record.
void ClearOp(OperandRecord &operand) {
    const auto count = static_cast<std::size_t>(operand.symbol_count);
    clear_used<4>(operand.symbols, std::min(count, kOperandSymbolLimit));
    operand.mode = 0;
    operand.value = 0;
    operand.pc_bias = 0;
    operand.forward_references = 0;
    operand.symbol_size = 0;
    operand.external_offset = 0;
    operand.term_count = 0;
    operand.symbol_count = 0;
    operand.first_symbol = nullptr;
}

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
