#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asPlace.h"
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

// Stands for a token until its fault is reported.
constexpr int kFaultyDigit = -1;

// A register, or the letter itself. Quirk (reserved-names): a symbol with the name of a register
// can't be used in an expression.
int register_or_letter(const char *p, ScannedToken &scanned) {
    const char letter = to_upper(*p);
    switch (register_length(p)) {
    case 0: return character(p, scanned);
    case 2: return token_at(p, letter == 'S' ? TOK_SP : TOK_CC, 2, scanned);
    default: return token_at(p, letter == 'A' ? TOK_A : letter == 'X' ? TOK_X : TOK_Y, 1, scanned);
    }
}

int quoted_character(const char *p, ScannedToken &scanned) {
    if (p[1] == '\0' || p[2] != '\'') {
        return character(p, scanned);
    }
    // Quirk (negative-characters): the code is a signed byte.
    const auto code = static_cast<unsigned char>(p[1]);
    scanned.number = code < 128 ? code : code - 256;
    return token_at(p, TOK_NUMBER, 3, scanned);
}

int binary_number_or_remainder(const char *p, int previous, ScannedToken &scanned) {
    if (is_operand_ending(previous)) {
        return token_at(p, TOK_REMAINDER, 1, scanned);
    }
    return scan_digits<2>(p + 1, scanned) ? TOK_NUMBER : kFaultyDigit;
}

// "*" where operators are plain characters.
int location_or_product(const char *p, int previous, ScannedToken &scanned) {
    return token_at(p, is_operand_ending(previous) ? TOK_MULTIPLY : TOK_LC, 1, scanned);
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
    if (has_class(ch, kClassOperandEnd)) {
        return character(p, scanned);
    }
    if (ch == '%') {
        return binary_number_or_remainder(p, previous, scanned);
    }
    if (mode == kExpressionMode) {
        if (const int token = scan_operator(p, scanned); token != 0) {
            return token;
        }
    } else if (ch == '*') {
        return location_or_product(p, previous, scanned);
    }
    if (const int token = scan_plain_operand(p, scanned); token != 0) {
        return token;
    }
    if (starts_symbol(ch)) {
        return register_or_letter(p, scanned);
    }
    if (is_digit(ch) || ch == '$') {
        return kFaultyDigit;
    }
    return ch == '\'' ? quoted_character(p, scanned) : character(p, scanned);
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
    ctoken = token;
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
