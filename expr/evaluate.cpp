// A step keeps a sum, a multiplier and a term, and its value is sum + multiplier * term. "+" and
// "-" move the term into the sum, "*" into the multiplier, and an operand is the new term, with
// which the step mostly ends. The next step takes the value so far as its first term: that is what
// makes evaluation go from left to right. Any other operator waits for a nested step, its right
// side.
#include "expr/evaluate.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "expr/check.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "util/text.h"
#include "util/wrap.h"

#include <array>
#include <optional>

int status = 0;
int offset = 0;
int in_paren = 0;
int end_of_input = 0;
Symbol *errorsp = nullptr;

namespace {

// ---- Operands ----

// A forward reference counts once here, and once more where refsym has counted it.
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

std::int64_t operand_value(const char *begin, const ScannedToken &scanned, OperandRecord *operand) {
    return scanned.token == TOK_NUMBER ? scanned.number
                                       : name_value(text_between(begin, scanned.end), operand);
}

// ---- Steps ----

struct Step {
    std::int64_t sum;
    std::int64_t multiplier;
    std::int64_t term;
    int depth;   // parenthesis depth
    int pending; // token whose right side is being evaluated
};

// Steps that wait for a nested one, outermost first. They stand here instead of on the machine's
// stack, so that no nesting can exhaust it. Each has taken a token.
std::array<Step, kTokenLimit + 1> waiting_steps;

// Adds multiplier times a value that stands in the term's place.
std::int64_t combine(const Step &step, std::int64_t term) {
    return wrap_add(step.sum, wrap_multiply(step.multiplier, term));
}

std::int64_t value_of(const Step &step) { return combine(step, step.term); }

void add_term(Step &step) {
    step.sum = value_of(step);
    step.term = 0;
}

// Quirk (left-to-right): only "/", "*" or "%%" right after an operand keep it as the term of an
// operator; any other operator takes the whole value so far. Quirk (remainder-of-sum): a "%" alone
// is such an operator. Quirk (doubled-percent): "%%" is not, since its second "%" begins a number.
bool term_goes_on(const char *p) { return *p == '/' || *p == '*' || (*p == '%' && p[1] == '%'); }

// A token without a meaning of its own: a character ends the expression.
std::int64_t end_step(const Step &step, int token) {
    if (is_character(token)) {
        --Col_Ptr;
        end_of_input = 1;
        return value_of(step);
    }
    // Quirk (less-greater): "<" and ">" are scanned, but nothing was ever computed from them.
    Error("Reached unreacheable point in Parser..P0");
    return step.sum;
}

// Division and remainder. Quirk (silent-remainder): only division by zero is reported; both stop
// the steps from going on.
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
    // Quirk (unary-drops): these two leave out the term on their left, which is the whole value so
    // far.
    case TOK_LOGICAL_NOT: return combine(step, right == 0 ? 1 : 0);
    case TOK_COMPLEMENT: return combine(step, ~right);
    default: return combine(step, right); // a parenthesis
    }
}

// Reads tokens into a step. Returns its value, or nothing while it waits for a nested step, the
// token for which is pending.
std::optional<std::int64_t> run_step(Step &step, OperandRecord *operand) {
    do {
        const char *begin = Col_Ptr;
        const ScannedToken &token = expression_tokens.next();
        switch (token.token) {
        case TOK_NUMBER:
        case TOK_NAME:
            step.term = operand_value(begin, token, operand);
            // Quirk (one-term): a step ends with its operand, so the right side of an operator is
            // one term or product. Quirk (division-chain): that of "/" goes on with the products
            // after it.
            if (!term_goes_on(token.end)) {
                return value_of(step);
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
        case TOK_OPEN:
            if (++in_paren <= step.depth) {
                return value_of(step);
            }
            step.pending = TOK_OPEN;
            return std::nullopt;
        case TOK_CLOSE: --in_paren; return value_of(step);
        default:
            if (!is_operator(token.token)) {
                return end_step(step, token.token);
            }
            step.pending = token.token;
            return std::nullopt;
        }
    } while (status >= 0);
    return value_of(step);
}

// The right side of an operator is evaluated at the depth of the operator.
int nested_depth(const Step &waiting) {
    return waiting.pending == TOK_OPEN ? waiting.depth + 1 : waiting.depth;
}

// True while a step waits for more steps inside its parenthesis.
bool wants_more(const Step &waiting) {
    return waiting.pending == TOK_OPEN && in_paren > waiting.depth && end_of_input == 0;
}

// ---- Whole expressions ----

// Evaluates the checked expression, step by step up to its end.
std::int64_t evaluate_steps(OperandRecord *operand) {
    expression_tokens.rewind();
    std::int64_t value = 0;
    // Quirk (product-after-parenthesis): a parenthesis ends the step, so what follows it has the
    // whole value so far on its left.
    do {
        value = p0(value, 0, 0, 0, operand);
    } while (end_of_input == 0);
    return value;
}

// Moves to the end of the checked expression, as the steps do: onto the character that ended it, or
// the faulty digit.
void skip_to_end() { Col_Ptr = expression_tokens.last().end - 1; }

// Takes over from the steps where no value is asked for: enters the names, in their order. Pass 1
// needs no more of an operand, whose form alone decides on the length of the statement.
void enter_names(OperandRecord *operand) {
    for (std::size_t i = 0; i < expression_tokens.size(); ++i) {
        if (expression_tokens[i].token == TOK_NAME) {
            (void)operand_value(expression_tokens.begin_of(i), expression_tokens[i], operand);
        }
    }
}

// The value of the checked expression, or 0 where none is needed.
std::int64_t checked_value(OperandRecord *operand, bool is_value_needed) {
    end_of_input = 0;
    in_paren = 0;
    forwardref = 0;
    // The check ends at "<" and ">" but the steps don't, so only they know what is to be read.
    if (!is_character(expression_tokens.last().token)) {
        return evaluate_steps(operand);
    }
    if (!is_value_needed) {
        skip_to_end();
        enter_names(operand);
        return 0;
    }
    return evaluate_steps(operand);
}

// The direct way: most expressions are a number or a name with a blank or a comma after it, which
// needs neither list nor steps. Leaves all state as the check and the steps do. Where it gives
// nothing, the check reads the token anew; a faulty digit is reported once all the same, as a line
// has no second plain error.
//
// Earns 6 % of the processor time of the large workload. To measure it again, return nothing at
// once.
inline std::optional<std::int64_t> lone_operand_value(OperandRecord *operand) {
    const char *begin = Col_Ptr;
    const ScannedToken scanned = scan_token(begin, kExpressionMode, ctoken);
    if (!is_operand(scanned.token) || !has_class(*scanned.end, kClassOperandEnd)) {
        return std::nullopt;
    }
    errorsp = nullptr;
    forwardref = 0;
    status = STATUS_OK;
    Col_Ptr = scanned.end;
    ctoken = static_cast<unsigned char>(*scanned.end);
    return operand_value(begin, scanned, operand);
}

// Runs the check at the scan position, which then is at the expression's start again. The column is
// that of the start in the line.
void check_expression(int column) {
    const char *start = Col_Ptr;
    errorsp = nullptr;
    status = p00();
    offset = column + static_cast<int>(expression_tokens.begin_of_last() - start);
    Col_Ptr = start;
}

int column_in_line(const char *text) { return static_cast<int>(text - Line_Ptr); }

// Without reports a faulty character ends the expression instead of failing it, unless it
// could belong to a word.
bool fails(int report) {
    if (status == STATUS_OK) {
        return false;
    }
    return report != 0 || status != STATUS_ILLEGAL_CHARACTER ||
           is_name_char(*expression_tokens.begin_of_last());
}

void report_status() { vpError("%s, Position[%d]", status_text(status), offset); }

bool is_undefined_reference() { return errorsp != nullptr && errorsp->has(SYM_UNDEFINED); }

void report_undefined() { vpError("Undefined symbol '%s'", errorsp->name); }

} // namespace

std::int64_t p0(std::int64_t accumulated, int /*node_kind*/, int depth, int /*mode*/,
                OperandRecord *operand) {
    Step step = {0, 1, accumulated, depth, 0};
    std::size_t waiting = 0;
    while (true) {
        std::optional<std::int64_t> result = run_step(step, operand);
        if (!result) {
            waiting_steps[waiting++] = step;
            step = {0, 1, 0, nested_depth(step), 0};
            continue;
        }
        // Hand the value to the waiting steps, as far as it completes them.
        while (waiting > 0 && !wants_more(waiting_steps[waiting - 1])) {
            result = apply_pending(waiting_steps[--waiting], *result);
        }
        if (waiting == 0) {
            return *result;
        }
        step = {0, 1, *result, nested_depth(waiting_steps[waiting - 1]), 0};
    }
}

std::int64_t evalexp(const char *text, int check, int column) {
    const char *entry = Col_Ptr;
    Col_Ptr = text;
    std::optional<std::int64_t> value = lone_operand_value(nullptr);
    if (!value) {
        check_expression(column);
        if (status != STATUS_OK) {
            report_status();
            return 0;
        }
        value = checked_value(nullptr, true);
    }
    if (check != 0 && Pass2 != 0 && forwardref != 0) {
        if (errorsp == nullptr) {
            // Quirk (undefined-capital): a capital S, where no symbol can be named.
            Error("Undefined Symbol");
        } else if (is_undefined_reference()) {
            report_undefined();
        }
    }
    Col_Ptr = entry;
    return *value;
}

std::int64_t evalexp(const char *text, int check) {
    return evalexp(text, check, column_in_line(text));
}

int ppexpr(OperandRecord &operand, int report, bool is_value_needed) {
    operand.symbol_size = -1;
    std::optional<std::int64_t> value = lone_operand_value(&operand);
    if (!value) {
        check_expression(column_in_line(Col_Ptr));
        if (fails(report)) {
            if (report != 0) {
                report_status();
            }
            return 1;
        }
        value = checked_value(&operand, is_value_needed);
    }
    operand.value = *value;
    operand.forward_references = forwardref;
    operand.term_count = 1;
    if (Pass2 != 0 && is_undefined_reference()) {
        report_undefined();
    }
    return 0;
}
