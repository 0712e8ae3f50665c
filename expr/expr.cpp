#include "expr/expr.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "util/text.h"
#include "util/wrap.h"

#include <array>
#include <initializer_list>

int state = 0;
int status = 0;
int offset = 0;
int in_paren = 0;
int end_of_input = 0;
Symbol *errorsp = nullptr;

namespace {

// ---- The tokens of the check, which the evaluation reads again ----

// Each begins where the one before it ends; the first entry is no token and ends where the
// expression begins. A line has fewer tokens than characters, its terminator included.
constexpr std::size_t kTokenLimit = kLineReadLimit + 2;

std::array<ScannedToken, 1 + kTokenLimit> checked_tokens;
ScannedToken *const first_checked = &checked_tokens[1];
const ScannedToken *checked_end = first_checked;
const ScannedToken *next_checked = first_checked;

const char *begin_of(const ScannedToken *token) { return token[-1].end; }

// Where the token begins with which the check stopped.
const char *stop_position() { return begin_of(checked_end - 1); }

// Goes back to the start of the expression. A leading "%" behind an operand-ending token would be
// read differently a second time, so it is then scanned anew.
void rewind_tokens() {
    next_checked = first_checked;
    if (*Col_Ptr == '%' && is_operand_ending(ctoken)) {
        checked_end = first_checked;
    }
}

[[gnu::cold]] const ScannedToken *scan_fresh_token() {
    static std::array<ScannedToken, 2> fresh;
    fresh[0].end = Col_Ptr;
    fresh[1].token = gettoken(kExpressionMode);
    fresh[1].number = yyval;
    fresh[1].end = Col_Ptr;
    return &fresh[1];
}

// The next token of the evaluation: a checked one, or behind those a fresh one (the check ends at
// "<" and ">", the evaluation does not).
inline const ScannedToken *next_token() {
    if (next_checked == checked_end) {
        return scan_fresh_token();
    }
    Col_Ptr = next_checked->end;
    return next_checked++;
}

// ---- Syntax check ----

bool is_single_character(int token) { return token < TOK_LC; }

bool is_operand(int token) { return token == TOK_NUMBER || token == TOK_NAME; }

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
int status_at_end(int token, bool operand_seen) {
    if (is_single_character(token) && !is_expression_delimiter(static_cast<char>(token))) {
        return STATUS_ILLEGAL_CHARACTER;
    }
    return operand_seen ? STATUS_OK : STATUS_UNTERMINATED;
}

constexpr int kScanOn = 1; // no status yet

// What the check makes of a token.
enum class Role : std::uint8_t { kEnd, kOperand, kBinary, kPrefix, kOpen, kClose, kRegister };

using Roles = std::array<Role, TOK_SP + 1>;

consteval void set_role(Roles &roles, Role role, std::initializer_list<Token> tokens) {
    for (const Token token : tokens) {
        roles[static_cast<std::size_t>(token)] = role;
    }
}

consteval Roles make_roles() {
    Roles roles{}; // characters end the expression
    set_role(roles, Role::kOperand, {TOK_NUMBER, TOK_NAME});
    set_role(roles, Role::kBinary,
             {TOK_EQ, TOK_NE, TOK_LE, TOK_GE, TOK_LOGICAL_OR, TOK_LOGICAL_AND, TOK_XOR, TOK_PLUS,
              TOK_MULTIPLY, TOK_DIVIDE, TOK_SHIFT_LEFT, TOK_SHIFT_RIGHT, TOK_AND, TOK_OR,
              TOK_REMAINDER});
    set_role(roles, Role::kPrefix, {TOK_LOGICAL_NOT, TOK_COMPLEMENT, TOK_MINUS});
    set_role(roles, Role::kOpen, {TOK_OPEN});
    set_role(roles, Role::kClose, {TOK_CLOSE});
    set_role(roles, Role::kRegister, {TOK_A, TOK_CC, TOK_X, TOK_Y, TOK_SP});
    return roles;
}

constexpr Roles kRoles = make_roles();

// Takes one token into the state. Returns kScanOn or the status with which the check stops.
int check_step(int token, int &state_so_far, int &depth) {
    const bool operand_seen = state_so_far == STATE_OPERAND_SEEN;
    const Role role = kRoles[static_cast<std::size_t>(token)];
    if (role == Role::kOperand) {
        state_so_far = STATE_OPERAND_SEEN;
        return operand_seen ? STATUS_MISSING_OPERATOR : kScanOn;
    }
    if (role == Role::kBinary) {
        state_so_far = STATE_OPERAND_EXPECTED;
        return operand_seen ? kScanOn : STATUS_OPERAND_EXPECTED;
    }
    switch (role) {
    case Role::kPrefix: state_so_far = STATE_OPERAND_EXPECTED; return kScanOn;
    case Role::kOpen:
        ++depth;
        state_so_far = STATE_OPERAND_EXPECTED;
        return operand_seen ? STATUS_OPERAND_EXPECTED : kScanOn;
    case Role::kClose:
        --depth;
        // Quirk (empty-parentheses): no operand is asked for before a closing parenthesis.
        state_so_far = STATE_OPERAND_SEEN;
        return depth < 0 ? STATUS_UNEXPECTED_PARENTHESIS : kScanOn;
    case Role::kRegister: return STATUS_RESERVED_WORD;
    default: return status_at_end(token, operand_seen);
    }
}

// Takes the first token of the expression at the scan position. It is scanned anew if it is no
// plain operand, which its code of 0 tells.
void take_first_token(const ScannedToken &first) {
    checked_tokens[0].end = Col_Ptr;
    *first_checked = first;
    if (first.token == 0) {
        scan_token(Col_Ptr, kExpressionMode, ctoken, *first_checked);
    }
}

// True for an operator that may stand behind an operand.
bool is_infix(int token) {
    return kRoles[static_cast<std::size_t>(token)] == Role::kBinary || token == TOK_MINUS;
}

// Takes what most of an expression consists of behind the last token: operators behind operands,
// plain operands elsewhere. Returns the last token then; what follows is left to the steps.
ScannedToken *check_usual_tokens(ScannedToken *last, int &state_so_far) {
    while (true) {
        if (state_so_far == STATE_OPERAND_SEEN) {
            const int operation = scan_operator(last->end, last[1]);
            if (!is_infix(operation)) {
                return last;
            }
            ++last;
            last->token = operation;
            state_so_far = STATE_OPERAND_EXPECTED;
        }
        const int operand = scan_plain_operand(last->end, last[1]);
        if (operand == 0) {
            return last;
        }
        ++last;
        last->token = operand;
        state_so_far = STATE_OPERAND_SEEN;
    }
}

// Checks the expression at the scan position, the first token of which has been taken.
int check_tokens() {
    int depth = 0;
    int state_so_far = STATE_START;
    ScannedToken *checked = first_checked;
    int result = kScanOn;
    while (true) {
        result = check_step(checked->token, state_so_far, depth);
        if (result != kScanOn) {
            break;
        }
        checked = check_usual_tokens(checked, state_so_far);
        ++checked;
        scan_token(begin_of(checked), kExpressionMode, checked[-1].token, *checked);
    }
    state = state_so_far;
    checked_end = checked + 1;
    next_checked = checked_end; // the evaluation goes back to the first
    ctoken = checked->token;
    // Quirk (open-parenthesis): an open parenthesis wins over whatever stopped the check.
    if (depth > 0) {
        result = STATUS_MISSING_PARENTHESIS;
    }
    if (result == STATUS_OK) {
        Col_Ptr = begin_of(checked);
    }
    return result;
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

// Steps that wait for a nested one, outermost first. They stand here instead of on the machine's
// stack, so that no nesting can exhaust it. Each has taken a token.
std::array<Step, kTokenLimit + 1> waiting_steps;

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

// Quirk (left-to-right): only "/", "*" or "%%" right after an operand keep it as the term of an
// operator; any other operator takes the whole value so far. Quirk (remainder-of-sum): a "%" alone
// is such an operator. Quirk (doubled-percent): "%%" is not, since its second "%" begins a number.
bool term_goes_on(const char *p) { return *p == '/' || *p == '*' || (*p == '%' && p[1] == '%'); }

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

// A token without a meaning of its own: a character ends the expression.
std::int64_t end_step(const Step &step, int token) {
    if (is_single_character(token)) {
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

// True when an operand comes next and is the whole nested step.
bool right_side_is_operand() {
    return next_checked != checked_end && is_operand(next_checked->token) &&
           !term_goes_on(next_checked->end);
}

// Reads tokens into a step. True when it is complete, with its value in result; false when it waits
// for a nested step, the token for which is pending.
bool run_step(Step &step, OperandRecord *operand, std::int64_t &result) {
    do {
        const ScannedToken *token = next_token();
        switch (token->token) {
        case TOK_NUMBER:
        case TOK_NAME:
            step.term = operand_value(begin_of(token), *token, operand);
            // Quirk (one-term): a step ends with its operand, so the right side of an operator is
            // one term or product. Quirk (division-chain): that of "/" goes on with the products
            // after it.
            if (!term_goes_on(token->end)) {
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
        case TOK_COMPLEMENT:
            step.pending = token->token;
            if (!right_side_is_operand()) {
                return false;
            }
            token = next_token();
            result = apply_pending(step, operand_value(begin_of(token), *token, operand));
            return true;
        case TOK_OPEN:
            ++in_paren;
            if (in_paren > step.depth) {
                step.pending = token->token;
                return false;
            }
            result = value_of(step);
            return true;
        case TOK_CLOSE:
            --in_paren;
            result = value_of(step);
            return true;
        default: result = end_step(step, token->token); return true;
        }
    } while (status >= 0);
    result = value_of(step);
    return true;
}

// The right side of an operator is evaluated at the depth of the operator.
int nested_depth(const Step &waiting) {
    return waiting.pending == TOK_OPEN ? waiting.depth + 1 : waiting.depth;
}

// True while a step waits for more steps inside its parenthesis.
bool wants_more(const Step &waiting) {
    return waiting.pending == TOK_OPEN && in_paren > waiting.depth && end_of_input == 0;
}

// ---- The direct way: most expressions are a number or a name alone ----

// True for an operand behind which the expression ends for sure.
bool stands_alone(const ScannedToken &scanned) {
    return is_operand(scanned.token) && has_class(*scanned.end, kClassOperandEnd);
}

// The plain operand at p; its code is 0 where none stands.
inline ScannedToken plain_operand_at(const char *p) {
    ScannedToken scanned{};
    scanned.token = scan_plain_operand(p, scanned);
    return scanned;
}

// The value of an operand that stands alone. Moves to the character behind it and leaves the
// scanner as check and evaluation leave it.
std::int64_t lone_value(const char *begin, const ScannedToken &scanned, OperandRecord *operand) {
    errorsp = nullptr;
    forwardref = 0;
    status = STATUS_OK;
    Col_Ptr = scanned.end;
    ctoken = static_cast<unsigned char>(*scanned.end);
    return operand_value(begin, scanned, operand);
}

// Evaluates the checked expression, step by step up to its end.
std::int64_t evaluate(OperandRecord *operand) {
    end_of_input = 0;
    in_paren = 0;
    forwardref = 0;
    rewind_tokens();
    std::int64_t value = 0;
    // Quirk (product-after-parenthesis): a parenthesis ends the step, so what follows it has the
    // whole value so far on its left.
    do {
        value = p0(value, 0, 0, 0, operand);
    } while (end_of_input == 0);
    return value;
}

// Takes over from the evaluation where no value is asked for: enters the names, in their order. The
// expression has ended in a character.
void enter_names(OperandRecord *operand) {
    forwardref = 0;
    for (const ScannedToken *token = first_checked; token != checked_end; ++token) {
        if (token->token == TOK_NAME) {
            (void)name_value(text_between(begin_of(token), token->end), operand);
        }
    }
    Col_Ptr = stop_position();
}

// The value of the checked expression, or 0 where it isn't needed. A "<" or ">" ends the check but
// not the evaluation, so what follows is always gone through.
std::int64_t checked_value(OperandRecord *operand, bool is_value_needed) {
    const int last = checked_end[-1].token;
    if (is_value_needed || last == TOK_END || !is_single_character(last)) {
        return evaluate(operand);
    }
    enter_names(operand);
    return 0;
}

void report_status() { vpError("%s, Position[%d]", status_text(status), offset); }

void report_undefined() { vpError("Undefined symbol '%s'", errorsp->name); }

// Runs the check at the scan position, which then is at the expression's start again. The column is
// that of the start in the line.
void check_expression(int column) {
    const char *start = Col_Ptr;
    errorsp = nullptr;
    status = check_tokens();
    offset = column + static_cast<int>(stop_position() - start);
    Col_Ptr = start;
}

int column_in_line(const char *text) { return static_cast<int>(text - Line_Ptr); }

// Without reports a faulty character ends the expression instead of failing it, unless it
// could belong to a word.
bool fails(int report) {
    if (status == STATUS_OK) {
        return false;
    }
    return report != 0 || status != STATUS_ILLEGAL_CHARACTER || is_name_char(*stop_position());
}

// What every evaluated operand ends with. Always 0, as ppexpr then returns.
int finish_operand(OperandRecord &operand) {
    operand.forward_references = forwardref;
    operand.term_count = 1;
    if (errorsp != nullptr && Pass2 != 0 && errorsp->has(SYM_UNDEFINED)) {
        report_undefined();
    }
    return 0;
}

// Evaluates any expression but a plain operand alone, as ppexpr does; first is the plain operand
// with which it begins, if it does. Kept apart, so that the direct way stays short.
[[gnu::noinline]] int evaluate_other(const ScannedToken &first, OperandRecord &operand, int report,
                                     bool is_value_needed) {
    take_first_token(first);
    if (stands_alone(*first_checked)) {
        operand.value = lone_value(Col_Ptr, *first_checked, &operand);
        return finish_operand(operand);
    }
    check_expression(column_in_line(Col_Ptr));
    if (fails(report)) {
        if (report != 0) {
            report_status();
        }
        return 1;
    }
    operand.value = checked_value(&operand, is_value_needed);
    return finish_operand(operand);
}

} // namespace

int p00() {
    take_first_token({});
    return check_tokens();
}

std::int64_t p0(std::int64_t accumulated, int /*node_kind*/, int depth, int /*mode*/,
                OperandRecord *operand) {
    Step step = {0, 1, accumulated, depth, 0};
    std::size_t waiting = 0;
    while (true) {
        std::int64_t result = 0;
        if (!run_step(step, operand, result)) {
            waiting_steps[waiting++] = step;
            step = {0, 1, 0, nested_depth(step), 0};
            continue;
        }
        // Hand the value to the waiting steps, as far as it completes them.
        while (waiting > 0 && !wants_more(waiting_steps[waiting - 1])) {
            result = apply_pending(waiting_steps[--waiting], result);
        }
        if (waiting == 0) {
            return result;
        }
        step = {0, 1, result, nested_depth(waiting_steps[waiting - 1]), 0};
    }
}

std::int64_t evalexp(const char *text, int check, int column) {
    const char *entry = Col_Ptr;
    Col_Ptr = text;
    const ScannedToken first = plain_operand_at(text);
    std::int64_t value = 0;
    if (stands_alone(first)) {
        value = lone_value(text, first, nullptr);
    } else {
        take_first_token(first);
        check_expression(column);
        if (status != STATUS_OK) {
            report_status();
            return 0;
        }
        value = evaluate(nullptr);
    }
    if (check != 0 && Pass2 != 0 && forwardref != 0) {
        if (errorsp == nullptr) {
            // Quirk (undefined-capital): a capital S, where no symbol can be named.
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

int ppexpr(OperandRecord &operand, int report, bool is_value_needed) {
    operand.symbol_size = -1;
    const char *begin = Col_Ptr;
    const ScannedToken first = plain_operand_at(begin);
    if (!stands_alone(first)) {
        return evaluate_other(first, operand, report, is_value_needed);
    }
    operand.value = lone_value(begin, first, &operand);
    return finish_operand(operand);
}
