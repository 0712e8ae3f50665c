#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asSource.h"
#include "util/text.h"

std::string_view yytext;
std::int32_t yyval = 0;
int ctoken = 0;

namespace {

constexpr bool starts_symbol(char ch) { return has_class(ch, kClassLetter | kClassUnderscore); }

// The token of a number of characters at p.
ScannedToken token_at(const char *p, int token, int length) { return {token, 0, p + length}; }

// The character at p as a token of its own.
ScannedToken character(const char *p) { return token_at(p, static_cast<unsigned char>(*p), 1); }

// One of two tokens, by whether the second character is next.
ScannedToken either(const char *p, char second, int two_characters, int one_character) {
    return p[1] == second ? token_at(p, two_characters, 2) : token_at(p, one_character, 1);
}

// Reads digits up to a delimiter. A faulty digit is taken too and reported.
template <unsigned base> ScannedToken number(const char *digits, const char *fault) {
    const char *p = digits;
    std::uint64_t value = 0;
    for (unsigned digit = digit_value(*p); digit < base; digit = digit_value(*++p)) {
        value = value * base + digit;
    }
    if (p == digits || !is_expression_delimiter(*p)) {
        Error(fault);
        return token_at(p, TOK_END, 1);
    }
    return {TOK_NUMBER, static_cast<std::int32_t>(static_cast<std::uint32_t>(value)), p};
}

// A register, a name, or where neither stands, the letter itself. Kept: a symbol with the name of a
// register can't be used in an expression.
ScannedToken word(const char *p) {
    if (const std::size_t length = register_length(p); length != 0) {
        const char letter = to_upper(*p);
        if (length == 2) {
            return token_at(p, letter == 'S' ? TOK_SP : TOK_CC, 2);
        }
        return token_at(p, letter == 'A' ? TOK_A : letter == 'X' ? TOK_X : TOK_Y, 1);
    }
    const std::size_t length = symbol_length(p);
    return length != 0 ? ScannedToken{TOK_NAME, 0, p + length} : character(p);
}

ScannedToken quoted_character(const char *p) {
    if (p[1] == '\0' || p[2] != '\'') {
        return character(p);
    }
    const auto code = static_cast<unsigned char>(p[1]);
    return {TOK_NUMBER, code < 128 ? code : code - 256, p + 3};
}

// A token that is neither a word nor a decimal or hexadecimal number.
ScannedToken mark(const char *p, int previous) {
    switch (*p) {
    case '%':
        return is_operand_ending(previous) ? token_at(p, TOK_REMAINDER, 1)
                                           : number<2>(p + 1, "Illegal binary digit");
    case '\'': return quoted_character(p);
    default: return character(p);
    }
}

// The same where operators are tokens of their own.
ScannedToken mark_or_operator(const char *p, int previous) {
    switch (*p) {
    case '=': return p[1] == '=' ? token_at(p, TOK_EQ, 2) : character(p);
    case '!': return either(p, '=', TOK_NE, TOK_LOGICAL_NOT);
    case '<':
        return p[1] == '<' ? token_at(p, TOK_SHIFT_LEFT, 2) : either(p, '=', TOK_LE, TOK_LESS);
    case '>':
        return p[1] == '>' ? token_at(p, TOK_SHIFT_RIGHT, 2) : either(p, '=', TOK_GE, TOK_GREATER);
    case '|': return either(p, '|', TOK_LOGICAL_OR, TOK_OR);
    case '&': return either(p, '&', TOK_LOGICAL_AND, TOK_AND);
    case '(': return token_at(p, TOK_OPEN, 1);
    case ')': return token_at(p, TOK_CLOSE, 1);
    case '*': return token_at(p, TOK_MULTIPLY, 1);
    case '+': return token_at(p, TOK_PLUS, 1);
    case '-': return token_at(p, TOK_MINUS, 1);
    case '/': return token_at(p, TOK_DIVIDE, 1);
    case '^': return token_at(p, TOK_XOR, 1);
    case '~': return token_at(p, TOK_COMPLEMENT, 1);
    default: return mark(p, previous);
    }
}

} // namespace

std::size_t symbol_length(const char *p) {
    if (!starts_symbol(*p)) {
        return 0;
    }
    const char *end = p + 1;
    while (is_symbol_char(*end)) {
        ++end;
    }
    const auto length = static_cast<std::size_t>(end - p);
    // Kept: a longer name is cut without a message, and its rest is the next token.
    if (length >= kNameLimit) {
        return kNameLimit;
    }
    return static_cast<unsigned char>(*end) >= 128 ? 0 : length;
}

std::size_t register_length(const char *p) {
    if (!has_class(*p, kClassRegister)) {
        return 0;
    }
    const char first = to_upper(*p);
    if (first == 'S' || first == 'C') {
        const bool is_pair = to_upper(p[1]) == (first == 'S' ? 'P' : 'C');
        return is_pair && !is_name_char(p[2]) ? 2 : 0;
    }
    return is_name_char(p[1]) ? 0 : 1;
}

int valid_sym() {
    const std::size_t length = symbol_length(Col_Ptr);
    if (length == 0) {
        return 0;
    }
    yytext = std::string_view(Col_Ptr, length);
    Col_Ptr += length;
    return 1;
}

ScannedToken scan_token(const char *p, int mode, int previous) {
    const char ch = *p;
    if (starts_symbol(ch)) {
        return word(p);
    }
    if (is_digit(ch)) {
        return number<10>(p, "Illegal decimal digit");
    }
    if (ch == '$') {
        return number<16>(p + 1, "Illegal hexadecimal digit");
    }
    if (mode == kExpressionMode) {
        return mark_or_operator(p, previous);
    }
    if (ch == '*') {
        return token_at(p, is_operand_ending(previous) ? TOK_MULTIPLY : TOK_LC, 1);
    }
    return mark(p, previous);
}

int gettoken(int mode) {
    const char *begin = Col_Ptr;
    const ScannedToken scanned = scan_token(begin, mode, ctoken);
    yytext = scanned.token == TOK_NAME
                 ? std::string_view(begin, static_cast<std::size_t>(scanned.end - begin))
                 : std::string_view();
    yyval = scanned.number;
    ctoken = previous_token(ctoken, begin, scanned.token);
    Col_Ptr = scanned.end;
    return scanned.token;
}

int lookahead(char ch) {
    if (*Col_Ptr != ch) {
        return 0;
    }
    ++Col_Ptr;
    return 1;
}

bool is_operand_ending(int token) {
    return token == TOK_LC || token == TOK_NUMBER || token == TOK_NAME || token == TOK_CLOSE;
}
