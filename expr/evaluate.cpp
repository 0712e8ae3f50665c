// Most expressions are in order, and expr/usual computes them in one go. The rest is checked first
// and then computed by p0 here, step by step, reading the tokens again: what is faulty, names that
// are new, and what the check lets pass although it means nothing.
//
// A step keeps a sum, a multiplier and a term, and its value is sum + multiplier * term. "+" and
// "-" move the term into the sum, "*" into the multiplier, and an operand is the new term, with
// which the step mostly ends. The next step takes the value so far as its first term: that is what
// makes evaluation go from left to right. Any other operator waits for a nested step, its right
// side.
#include "expr/evaluate.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asWatch.h"
#include "expr/check.h"
#include "expr/operator.h"
#include "expr/usual.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "util/text.h"
#include "util/wrap.h"

#include <optional>
#include <vector>

int status = 0;
int offset = 0;
int in_paren = 0;
int end_of_input = 0;

namespace {

struct Step {
    std::int64_t sum;
    std::int64_t multiplier;
    std::int64_t term;
    int depth;   // parenthesis depth
    int pending; // token whose right side is being evaluated
};

// Steps that wait for a nested one, outermost first. They stand here instead of on the machine's
// stack, so that no nesting can exhaust it.
std::vector<Step> waiting_steps;

// ---- Steps ----

// Adds multiplier times a value that stands in the term's place.
std::int64_t combine(const Step &step, std::int64_t term) {
    return wrap_add(step.sum, wrap_multiply(step.multiplier, term));
}

std::int64_t value_of(const Step &step) { return combine(step, step.term); }

void add_term(Step &step) {
    step.sum = value_of(step);
    step.term = 0;
}

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

// The value of a step whose nested step has given the right side. Quirk (silent-remainder): only
// division by zero is reported; both stop the steps from going on.
std::int64_t complete(const Step &step, std::int64_t right) {
    if (!is_division(step.pending) || right != 0) {
        return combine(step, apply_operator(step.pending, step.term, right));
    }
    if (step.pending == TOK_DIVIDE) {
        Error("Integer divide by zero");
    }
    status = STATUS_STOPPED;
    return step.sum;
}

// Reads tokens into a step. Returns its value, or nothing while it waits for a nested step, the
// token for which is pending.
std::optional<std::int64_t> run_step(Step &step, OperandRecord *operand) {
    do {
        const int token = gettoken(kExpressionMode);
        switch (token) {
        case TOK_NUMBER:
        case TOK_NAME:
            step.term = token == TOK_NUMBER ? yyval : name_value(yytext, operand);
            // Quirk (one-term): a step ends with its operand, so the right side of an operator is
            // one term or product. Quirk (division-chain): that of "/" goes on with the products
            // after it.
            if (!term_goes_on(Col_Ptr)) {
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
            if (!is_operator(token)) {
                return end_step(step, token);
            }
            step.pending = token;
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

// The value of the checked expression at the scan position, which moves to its end.
std::int64_t checked_value(OperandRecord *operand) {
    const char *start = Col_Ptr;
    end_of_input = 0;
    in_paren = 0;
    forwardref = 0;
    std::int64_t value = 0;
    // Quirk (product-after-parenthesis): a parenthesis ends the step, so what follows it has the
    // whole value so far on its left.
    do {
        value = p0(value, 0, 0, 0, operand);
    } while (end_of_input == 0);
    if (watcher != nullptr) {
        watcher->expression(start, value);
    }
    return value;
}

// Without reports a faulty character ends the expression instead of failing it, unless it could
// belong to a word.
bool is_failure(bool reports) {
    return status != STATUS_OK &&
           (reports || status != STATUS_ILLEGAL_CHARACTER || is_name_char(*last_token));
}

// The value of an expression that is not usual. Not inlined, so that what all others take stays
// short.
[[gnu::noinline]] ExpressionValue careful_value(int column, bool reports, OperandRecord *operand) {
    const char *start = Col_Ptr;
    const int previous = ctoken;
    status = p00();
    offset = column + static_cast<int>(last_token - start);
    Col_Ptr = start;
    if (is_failure(reports)) {
        if (reports) {
            vpError("%s, Position[%d]", status_text(status), offset);
        }
        return kNoValue;
    }
    // The check has left the last token, but the first one is to be read by what stood before it.
    ctoken = previous;
    return {checked_value(operand), true};
}

// The value of the expression at the scan position, which moves to its end; column is that of the
// position in the line. Nothing after a syntax error; the scan position then stays.
ExpressionValue value_at(int column, bool reports, OperandRecord *operand) {
    errorsp = nullptr;
    const ExpressionValue value = usual_value(operand);
    if (!value.is_known) {
        return careful_value(column, reports, operand);
    }
    status = STATUS_OK;
    return value;
}

bool is_undefined_reference() { return errorsp != nullptr && errorsp->has(SYM_UNDEFINED); }

void report_undefined() { vpError("Undefined symbol '%s'", errorsp->name); }

int column_in_line(const char *text) { return static_cast<int>(text - Line_Ptr); }

} // namespace

std::int64_t p0(std::int64_t accumulated, int /*node_kind*/, int depth, int /*mode*/,
                OperandRecord *operand) {
    Step step = {0, 1, accumulated, depth, 0};
    while (true) {
        std::optional<std::int64_t> result = run_step(step, operand);
        if (!result) {
            waiting_steps.push_back(step);
            step = {0, 1, 0, nested_depth(step), 0};
            continue;
        }
        // Hand the value to the waiting steps, as far as it completes them.
        while (!waiting_steps.empty() && !wants_more(waiting_steps.back())) {
            result = complete(waiting_steps.back(), *result);
            waiting_steps.pop_back();
        }
        if (waiting_steps.empty()) {
            return *result;
        }
        step = {0, 1, *result, nested_depth(waiting_steps.back()), 0};
    }
}

std::int64_t evalexp(const char *text, int check, int column) {
    const char *entry = Col_Ptr;
    Col_Ptr = text;
    const ExpressionValue value = value_at(column, true, nullptr);
    if (!value.is_known) {
        return 0;
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
    return value.value;
}

std::int64_t evalexp(const char *text, int check) {
    return evalexp(text, check, column_in_line(text));
}

int ppexpr(OperandRecord &operand, int report) {
    operand.symbol_size = -1;
    const ExpressionValue value = value_at(column_in_line(Col_Ptr), report != 0, &operand);
    if (!value.is_known) {
        return 1;
    }
    operand.value = value.value;
    operand.forward_references = forwardref;
    operand.term_count = 1;
    if (Pass2 != 0 && is_undefined_reference()) {
        report_undefined();
    }
    return 0;
}
