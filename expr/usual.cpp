// The steps of evaluation, seen as a whole, are a grammar: an expression is a row of products, each
// combined with all that stands before it, and a product is an operand, with a product on its right
// where "*", "/" or "%%" follow at once. So two functions that call each other compute it, and
// where they stand tells what may come next.
//
// Names are noted at the end only, when the expression is known to be in order.
#include "expr/usual.h"

#include "as/asPlace.h"
#include "as/asWatch.h"
#include "expr/operator.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "util/text.h"

#include <array>
#include <cstddef>

namespace {

// More is not usual.
constexpr int kDeepest = 20;
constexpr std::size_t kMostNames = 20;

struct FoundName {
    std::string_view name;
    Symbol *symbol;
};

struct Reader {
    const char *p;
    bool is_usual = true;
    int depth = 0; // prefixes, parentheses and products that are open
    std::size_t names = 0;
    std::array<FoundName, kMostNames> found_names;
};

std::int64_t read_expression(Reader &reader, ScannedToken first);

std::int64_t give_up(Reader &reader) {
    reader.is_usual = false;
    return 0;
}

// Only a name whose use changes nothing of it.
std::int64_t read_name(Reader &reader, std::string_view name) {
    Symbol *symbol = find_name(name);
    if (symbol == nullptr || symbol->flags == SYM_UNDEFINED || reader.names == kMostNames) {
        return give_up(reader);
    }
    reader.found_names[reader.names++] = {name, symbol};
    return symbol->value;
}

ScannedToken next_operand(const Reader &reader) {
    return scan_token(reader.p, kExpressionMode, TOK_PLUS);
}

std::int64_t read_product(Reader &reader, ScannedToken first);

// The value of an operator with a product on its right, before which the reader stands.
std::int64_t read_right_side(Reader &reader, int token, std::int64_t left) {
    const std::int64_t right = read_product(reader, next_operand(reader));
    return right == 0 && is_division(token) ? give_up(reader) : apply_operator(token, left, right);
}

std::int64_t read_parenthesis(Reader &reader) {
    const std::int64_t value = read_expression(reader, next_operand(reader));
    // What is not usual may end the text, after which there is nothing to look at.
    if (!reader.is_usual || *reader.p != ')') {
        return give_up(reader);
    }
    ++reader.p;
    return value;
}

// What a product begins with, when that is no operand.
std::int64_t read_prefix(Reader &reader, int token) {
    if (++reader.depth > kDeepest) {
        return give_up(reader);
    }
    std::int64_t value = 0;
    switch (token) {
    case TOK_OPEN: value = read_parenthesis(reader); break;
    case TOK_MINUS:
    case TOK_LOGICAL_NOT:
    case TOK_COMPLEMENT: value = read_right_side(reader, token, 0); break;
    default: return give_up(reader);
    }
    --reader.depth;
    return value;
}

// The reader stands before the first token of the product, and after the product at the end.
std::int64_t read_product(Reader &reader, ScannedToken first) {
    const char *begin = reader.p;
    reader.p = first.end;
    if (!is_operand(first.token)) {
        return read_prefix(reader, first.token);
    }
    const std::int64_t value = first.token == TOK_NUMBER
                                   ? first.number
                                   : read_name(reader, text_between(begin, first.end));
    if (!term_goes_on(first.end)) {
        return value;
    }
    if (++reader.depth > kDeepest) {
        return give_up(reader);
    }
    ++reader.p;
    const std::int64_t product = read_right_side(reader, scan_operator(first.end).token, value);
    --reader.depth;
    return product;
}

// Up to a character that is no operator.
std::int64_t read_expression(Reader &reader, ScannedToken first) {
    std::int64_t value = read_product(reader, first);
    while (reader.is_usual) {
        const ScannedToken token = scan_operator(reader.p);
        if (!is_operator(token.token)) {
            break;
        }
        reader.p = token.end;
        value = read_right_side(reader, token.token, value);
    }
    return value;
}

// An operand that stands alone, as most do; its name may be new.
std::int64_t lone_value(ScannedToken token, OperandRecord *operand) {
    return token.token == TOK_NUMBER ? token.number
                                     : name_value(text_between(Col_Ptr, token.end), operand);
}

void note_names(const Reader &reader, OperandRecord *operand) {
    for (std::size_t i = 0; i < reader.names; ++i) {
        const FoundName &found = reader.found_names[i];
        (void)symbol_value(found.name, found.symbol, operand);
    }
}

bool is_end(const char *p) { return has_class(*p, kClassOperandEnd); }

void move_to(const char *end) {
    Col_Ptr = end;
    ctoken = static_cast<unsigned char>(*end);
}

// Apart from the operand that stands alone, whose way is shorter without the reader.
[[gnu::noinline]] ExpressionValue row_value(ScannedToken first, OperandRecord *operand) {
    Reader reader;
    reader.p = Col_Ptr;
    const std::int64_t value = read_expression(reader, first);
    if (!reader.is_usual || !is_end(reader.p)) {
        return kNoValue;
    }
    forwardref = 0;
    note_names(reader, operand);
    const char *start = Col_Ptr;
    move_to(reader.p);
    if (watcher != nullptr) {
        watcher->expression(start, value);
    }
    return {value, true};
}

} // namespace

ExpressionValue usual_value(OperandRecord *operand) {
    const ScannedToken first = scan_token(Col_Ptr, kExpressionMode, ctoken);
    if (!is_operand(first.token) || !is_end(first.end)) {
        return row_value(first, operand);
    }
    forwardref = 0;
    const std::int64_t value = lone_value(first, operand);
    move_to(first.end);
    return {value, true};
}
