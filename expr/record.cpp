// One record serves all operands of a run, since only one is worked on at a time; so each use
// begins with a cleared one.
#include "expr/record.h"

#include "as/asOptions.h"
#include "as/asPlace.h"
#include "symtab/symtab.h"
#include "util/clear.h"

#include <algorithm>

OperandRecord opnd1;
OperandRecord opnd2;
Symbol *errorsp = nullptr;

// Of the long list only the used part is cleared, since most operands have one symbol or none.
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

namespace {

// A forward reference counts once here, and once more where note_reference has counted it.
void count_forward_reference(Symbol *symbol) {
    if (Pass2 == 0) {
        forwardref = static_cast<std::int16_t>(forwardref + (symbol->has(SYM_UNDEFINED) ? 1 : 0));
    } else if ((symbol->has(SYM_DEFINED) && symbol->definition_line > listline) ||
               symbol->has(SYM_UNDEFINED)) {
        ++forwardref;
        errorsp = symbol;
    }
}

} // namespace

std::int64_t symbol_value(std::string_view name, Symbol *symbol, OperandRecord *operand) {
    note_reference(name, *symbol);
    count_forward_reference(symbol);
    if (operand != nullptr) {
        note_symbol(*operand, symbol);
    }
    return symbol->value;
}

std::int64_t name_value(std::string_view name, OperandRecord *operand) {
    return symbol_value(name, lookup(name), operand);
}
