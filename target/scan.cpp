#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asSource.h"
#include "util/text.h"

std::string_view yytext;
std::int32_t yyval = 0;
int ctoken = 0;

namespace {

// These tell the token at p; its end and its number, if it has one, are stored.

int token_at(const char *p, int token, int length, ScannedToken &scanned) {
    scanned.end = p + length;
    return token;
}

// The character as a token of its own.
int character(const char *p, ScannedToken &scanned) {
    return token_at(p, static_cast<unsigned char>(*p), 1, scanned);
}

// One of two tokens, by whether the second character is next.
int either(const char *p, char second, int two_characters, int one_character,
           ScannedToken &scanned) {
    return p[1] == second ? token_at(p, two_characters, 2, scanned)
                          : token_at(p, one_character, 1, scanned);
}

// Stands for a token until its fault is reported.
constexpr int kFaultyDigit = -1;

// Digits up to a delimiter. A faulty digit is taken too.
template <unsigned base> int number(const char *digits, ScannedToken &scanned) {
    const char *p = digits;
    std::uint64_t value = 0;
    for (unsigned digit = digit_value(*p); digit < base; digit = digit_value(*++p)) {
        value = value * base + digit;
    }
    if (p == digits || !is_expression_delimiter(*p)) {
        return token_at(p, kFaultyDigit, 1, scanned);
    }
    scanned.number = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    return token_at(p, TOK_NUMBER, 0, scanned);
}

// A register, a name, or where neither stands, the letter itself. Kept: a symbol with the name of a
// register can't be used in an expression.
int word(const char *p, ScannedToken &scanned) {
    if (const std::size_t length = register_length(p); length != 0) {
        const char letter = to_upper(*p);
        if (length == 2) {
            return token_at(p, letter == 'S' ? TOK_SP : TOK_CC, 2, scanned);
        }
        return token_at(p, letter == 'A' ? TOK_A : letter == 'X' ? TOK_X : TOK_Y, 1, scanned);
    }
    const std::size_t length = symbol_length(p);
    if (length == 0) {
        return character(p, scanned);
    }
    scanned.end = p + length;
    return TOK_NAME;
}

int quoted_character(const char *p, ScannedToken &scanned) {
    if (p[1] == '\0' || p[2] != '\'') {
        return character(p, scanned);
    }
    const auto code = static_cast<unsigned char>(p[1]);
    scanned.number = code < 128 ? code : code - 256;
    return token_at(p, TOK_NUMBER, 3, scanned);
}

// A token that is neither a word nor a decimal or hexadecimal number.
int mark(const char *p, int previous, ScannedToken &scanned) {
    switch (*p) {
    case '%':
        return is_operand_ending(previous) ? token_at(p, TOK_REMAINDER, 1, scanned)
                                           : number<2>(p + 1, scanned);
    case '\'': return quoted_character(p, scanned);
    default: return character(p, scanned);
    }
}

// The same where operators are tokens of their own.
int mark_or_operator(const char *p, int previous, ScannedToken &scanned) {
    switch (*p) {
    case '=': return p[1] == '=' ? token_at(p, TOK_EQ, 2, scanned) : character(p, scanned);
    case '!': return either(p, '=', TOK_NE, TOK_LOGICAL_NOT, scanned);
    case '<':
        return p[1] == '<' ? token_at(p, TOK_SHIFT_LEFT, 2, scanned)
                           : either(p, '=', TOK_LE, TOK_LESS, scanned);
    case '>':
        return p[1] == '>' ? token_at(p, TOK_SHIFT_RIGHT, 2, scanned)
                           : either(p, '=', TOK_GE, TOK_GREATER, scanned);
    case '|': return either(p, '|', TOK_LOGICAL_OR, TOK_OR, scanned);
    case '&': return either(p, '&', TOK_LOGICAL_AND, TOK_AND, scanned);
    case '(': return token_at(p, TOK_OPEN, 1, scanned);
    case ')': return token_at(p, TOK_CLOSE, 1, scanned);
    case '*': return token_at(p, TOK_MULTIPLY, 1, scanned);
    case '+': return token_at(p, TOK_PLUS, 1, scanned);
    case '-': return token_at(p, TOK_MINUS, 1, scanned);
    case '/': return token_at(p, TOK_DIVIDE, 1, scanned);
    case '^': return token_at(p, TOK_XOR, 1, scanned);
    case '~': return token_at(p, TOK_COMPLEMENT, 1, scanned);
    default: return mark(p, previous, scanned);
    }
}

const char *faulty_digit_text(char first) {
    switch (first) {
    case '%': return "Illegal binary digit";
    case '$': return "Illegal hexadecimal digit";
    default: return "Illegal decimal digit";
    }
}

int token_code(const char *p, int mode, int previous, ScannedToken &scanned) {
    const char ch = *p;
    if (starts_symbol(ch)) {
        return word(p, scanned);
    }
    if (is_digit(ch)) {
        return number<10>(p, scanned);
    }
    if (ch == '$') {
        return number<16>(p + 1, scanned);
    }
    if (mode == kExpressionMode) {
        return mark_or_operator(p, previous, scanned);
    }
    if (ch == '*') {
        return token_at(p, is_operand_ending(previous) ? TOK_MULTIPLY : TOK_LC, 1, scanned);
    }
    return mark(p, previous, scanned);
}

} // namespace

int valid_sym() {
    const std::size_t length = symbol_length(Col_Ptr);
    if (length == 0) {
        return 0;
    }
    yytext = std::string_view(Col_Ptr, length);
    Col_Ptr += length;
    return 1;
}

int scan_token(const char *p, int mode, int previous, ScannedToken &scanned) {
    int token = token_code(p, mode, previous, scanned);
    if (token == kFaultyDigit) {
        Error(faulty_digit_text(*p));
        token = TOK_END;
    }
    scanned.token = token;
    return token;
}

int gettoken(int mode) {
    const char *begin = Col_Ptr;
    ScannedToken scanned = {};
    const int token = scan_token(begin, mode, ctoken, scanned);
    yytext = token == TOK_NAME
                 ? std::string_view(begin, static_cast<std::size_t>(scanned.end - begin))
                 : std::string_view();
    yyval = scanned.number;
    ctoken = previous_token(ctoken, begin, token);
    Col_Ptr = scanned.end;
    return token;
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
