// An operand has an expression, a register or neither in front, then a comma and a register, with a
// step beside it or not. The expression is tried first, and what it does not take is looked at by
// registers: that a register's name can't begin an expression is what keeps the two apart.
#include "target/operand.h"

#include "as/asPlace.h"
#include "expr/evaluate.h"
#include "target/optab.h"
#include "target/scan.h"
#include "util/text.h"

int commadel = 0;

namespace {

bool is_register(int token) {
    return token == TOK_A || token == TOK_CC || token == TOK_X || token == TOK_Y || token == TOK_SP;
}

// The one of two modes that an index register stands for, or 0 for any other token.
std::uint64_t index_mode(int token, std::uint64_t x_mode, std::uint64_t y_mode) {
    return token == TOK_X ? x_mode : token == TOK_Y ? y_mode : 0;
}

// After an expression: nothing, or a comma and the register that it is an offset from.
std::uint64_t mode_after_expression() {
    if (lookahead(',') == 0) {
        return ADR_ABS;
    }
    const int token = gettoken(kOperandMode);
    if (token == TOK_SP) {
        return ADR_SP_OFF;
    }
    return index_mode(token, ADR_X_OFF, ADR_Y_OFF);
}

// After a comma without an expression: a register with its step before or after it.
std::uint64_t auto_step_mode() {
    if (lookahead('-') != 0) {
        return index_mode(gettoken(kOperandMode), ADR_X_PREDEC, ADR_Y_PREDEC);
    }
    if (lookahead('+') != 0) {
        return index_mode(gettoken(kOperandMode), ADR_X_PREINC, ADR_Y_PREINC);
    }
    const int token = gettoken(kOperandMode);
    if (token != TOK_X && token != TOK_Y) {
        return 0;
    }
    if (lookahead('-') != 0) {
        return index_mode(token, ADR_X_POSTDEC, ADR_Y_POSTDEC);
    }
    return lookahead('+') != 0 ? index_mode(token, ADR_X_POSTINC, ADR_Y_POSTINC) : 0;
}

// The accumulator as an offset: A,X or A,Y.
std::uint64_t accumulator_mode() {
    if (gettoken(kOperandMode) != TOK_A || lookahead(',') == 0) {
        return 0;
    }
    return index_mode(gettoken(kOperandMode), ADR_A_X, ADR_A_Y);
}

} // namespace

int Parse_Operand(OperandRecord &operand) {
    ClearOp(operand);
    commadel = 0;
    if (lookahead('#') != 0) {
        if (ppexpr(operand, 1) != 0) {
            return 1;
        }
        operand.mode = ADR_IMM;
    } else if (ppexpr(operand, 0) == 0) {
        operand.mode = mode_after_expression();
    } else if (lookahead(',') != 0) {
        operand.mode = auto_step_mode();
    } else {
        operand.mode = accumulator_mode();
        if (operand.mode == 0) {
            return -1;
        }
    }
    // Quirk (blanks-in-operands): a blank ends the operand, and what follows it is not looked at.
    return operand.mode != 0 && isblanc(*Col_Ptr) ? 0 : 1;
}

int ParseReglist(int &first, int &second) {
    const int left = gettoken(kOperandMode);
    if (!is_register(left) || lookahead(',') == 0) {
        return 0;
    }
    const int right = gettoken(kOperandMode);
    if (!is_register(right)) {
        return 0;
    }
    first = left;
    second = right;
    return 1;
}
