// The expression evaluator.
//
// An expression is checked first and evaluated afterwards, from left to right and not by
// precedence:
// "+" and "-" separate terms, "*" (and "/" or "%" right behind an operand) binds tighter, and every
// other operator takes the next term alone and combines it with all that has been gathered.
// Programs depend on the results, so the steps below are kept as they are. Values are 64-bit two's
// complement and wrap; literals and symbols enter as 32-bit signed numbers.
#pragma once

#include <cstdint>

struct OperandRecord;
struct Symbol;

// States of the syntax check.
enum ExprState : int {
    STATE_START = 2001,
    STATE_OPERAND_EXPECTED = 2004,
    STATE_OPERAND_SEEN = 2005,
};

// Results of the syntax check.
enum ExprStatus : int {
    STATUS_OK = 0,
    STATUS_MISSING_PARENTHESIS = 3000,
    STATUS_UNEXPECTED_PARENTHESIS = 3001,
    STATUS_OPERAND_EXPECTED = 3002,
    STATUS_MISSING_OPERATOR = 3003,
    STATUS_UNTERMINATED = 3004,
    STATUS_ILLEGAL_CHARACTER = 3005,
    STATUS_RESERVED_WORD = 3006,
    STATUS_STOPPED = -1, // division or remainder by zero
};

// ---- State owned here; reset for each expression ----

extern int state;        // of the syntax check
extern int status;       // its result; STATUS_STOPPED ends evaluation steps early
extern int offset;       // 0-based column in the line of the token at which the check stopped
extern int in_paren;     // parenthesis depth during evaluation
extern int end_of_input; // evaluation has met the end of the expression
extern Symbol *errorsp;  // the last symbol that counted as such in the final pass, or none

// ---- Functions ----

// Evaluates the expression at text, which may be a copied word; column is the 0-based column that
// text has in the line. Reports a syntax error and returns 0 then, with the scan position at text;
// otherwise the scan position does not change. With check set, reports undefined symbols.
std::int64_t evalexp(const char *text, int check, int column);

// The same for a text in the line itself.
std::int64_t evalexp(const char *text, int check);

// Evaluates the expression at the scan position into the record and moves to the character that
// ended it: 0; or 1 for a syntax error, which is reported with report set. Where the value isn't
// needed, the names are entered and the value may be 0.
int ppexpr(OperandRecord &operand, int report, bool is_value_needed = true);

// The syntax check of the expression at the scan position, which does not move on failure.
int p00();

// One evaluation step that starts from the value so far; operand may be none. The node kind and
// mode do not matter. Returns the new value.
std::int64_t p0(std::int64_t accumulated, int node_kind, int depth, int mode,
                OperandRecord *operand);
