// The same line is met three times. Pass 0 creates the symbol with its value. Pass 1 finds it and
// only marks it as defined again, because it can't tell a duplicate from the line's own first
// visit. The final pass can: a marked symbol whose recorded line is another one is a duplicate.
#include "as/asEqu.h"

#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asWatch.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "util/text.h"
#include "util/wrap.h"

#include <string_view>

namespace {

constexpr int kCarriedOut = 2;

// Quirk (silent-equ): a name that is nowhere defined is 0 here, without a message.
void store_operand(Symbol &symbol) { symbol.value = signed_32(evalexp(Col_Ptr, 0)); }

void make_absolute(Symbol &symbol, int set) {
    symbol.flags &= ~SYM_UNDEFINED;
    symbol.flags |= SYM_DEFINED | SYM_ABSOLUTE | (set != 0 ? SYM_REDEFINABLE : 0U);
}

// A symbol that exists, before the final pass.
void equate_existing(Symbol &symbol, int set) {
    if (symbol.has(SYM_UNDEFINED)) {
        make_absolute(symbol, set);
        store_operand(symbol);
    } else if (set == 0 || !symbol.has(SYM_REDEFINABLE)) {
        // Every EQU is met again in pass 1, so the mark alone makes no duplicate.
        symbol.flags |= SYM_MULTIPLE;
    } else {
        store_operand(symbol);
    }
}

Symbol *create_constant(std::string_view name, std::int32_t value, int set) {
    Symbol *symbol =
        putname(name, value, realline,
                SYM_DEFINED | SYM_ABSOLUTE | (set != 0 ? SYM_REDEFINABLE : 0U), kNoData);
    if (symbol != nullptr) {
        symbol->segment = absolute_segment();
    }
    return symbol;
}

// The checks of the final pass. The operand is compared with the value from before this line.
void check_constant(Symbol &symbol, std::int32_t value_before) {
    symbol.file = current_file_index();
    if (watcher != nullptr) {
        watcher->definition(DefinitionKind::kConstant, symbol);
    }
    if (symbol.has(SYM_MULTIPLE) && symbol.definition_line != realline) {
        vpError("symbol '%s' previously defined at line %d", symbol.name, symbol.definition_line);
        if (!isblanc(*Col_Ptr) && value_before != evalexp(Col_Ptr, 1)) {
            vpError("symbol '%s' redefined at line %d", symbol.name, realline);
        }
    }
    if (symbol.has(SYM_FORWARD)) {
        vpWarning("symbol '%s' is forward referenced from line %d", symbol.name,
                  symbol.first_reference_line);
    }
}

// Gives the label its value. Pass 0 computes with what it knows, in which labels that follow are 0;
// the final pass computes anew, when all labels have their addresses. Null when pass 0 has created
// the constant and nothing is left to be done.
Symbol *equate(std::string_view name, int set) {
    Symbol *symbol = find_name(name);
    if (symbol == nullptr) {
        if (Pass == 0 && set == 0) {
            (void)create_constant(name, signed_32(evalexp(Col_Ptr, 0)), set);
            return nullptr;
        }
        // The operand may name the symbol itself, which then is 0.
        symbol = create_constant(name, 0, set);
        store_operand(*symbol);
        return symbol;
    }
    if (symbol->definition_line == 0) {
        symbol->definition_line = realline;
    }
    if (Pass2 == 0) {
        equate_existing(*symbol, set);
        return symbol;
    }
    const std::int32_t value_before = symbol->value;
    store_operand(*symbol);
    check_constant(*symbol, value_before);
    return symbol;
}

} // namespace

int DoEqu(int set) {
    if (label == 0) {
        return fail("No label for \"equ\"");
    }
    const Symbol *symbol = equate(label_name(), set);
    if (symbol == nullptr) {
        return kCarriedOut;
    }
    const std::uint32_t value = low_32(symbol->value);
    // The value stands where other lines show an address and their bytes.
    list_byte(value >> 8U);
    list_byte(value);
    pending_listLC = 0;
    IsEqu = 1;
    IsEquDirective = 1;
    return kCarriedOut;
}
