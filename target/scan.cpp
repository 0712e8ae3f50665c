#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asSource.h"
#include "util/text.h"

std::string_view yytext;
std::int32_t yyval = 0;
int ctoken = 0;

namespace {

constexpr bool starts_symbol(char ch) { return has_class(ch, kClassLetter | kClassUnderscore); }

// Records a token as the previous one and steps past its characters.
int take(int token, int length) {
    Col_Ptr += length;
    ctoken = token;
    return token;
}

// A register name at the scan position: its token, or 0. Kept: a symbol of that name can't be used
// in an expression.
int register_token() {
    const std::size_t length = register_length(Col_Ptr);
    if (length == 0) {
        return 0;
    }
    const char letter = to_upper(*Col_Ptr);
    if (length == 2) {
        return take(letter == 'S' ? TOK_SP : TOK_CC, 2);
    }
    return take(letter == 'A' ? TOK_A : letter == 'X' ? TOK_X : TOK_Y, 1);
}

// One of two tokens, by whether the second character is next.
int either(char second, int two_characters, int one_character) {
    return Col_Ptr[1] == second ? take(two_characters, 2) : take(one_character, 1);
}

// An operator at the scan position: its token, or 0.
int operator_token() {
    switch (Col_Ptr[0]) {
    case '=': return Col_Ptr[1] == '=' ? take(TOK_EQ, 2) : 0;
    case '!': return either('=', TOK_NE, TOK_LOGICAL_NOT);
    case '<': return Col_Ptr[1] == '<' ? take(TOK_SHIFT_LEFT, 2) : either('=', TOK_LE, TOK_LESS);
    case '>':
        return Col_Ptr[1] == '>' ? take(TOK_SHIFT_RIGHT, 2) : either('=', TOK_GE, TOK_GREATER);
    case '|': return either('|', TOK_LOGICAL_OR, TOK_OR);
    case '&': return either('&', TOK_LOGICAL_AND, TOK_AND);
    case '(': return take(TOK_OPEN, 1);
    case ')': return take(TOK_CLOSE, 1);
    case '*': return take(TOK_MULTIPLY, 1);
    case '+': return take(TOK_PLUS, 1);
    case '-': return take(TOK_MINUS, 1);
    case '/': return take(TOK_DIVIDE, 1);
    case '^': return take(TOK_XOR, 1);
    case '~': return take(TOK_COMPLEMENT, 1);
    default: return 0;
    }
}

// Reads digits up to a delimiter. A faulty digit is taken too and reported.
int number_token(unsigned base, const char *fault) {
    std::uint64_t value = 0;
    do {
        const unsigned digit = digit_value(*Col_Ptr);
        ++Col_Ptr;
        if (digit >= base) {
            Error(fault);
            return TOK_END;
        }
        value = value * base + digit;
    } while (!is_expression_delimiter(*Col_Ptr));
    yyval = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    ctoken = TOK_NUMBER;
    return TOK_NUMBER;
}

// The character at the scan position as a token of its own.
int character() { return take(static_cast<unsigned char>(*Col_Ptr), 1); }

// A register or a name, or where neither stands, the letter itself.
int word_token() {
    if (const int token = register_token(); token != 0) {
        return token;
    }
    if (valid_sym() != 0) {
        ctoken = TOK_NAME;
        return TOK_NAME;
    }
    return character();
}

int character_token() {
    const auto code = static_cast<unsigned char>(Col_Ptr[1]);
    yyval = code < 128 ? code : code - 256;
    return take(TOK_NUMBER, 3);
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

int gettoken(int mode) {
    yytext = {};
    yyval = 0;
    const char ch = *Col_Ptr;
    if (is_digit(ch)) {
        return number_token(10, "Illegal decimal digit");
    }
    if (has_class(ch, kClassLetter | kClassUnderscore)) {
        return word_token();
    }
    if (mode == kExpressionMode) {
        if (const int token = operator_token(); token != 0) {
            return token;
        }
    } else if (ch == '*') {
        return take(is_operand_ending(ctoken) ? TOK_MULTIPLY : TOK_LC, 1);
    }
    if (ch == '%') {
        if (is_operand_ending(ctoken)) {
            return take(TOK_REMAINDER, 1);
        }
        ++Col_Ptr;
        return number_token(2, "Illegal binary digit");
    }
    if (ch == '\'' && Col_Ptr[1] != '\0' && Col_Ptr[2] == '\'') {
        return character_token();
    }
    if (ch == '$') {
        ++Col_Ptr;
        return number_token(16, "Illegal hexadecimal digit");
    }
    return character();
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
