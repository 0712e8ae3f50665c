// The first character decides what a token can be, so scan_token hands it to the one function that
// reads such tokens; what that one does not recognise is a character alone.
//
// A copied word ends in one NUL with nothing readable after it. So a character is looked at only
// when the one before it has turned out to be no NUL.
#include "target/scan.h"

#include "as/asDiag.h"
#include "as/asPlace.h"
#include "as/asWatch.h"
#include "util/ahead.h"
#include "util/text.h"

#include <array>

std::string_view yytext;
std::int32_t yyval = 0;
int ctoken = 0;

namespace {

// In the place of a code: no token of the kind asked for.
constexpr int kNoToken = -1;

ScannedToken token_of(const char *p, int token, int length) { return {p + length, token, 0}; }

// The character as a token of its own.
ScannedToken character(const char *p) { return token_of(p, static_cast<unsigned char>(*p), 1); }

// ---- Names and registers ----

bool starts_symbol(char ch) { return has_class(ch, kClassLetter | kClassUnderscore); }

// The length of the name at p, at most kNameLimit; 0 if there is none. A byte of 128 or more right
// after its characters makes it no name.
inline std::size_t symbol_length(const char *p) {
    if (!starts_symbol(*p)) {
        return 0;
    }
    const char *end = skip_symbol_chars(p);
    const auto length = static_cast<std::size_t>(end - p);
    // Quirk (long-names): a longer name is cut without a message, and its rest is the next token.
    if (length >= kNameLimit) {
        return kNameLimit;
    }
    return static_cast<unsigned char>(*end) >= 128 ? 0 : length;
}

// The code of the register whose name is the letter at p, or the two letters; kNoToken if none has
// that name. Quirk (register-prefix): "$" and "." end the name of a register, although they belong
// to symbols.
int register_of_one_letter(const char *p) {
    if (is_name_char(p[1])) {
        return kNoToken;
    }
    switch (*p) {
    case 'A':
    case 'a': return TOK_A;
    case 'X':
    case 'x': return TOK_X;
    case 'Y':
    case 'y': return TOK_Y;
    default: return kNoToken;
    }
}

int register_of_two_letters(const char *p) {
    const char first = to_upper(p[0]);
    if ((first != 'S' && first != 'C') || to_upper(p[1]) != (first == 'S' ? 'P' : 'C')) {
        return kNoToken;
    }
    return is_name_char(p[2]) ? kNoToken : first == 'S' ? TOK_SP : TOK_CC;
}

// Quirk (reserved-names): a symbol with the name of a register can't be used in an expression.
inline ScannedToken register_or_name(const char *p) {
    if (has_class(*p, kClassRegister)) {
        if (const int token = register_of_one_letter(p); token != kNoToken) {
            return token_of(p, token, 1);
        }
        if (const int token = register_of_two_letters(p); token != kNoToken) {
            return token_of(p, token, 2);
        }
    }
    const std::size_t length = symbol_length(p);
    return length == 0 ? character(p) : ScannedToken{p + length, TOK_NAME, 0};
}

// ---- Numbers ----
// Digits go on up to a delimiter, not up to the first other character, so that 12AB is one faulty
// number and not a number with a name after it.

const char *digit_fault_text(unsigned base) {
    switch (base) {
    case 10: return "Illegal decimal digit";
    case 16: return "Illegal hexadecimal digit";
    default: return "Illegal binary digit";
    }
}

// Takes the faulty character too, so that the scan goes on after it.
[[gnu::cold]] ScannedToken faulty_digit(const char *p, unsigned base) {
    if (watcher != nullptr) {
        watcher->character(p);
    }
    Error(digit_fault_text(base));
    return token_of(p, TOK_END, 1);
}

// The number with these digits.
inline ScannedToken number(const char *p, unsigned base) {
    const char *digits = p;
    std::uint64_t value = 0;
    for (unsigned digit = digit_value(*p); digit < base; digit = digit_value(*p)) {
        value = value * base + digit;
        ++p;
    }
    if (p == digits || !is_expression_delimiter(*p)) {
        return faulty_digit(p, base);
    }
    // Quirk (modulo-32): only the low 32 bits count, as a signed number.
    return {p, TOK_NUMBER, static_cast<std::int32_t>(static_cast<std::uint32_t>(value))};
}

ScannedToken quoted_character(const char *p) {
    if (p[1] == '\0' || p[2] != '\'') {
        return character(p);
    }
    // Quirk (negative-characters): the code is a signed byte.
    const auto code = static_cast<unsigned char>(p[1]);
    return {p + 3, TOK_NUMBER, code < 128 ? code : code - 256};
}

ScannedToken binary_number_or_remainder(const char *p, int previous) {
    return is_operand_ending(previous) ? token_of(p, TOK_REMAINDER, 1) : number(p + 1, 2);
}

// ---- Operators ----

// The tokens that a character begins in an expression: alone, or with one of two others after it.
// A table and no switch, since no processor foretells which operator comes next: a switch takes 8 %
// more time on the expressions workload.
struct Operator {
    int alone = kNoToken;
    int second = kNoCharacter;
    int with_second = kNoToken;
    int other = kNoCharacter;
    int with_other = kNoToken;

    static constexpr int kNoCharacter = -1; // no unsigned byte equals it
};

consteval std::array<Operator, 128> make_operators() {
    std::array<Operator, 128> operators{};
    operators['('] = {TOK_OPEN};
    operators[')'] = {TOK_CLOSE};
    // Quirk (no-location-counter): always the product here, never the current address.
    operators['*'] = {TOK_MULTIPLY};
    operators['+'] = {TOK_PLUS};
    operators['-'] = {TOK_MINUS};
    operators['/'] = {TOK_DIVIDE};
    operators['^'] = {TOK_XOR};
    operators['~'] = {TOK_COMPLEMENT};
    operators['|'] = {TOK_OR, '|', TOK_LOGICAL_OR};
    operators['&'] = {TOK_AND, '&', TOK_LOGICAL_AND};
    operators['!'] = {TOK_LOGICAL_NOT, '=', TOK_NE};
    operators['='] = {'=', '=', TOK_EQ};
    operators['<'] = {TOK_LESS, '<', TOK_SHIFT_LEFT, '=', TOK_LE};
    operators['>'] = {TOK_GREATER, '>', TOK_SHIFT_RIGHT, '=', TOK_GE};
    return operators;
}

constexpr std::array<Operator, 128> kOperators = make_operators();

ScannedToken operator_or_character(const char *p) {
    const auto code = static_cast<unsigned char>(*p);
    if (code >= kOperators.size() || kOperators[code].alone == kNoToken) {
        return character(p);
    }
    const Operator &row = kOperators[code];
    const int next = static_cast<unsigned char>(p[1]);
    if (next == row.second) {
        return token_of(p, row.with_second, 2);
    }
    if (next == row.other) {
        return token_of(p, row.with_other, 2);
    }
    return token_of(p, row.alone, 1);
}

// Elsewhere only the "*" means more than the character.
ScannedToken location_or_character(const char *p, int previous) {
    if (*p != '*') {
        return character(p);
    }
    return token_of(p, is_operand_ending(previous) ? TOK_MULTIPLY : TOK_LC, 1);
}

} // namespace

ScannedToken scan_token(const char *p, int mode, int previous) {
    if (starts_symbol(*p)) {
        return register_or_name(p);
    }
    if (is_digit(*p)) {
        return number(p, 10);
    }
    switch (*p) {
    case '$': return number(p + 1, 16);
    case '%': return binary_number_or_remainder(p, previous);
    case '\'': return quoted_character(p);
    default: break;
    }
    return mode == kExpressionMode ? operator_or_character(p) : location_or_character(p, previous);
}

ScannedToken scan_operator(const char *p) {
    return *p == '%' ? token_of(p, TOK_REMAINDER, 1) : operator_or_character(p);
}

int gettoken(int mode) {
    const ScannedToken scanned = scan_token(Col_Ptr, mode, ctoken);
    const bool is_name = scanned.token == TOK_NAME;
    yytext = is_name ? text_between(Col_Ptr, scanned.end) : std::string_view();
    yyval = scanned.number;
    ctoken = scanned.token;
    Col_Ptr = scanned.end;
    return scanned.token;
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

int lookahead(char ch) {
    if (*Col_Ptr != ch) {
        return 0;
    }
    ++Col_Ptr;
    return 1;
}
