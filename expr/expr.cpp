#include "expr/expr.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/operand.h"
#include "target/scan.h"
#include "util/text.h"
#include "util/wrap.h"

#include <array>

int state = 0;
int status = 0;
int offset = 0;
int in_paren = 0;
int end_of_input = 0;
std::int16_t forwardref = 0;
Symbol *errorsp = nullptr;

namespace {

// ---- The tokens of the check, which the evaluation reads again ----

struct CheckedToken {
    int token;
    std::int32_t number; // of a TOK_NUMBER
    const char *begin;
    const char *end;
};

// A line has fewer tokens than characters, its terminator included.
constexpr std::size_t kTokenLimit = kLineReadLimit + 2;

std::array<CheckedToken, kTokenLimit> checked_tokens;
std::size_t checked_count = 0;
std::size_t next_checked = 0;

// Scans a token and remembers it.
const CheckedToken &check_token() {
    CheckedToken &entry = checked_tokens[checked_count++];
    entry.begin = Col_Ptr;
    entry.token = gettoken(kExpressionMode);
    entry.number = yyval;
    entry.end = Col_Ptr;
    return entry;
}

// Goes back to the start of the expression. A leading "%" behind an operand-ending token would be
// read differently a second time, so it is then scanned anew.
void rewind_tokens() {
    next_checked = 0;
    if (*Col_Ptr == '%' && is_operand_ending(ctoken)) {
        checked_count = 0;
    }
}

// The next token of the evaluation: a checked one, or behind those a fresh one (the check ends at
// "<" and ">", the evaluation does not).
const CheckedToken &next_token() {
    if (next_checked < checked_count) {
        const CheckedToken &entry = checked_tokens[next_checked++];
        Col_Ptr = entry.end;
        return entry;
    }
    static CheckedToken entry;
    entry.begin = Col_Ptr;
    entry.token = gettoken(kExpressionMode);
    entry.number = yyval;
    entry.end = Col_Ptr;
    return entry;
}

// ---- Syntax check ----

bool is_single_character(int token) { return token < TOK_LC; }

const char *status_text(int code) {
    switch (code) {
    case STATUS_MISSING_PARENTHESIS: return "Missing Parenthesis";
    case STATUS_UNEXPECTED_PARENTHESIS: return "Unexpected Parenthesis";
    case STATUS_OPERAND_EXPECTED: return "Operand expected";
    case STATUS_MISSING_OPERATOR: return "Missing operator";
    case STATUS_UNTERMINATED: return "Unterminated expression";
    case STATUS_ILLEGAL_CHARACTER: return "Illegal character";
    default: return "Illegal use of reserved word";
    }
}

// The status at a token that ends the expression.
int status_at_end(int token) {
    if (is_single_character(token) && !is_expression_delimiter(static_cast<char>(token))) {
        return STATUS_ILLEGAL_CHARACTER;
    }
    return state == STATE_OPERAND_SEEN ? STATUS_OK : STATUS_UNTERMINATED;
}

constexpr int kScanOn = 1; // no status yet

// Takes one token into the state. Returns kScanOn or the status with which the check stops.
int check_step(int token, int &depth) {
    switch (token) {
    case TOK_A:
    case TOK_CC:
    case TOK_X:
    case TOK_Y:
    case TOK_SP: return STATUS_RESERVED_WORD;
    case TOK_EQ:
    case TOK_NE:
    case TOK_LE:
    case TOK_GE:
    case TOK_LOGICAL_OR:
    case TOK_LOGICAL_AND:
    case TOK_XOR:
    case TOK_PLUS:
    case TOK_MULTIPLY:
    case TOK_DIVIDE:
    case TOK_SHIFT_LEFT:
    case TOK_SHIFT_RIGHT:
    case TOK_AND:
    case TOK_OR:
    case TOK_REMAINDER:
        if (state != STATE_OPERAND_SEEN) {
            return STATUS_OPERAND_EXPECTED;
        }
        state = STATE_OPERAND_EXPECTED;
        return kScanOn;
    case TOK_NUMBER:
    case TOK_NAME:
        if (state == STATE_OPERAND_SEEN) {
            return STATUS_MISSING_OPERATOR;
        }
        state = STATE_OPERAND_SEEN;
        return kScanOn;
    case TOK_LOGICAL_NOT:
    case TOK_COMPLEMENT:
    case TOK_MINUS: state = STATE_OPERAND_EXPECTED; return kScanOn;
    case TOK_OPEN:
        ++depth;
        if (state == STATE_OPERAND_SEEN) {
            return STATUS_OPERAND_EXPECTED;
        }
        state = STATE_OPERAND_EXPECTED;
        return kScanOn;
    case TOK_CLOSE:
        --depth;
        // Kept: no operand is asked for in front of a closing parenthesis.
        state = STATE_OPERAND_SEEN;
        return depth < 0 ? STATUS_UNEXPECTED_PARENTHESIS : kScanOn;
    default: return status_at_end(token);
    }
}

// ---- Evaluation ----

// One step: the sum so far, the multiplier and the term, and what it waits for a nested step for.
struct Step {
    std::int64_t sum;
    std::int64_t multiplier;
    std::int64_t term;
    int depth;   // parenthesis depth
    int pending; // token whose right side is being evaluated
};

// Nested steps wait here instead of on the machine's stack, so that no nesting can exhaust it. Each
// has taken a token.
std::array<Step, kTokenLimit + 1> steps;

std::int64_t value_of(const Step &step) {
    return wrap_add(step.sum, wrap_multiply(step.multiplier, step.term));
}

// Adds multiplier times a value that stands in the term's place.
std::int64_t combine(const Step &step, std::int64_t term) {
    return wrap_add(step.sum, wrap_multiply(step.multiplier, term));
}

void add_term(Step &step) {
    step.sum = value_of(step);
    step.term = 0;
}

// Kept: only "/", "*" or "%%" right behind an operand keep it as the term of an operator.
bool term_goes_on() {
    return *Col_Ptr == '/' || *Col_Ptr == '*' || (*Col_Ptr == '%' && Col_Ptr[1] == '%');
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

void count_forward_reference(Symbol *symbol) {
    if (Pass2 == 0) {
        forwardref = static_cast<std::int16_t>(forwardref + (symbol->has(SYM_UNDEFINED) ? 1 : 0));
    } else if ((symbol->has(SYM_DEFINED) && symbol->definition_line > listline) ||
               symbol->has(SYM_UNDEFINED)) {
        ++forwardref;
        errorsp = symbol;
    }
}

std::int64_t name_value(std::string_view name, OperandRecord *operand) {
    Symbol *symbol = refsym(name);
    if (operand != nullptr) {
        note_symbol(*operand, symbol);
    }
    count_forward_reference(symbol);
    return symbol->value;
}

std::int64_t operand_value(const CheckedToken &token, OperandRecord *operand) {
    if (token.token == TOK_NUMBER) {
        return token.number;
    }
    return name_value({token.begin, static_cast<std::size_t>(token.end - token.begin)}, operand);
}

// A token without a meaning of its own: a character ends the expression.
std::int64_t end_step(const Step &step, const CheckedToken &token) {
    if (is_single_character(token.token)) {
        --Col_Ptr;
        end_of_input = 1;
        return value_of(step);
    }
    Error("Reached unreacheable point in Parser..P0");
    return step.sum;
}

// Reads tokens into a step. True when it is complete, with its value in result; false when it waits
// for a nested step, the token for which is pending.
bool run_step(Step &step, OperandRecord *operand, std::int64_t &result) {
    do {
        const CheckedToken &token = next_token();
        switch (token.token) {
        case TOK_NUMBER:
        case TOK_NAME:
            step.term = operand_value(token, operand);
            if (!term_goes_on()) {
                result = value_of(step);
                return true;
            }
            break;
        case TOK_PLUS: add_term(step); break;
        case TOK_MINUS:
            add_term(step);
            step.multiplier = wrap_negate(step.multiplier);
            break;
        case TOK_MULTIPLY:
            step.multiplier = wrap_multiply(step.multiplier, step.term);
            step.term = 0;
            break;
        case TOK_DIVIDE:
        case TOK_REMAINDER:
        case TOK_EQ:
        case TOK_NE:
        case TOK_LE:
        case TOK_GE:
        case TOK_LOGICAL_AND:
        case TOK_LOGICAL_OR:
        case TOK_AND:
        case TOK_OR:
        case TOK_XOR:
        case TOK_SHIFT_LEFT:
        case TOK_SHIFT_RIGHT:
        case TOK_LOGICAL_NOT:
        case TOK_COMPLEMENT: step.pending = token.token; return false;
        case TOK_OPEN:
            ++in_paren;
            if (in_paren > step.depth) {
                step.pending = token.token;
                return false;
            }
            result = value_of(step);
            return true;
        case TOK_CLOSE:
            --in_paren;
            result = value_of(step);
            return true;
        default: result = end_step(step, token); return true;
        }
    } while (status >= 0);
    result = value_of(step);
    return true;
}

// Division and remainder. Kept: only division by zero is told; both stop the steps from going on.
std::int64_t divide(const Step &step, std::int64_t right) {
    if (right == 0) {
        if (step.pending == TOK_DIVIDE) {
            Error("Integer divide by zero");
        }
        status = STATUS_STOPPED;
        return step.sum;
    }
    return combine(step, step.pending == TOK_DIVIDE ? wrap_divide(step.term, right)
                                                    : wrap_remainder(step.term, right));
}

// The value of a step whose nested step has given the right side of its pending operator.
std::int64_t apply_pending(const Step &step, std::int64_t right) {
    const std::int64_t left = step.term;
    switch (step.pending) {
    case TOK_DIVIDE:
    case TOK_REMAINDER: return divide(step, right);
    case TOK_EQ: return combine(step, left == right ? 1 : 0);
    case TOK_NE: return combine(step, left != right ? 1 : 0);
    case TOK_LE: return combine(step, left <= right ? 1 : 0);
    case TOK_GE: return combine(step, left >= right ? 1 : 0);
    case TOK_LOGICAL_AND: return combine(step, left != 0 && right != 0 ? 1 : 0);
    case TOK_LOGICAL_OR: return combine(step, left != 0 || right != 0 ? 1 : 0);
    case TOK_AND: return combine(step, left & right);
    case TOK_OR: return combine(step, left | right);
    case TOK_XOR: return combine(step, left ^ right);
    case TOK_SHIFT_LEFT: return combine(step, shift_left(left, right));
    case TOK_SHIFT_RIGHT: return combine(step, shift_right(left, right));
    case TOK_LOGICAL_NOT: return combine(step, right == 0 ? 1 : 0);
    case TOK_COMPLEMENT: return combine(step, ~right);
    default: return combine(step, right); // a parenthesis
    }
}

// Kept: the right side of an operator is evaluated at the depth of the operator.
int nested_depth(const Step &waiting) {
    return waiting.pending == TOK_OPEN ? waiting.depth + 1 : waiting.depth;
}

// True while a step waits for more steps inside its parenthesis.
bool wants_more(const Step &waiting) {
    return waiting.pending == TOK_OPEN && in_paren > waiting.depth && end_of_input == 0;
}

// ---- The direct way: most expressions are a number or a name alone ----

// True where an expression ends for sure.
bool ends_expression(char ch) { return isblanc(ch) || ch == ','; }

// The end of the number at the scan position if it stands alone, with its value; else none.
const char *lone_number(std::int64_t &value) {
    const bool is_hexadecimal = *Col_Ptr == '$';
    const unsigned base = is_hexadecimal ? 16 : 10;
    const char *digits = is_hexadecimal ? Col_Ptr + 1 : Col_Ptr;
    const char *p = digits;
    std::uint64_t number = 0;
    for (; digit_value(*p) < base; ++p) {
        number = number * base + digit_value(*p);
    }
    value = signed_32(static_cast<std::int64_t>(number));
    return p != digits && ends_expression(*p) ? p : nullptr;
}

// The end of the name at the scan position if it stands alone, else none.
const char *lone_name() {
    const std::size_t length = symbol_length(Col_Ptr);
    const bool is_alone =
        length != 0 && ends_expression(Col_Ptr[length]) && register_length(Col_Ptr) == 0;
    return is_alone ? Col_Ptr + length : nullptr;
}

// Evaluates an operand that stands alone and moves to the character behind it, with the scanner in
// the state that check and evaluation leave. False, without moving, for all other expressions.
bool evaluate_lone_operand(OperandRecord *operand, std::int64_t &value) {
    const char *end = lone_number(value);
    const bool is_number = end != nullptr;
    if (!is_number) {
        end = lone_name();
    }
    if (end == nullptr) {
        return false;
    }
    errorsp = nullptr;
    forwardref = 0;
    status = STATUS_OK;
    if (!is_number) {
        value = name_value({Col_Ptr, static_cast<std::size_t>(end - Col_Ptr)}, operand);
    }
    Col_Ptr = end;
    ctoken = static_cast<unsigned char>(*end);
    return true;
}

// Evaluates the checked expression, step by step up to its end.
std::int64_t evaluate(OperandRecord *operand) {
    end_of_input = 0;
    in_paren = 0;
    forwardref = 0;
    rewind_tokens();
    std::int64_t value = 0;
    do {
        value = p0(value, 0, 0, 0, operand);
    } while (end_of_input == 0);
    return value;
}

void report_status() { vpError("%s, Position[%d]", status_text(status), offset); }

void report_undefined() { vpError("Undefined symbol '%s'", errorsp->name); }

// Runs the check at the scan position, which then is at the expression's start again. The column is
// that of the start in the line.
void check_expression(int column) {
    const char *start = Col_Ptr;
    errorsp = nullptr;
    status = p00();
    offset = column + static_cast<int>(checked_tokens[checked_count - 1].begin - start);
    Col_Ptr = start;
}

int column_in_line(const char *text) { return static_cast<int>(text - Line_Ptr); }

// Kept: without reports a faulty character ends the expression instead of failing it, unless it
// could belong to a word.
bool fails(int report) {
    if (status == STATUS_OK) {
        return false;
    }
    const CheckedToken &last = checked_tokens[checked_count - 1];
    return report != 0 || status != STATUS_ILLEGAL_CHARACTER || is_name_char(*last.begin);
}

} // namespace

int p00() {
    const char *start = Col_Ptr;
    int depth = 0;
    int result = kScanOn;
    state = STATE_START;
    checked_count = 0;
    const CheckedToken *last = nullptr;
    while (result == kScanOn) {
        last = &check_token();
        result = check_step(last->token, depth);
    }
    // An open parenthesis wins over whatever stopped the check.
    if (depth > 0) {
        result = STATUS_MISSING_PARENTHESIS;
    }
    Col_Ptr = result == STATUS_OK ? last->begin : start;
    return result;
}

std::int64_t p0(std::int64_t accumulated, int /*node_kind*/, int depth, int /*mode*/,
                OperandRecord *operand) {
    steps[0] = {0, 1, accumulated, depth, 0};
    std::size_t top = 0;
    while (true) {
        std::int64_t result = 0;
        if (!run_step(steps[top], operand, result)) {
            const Step &waiting = steps[top];
            steps[++top] = {0, 1, 0, nested_depth(waiting), 0};
            continue;
        }
        // Hand the value to the waiting steps, as far as it completes them.
        while (top > 0 && !wants_more(steps[top - 1])) {
            --top;
            result = apply_pending(steps[top], result);
        }
        if (top == 0) {
            return result;
        }
        steps[top] = {0, 1, result, nested_depth(steps[top - 1]), 0};
    }
}

std::int64_t evalexp(const char *text, int check, int column) {
    const char *entry = Col_Ptr;
    Col_Ptr = text;
    std::int64_t value = 0;
    if (!evaluate_lone_operand(nullptr, value)) {
        check_expression(column);
        if (status != STATUS_OK) {
            report_status();
            return 0;
        }
        value = evaluate(nullptr);
    }
    if (check != 0 && Pass2 != 0 && forwardref != 0) {
        if (errorsp == nullptr) {
            // Kept: the capital S, where no symbol can be named.
            Error("Undefined Symbol");
        } else if (errorsp->has(SYM_UNDEFINED)) {
            report_undefined();
        }
    }
    Col_Ptr = entry;
    return value;
}

std::int64_t evalexp(const char *text, int check) {
    return evalexp(text, check, column_in_line(text));
}

int ppexpr(OperandRecord &operand, int report) {
    operand.symbol_size = -1;
    if (!evaluate_lone_operand(&operand, operand.value)) {
        check_expression(column_in_line(Col_Ptr));
        if (fails(report)) {
            if (report != 0) {
                report_status();
            }
            return 1;
        }
        operand.value = evaluate(&operand);
    }
    operand.forward_references = forwardref;
    operand.external_offset = 0;
    operand.term_count = 1;
    if (Pass2 != 0 && errorsp != nullptr && errorsp->has(SYM_UNDEFINED)) {
        report_undefined();
    }
    return 0;
}
