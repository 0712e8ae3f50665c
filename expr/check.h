// The first act of an expression: reading its tokens and checking their order.
//
// The check walks the tokens with a machine of three states (start, operand expected, operand
// seen) and a count of open parentheses. It knows nothing of precedence or values, and names are
// not looked up. What it has read stays in expression_tokens, so that the second act, the
// evaluation, goes through the same tokens again and scans none twice.
#pragma once

#include "as/asPlace.h"
#include "target/scan.h"

#include <array>
#include <cstddef>

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

// A line has fewer tokens than characters, its terminator included.
inline constexpr std::size_t kTokenLimit = kLineReadLimit + 2;

// The tokens of one expression, in their order. They stand next to each other in the text, so each
// begins where the one before it ends.
class TokenList {
  public:
    // Forgets all tokens. The next one begins at start.
    void clear(const char *start) {
        entries_[0].end = start;
        size_ = 0;
        next_ = 0;
    }

    void add(const ScannedToken &token) { entries_[++size_] = token; }

    std::size_t size() const { return size_; }
    const ScannedToken &operator[](std::size_t index) const { return entries_[index + 1]; }
    const ScannedToken &last() const { return entries_[size_]; }

    // Where a token begins.
    const char *begin_of(std::size_t index) const { return entries_[index].end; }
    const char *begin_of_last() const { return entries_[size_ - 1].end; }

    // Makes the first token the next one, or the one that is still to be read.
    void rewind() { next_ = 0; }
    void skip() { next_ = size_; }

    // Moves the scan position to the end of the next token. The check ends at "<" and ">" but the
    // evaluation does not, so the list goes on with what the text holds there.
    const ScannedToken &next() {
        if (next_ == size_) {
            read_on();
        }
        const ScannedToken &token = entries_[++next_];
        Col_Ptr = token.end;
        return token;
    }

  private:
    void read_on();

    // The first entry is no token, but ends where the expression begins.
    std::array<ScannedToken, 1 + kTokenLimit> entries_;
    std::size_t size_ = 0;
    std::size_t next_ = 0;
};

// ---- State owned here; reset for each expression ----

extern int state;                   // of the check, one of ExprState
extern TokenList expression_tokens; // of the expression checked last

// ---- Functions ----

// The syntax check of the expression at the scan position. Moves to the character that ends the
// expression, or on failure not at all.
int p00();

// The text of a status that is a failure.
const char *status_text(int status);
