// The first act of an expression: reading its tokens and checking their order.
//
// The check walks the tokens with a machine of three states (start, operand expected, operand
// seen) and a count of open parentheses. It knows nothing of precedence or values, and names are
// not looked up: the evaluation reads the tokens again, once all of them are known to be in order.
#pragma once

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
    STATUS_STOPPED = -1, // set by the evaluation: division or remainder by zero
};

// ---- State owned here; reset for each expression ----

extern int state;              // of the check, one of ExprState
extern const char *last_token; // where the token begins at which the check stopped

// ---- Functions ----

// The syntax check of the expression at the scan position. Moves to the character that ends the
// expression, or on failure not at all.
int p00();

// The text of a status that is a failure.
const char *status_text(int status);
