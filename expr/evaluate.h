// The second act of an expression: its value, from left to right and not by precedence.
//
// "+" and "-" separate terms, "*" (and "/" or "%" right after an operand) binds tighter, and every
// other operator takes the next term alone and combines it with all that has been gathered. So
// 2+3*4 is 14, but 1+6<<1 is 14 too. Programs depend on such results, so the steps are kept as they
// are. Values are 64-bit two's complement and wrap; literals and symbols enter as 32-bit signed
// numbers.
//
// Nothing is evaluated until the check (expr/check.h) has passed.
#pragma once

#include "expr/record.h"

#include <cstdint>

// ---- State owned here; reset for each expression ----

extern int status;       // result of the check; STATUS_STOPPED ends evaluation steps early
extern int offset;       // 0-based column in the line of the token at which the check stopped
extern int in_paren;     // parenthesis depth during evaluation
extern int end_of_input; // evaluation has met the end of the expression

// ---- Functions ----

// Evaluates the expression at text, which may be a copied word; column is the 0-based column that
// text has in the line. Reports a syntax error and returns 0 then, with the scan position at text;
// otherwise the scan position does not change. With check set, reports undefined symbols.
std::int64_t evalexp(const char *text, int check, int column);

// The same for a text in the line itself.
std::int64_t evalexp(const char *text, int check);

// Evaluates the expression at the scan position into the record and moves to the character that
// ended it: 0; or 1 for a syntax error, which is reported with report set.
int ppexpr(OperandRecord &operand, int report);

// One evaluation step that starts from the value so far; operand may be null. The node kind and
// mode do not matter. Returns the new value.
std::int64_t p0(std::int64_t accumulated, int node_kind, int depth, int mode,
                OperandRecord *operand);
