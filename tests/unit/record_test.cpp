// The operand record.
#include "expr/record.h"

#include "symtab/symtab.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

TEST(OperandRecord, ClearingZeroesEveryField) {
    Symbol symbol;
    OperandRecord operand;
    operand.mode = 4;
    operand.value = -1;
    operand.pc_bias = 1;
    operand.forward_references = 2;
    operand.symbol_size = -1;
    operand.external_offset = 3;
    operand.term_count = 1;
    operand.symbol_count = static_cast<std::int32_t>(kOperandSymbolLimit) + 1;
    operand.first_symbol = &symbol;
    operand.symbols.fill(&symbol);
    ClearOp(operand);
    EXPECT_EQ(operand.mode, 0U);
    EXPECT_EQ(operand.value, 0);
    EXPECT_EQ(operand.pc_bias, 0);
    EXPECT_EQ(operand.forward_references, 0);
    EXPECT_EQ(operand.symbol_size, 0);
    EXPECT_EQ(operand.external_offset, 0);
    EXPECT_EQ(operand.term_count, 0);
    EXPECT_EQ(operand.symbol_count, 0);
    EXPECT_EQ(operand.first_symbol, nullptr);
    EXPECT_EQ(operand.symbols[0], nullptr);
    EXPECT_EQ(operand.symbols[kOperandSymbolLimit - 1], nullptr);
}

TEST(OperandRecord, NotesSymbolsUpToItsLimitAndCountsAll) {
    std::array<Symbol, kOperandSymbolLimit + 1> symbols;
    OperandRecord operand;
    std::int16_t size = 0;
    for (Symbol &symbol : symbols) {
        symbol.bit_size = ++size;
        note_symbol(operand, &symbol);
    }
    EXPECT_EQ(operand.symbol_count, 31);
    EXPECT_EQ(operand.first_symbol, &symbols[0]);
    EXPECT_EQ(operand.symbol_size, 31);
    for (std::size_t i = 0; i < kOperandSymbolLimit; ++i) {
        EXPECT_EQ(operand.symbols[i], &symbols[i]) << i;
    }
}

} // namespace
