// The check reads token by token, asks check_step what each makes of the expression, and goes on
// until there is a status. Where the token that gives the status begins is kept, faulty or not, so
// that a report can name its column.
#include "expr/check.h"

#include "as/asPlace.h"
#include "target/scan.h"
#include "util/text.h"

int state = 0;
const char *last_token = nullptr;

namespace {

constexpr int kScanOn = 1; // in the place of a status: there is none yet

// Operators that may stand where an operand is expected. All of them may follow an operand too: the
// minus as a difference, the negations because nothing was ever asked of what precedes them.
bool is_prefix(int token) {
    return token == TOK_MINUS || token == TOK_LOGICAL_NOT || token == TOK_COMPLEMENT;
}

// The status at a token that ends the expression.
int status_at_end(int token, bool operand_seen) {
    if (is_character(token) && !is_expression_delimiter(static_cast<char>(token))) {
        return STATUS_ILLEGAL_CHARACTER;
    }
    return operand_seen ? STATUS_OK : STATUS_UNTERMINATED;
}

// What the check knows between two tokens.
struct Progress {
    int state = STATE_START;
    int depth = 0; // open parentheses
};

// Takes one token into account. Returns kScanOn or the status with which the check stops.
int check_step(int token, Progress &progress) {
    const bool operand_seen = progress.state == STATE_OPERAND_SEEN;
    if (is_operand(token)) {
        progress.state = STATE_OPERAND_SEEN;
        return operand_seen ? STATUS_MISSING_OPERATOR : kScanOn;
    }
    if (is_operator(token)) {
        progress.state = STATE_OPERAND_EXPECTED;
        return operand_seen || is_prefix(token) ? kScanOn : STATUS_OPERAND_EXPECTED;
    }
    switch (token) {
    case TOK_OPEN:
        ++progress.depth;
        progress.state = STATE_OPERAND_EXPECTED;
        return operand_seen ? STATUS_OPERAND_EXPECTED : kScanOn;
    case TOK_CLOSE:
        --progress.depth;
        // Quirk (empty-parentheses): no operand is asked for before a closing parenthesis.
        progress.state = STATE_OPERAND_SEEN;
        return progress.depth < 0 ? STATUS_UNEXPECTED_PARENTHESIS : kScanOn;
    case TOK_A:
    case TOK_CC:
    case TOK_X:
    case TOK_Y:
    case TOK_SP: return STATUS_RESERVED_WORD;
    default: return status_at_end(token, operand_seen);
    }
}

} // namespace

int p00() {
    const char *start = Col_Ptr;
    Progress progress;
    int result = kScanOn;
    while (result == kScanOn) {
        last_token = Col_Ptr;
        result = check_step(gettoken(kExpressionMode), progress);
    }
    state = progress.state;
    // Quirk (open-parenthesis): an open parenthesis wins over whatever stopped the check.
    if (progress.depth > 0) {
        result = STATUS_MISSING_PARENTHESIS;
    }
    Col_Ptr = result == STATUS_OK ? last_token : start;
    return result;
}

const char *status_text(int status) {
    switch (status) {
    case STATUS_MISSING_PARENTHESIS: return "Missing Parenthesis";
    case STATUS_UNEXPECTED_PARENTHESIS: return "Unexpected Parenthesis";
    case STATUS_OPERAND_EXPECTED: return "Operand expected";
    case STATUS_MISSING_OPERATOR: return "Missing operator";
    case STATUS_UNTERMINATED: return "Unterminated expression";
    case STATUS_ILLEGAL_CHARACTER: return "Illegal character";
    default: return "Illegal use of reserved word";
    }
}
