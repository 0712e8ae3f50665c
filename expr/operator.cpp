// Comparisons and logical operators give numbers like all others, 1 or 0.
#include "expr/operator.h"

#include "util/wrap.h"

std::int64_t apply_operator(int token, std::int64_t left, std::int64_t right) {
    switch (token) {
    case TOK_PLUS: return wrap_add(left, right);
    case TOK_MINUS: return wrap_subtract(left, right);
    case TOK_MULTIPLY: return wrap_multiply(left, right);
    case TOK_DIVIDE: return wrap_divide(left, right);
    case TOK_REMAINDER: return wrap_remainder(left, right);
    case TOK_EQ: return left == right ? 1 : 0;
    case TOK_NE: return left != right ? 1 : 0;
    case TOK_LE: return left <= right ? 1 : 0;
    case TOK_GE: return left >= right ? 1 : 0;
    case TOK_LOGICAL_AND: return left != 0 && right != 0 ? 1 : 0;
    case TOK_LOGICAL_OR: return left != 0 || right != 0 ? 1 : 0;
    case TOK_AND: return left & right;
    case TOK_OR: return left | right;
    case TOK_XOR: return left ^ right;
    case TOK_SHIFT_LEFT: return shift_left(left, right);
    case TOK_SHIFT_RIGHT: return shift_right(left, right);
    // Quirk (unary-drops): these two leave out what is on their left, even a whole sum.
    case TOK_LOGICAL_NOT: return right == 0 ? 1 : 0;
    case TOK_COMPLEMENT: return ~right;
    default: return right; // a parenthesis
    }
}
