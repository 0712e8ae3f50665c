// The token scanner of expressions and operands, and the scanner of names.
//
// Everything reads at the shared scan position Col_Ptr and leaves it behind what it took. A token
// is told by its code: a character stands for itself, the rest is numbered below.
#pragma once

#include "util/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// Longest name that is read as one, in characters; what follows is the next token.
inline constexpr std::size_t kNameLimit = 128;

enum Token : int {
    TOK_END = 0,  // after a digit error
    TOK_LC = 257, // "*" as the location counter, in operand mode
    TOK_EQ = 258,
    TOK_NE = 259,
    TOK_LE = 260,
    TOK_GE = 261,
    TOK_LOGICAL_OR = 262,
    TOK_LOGICAL_AND = 264,
    TOK_LOGICAL_NOT = 265,
    TOK_COMPLEMENT = 266,
    TOK_XOR = 267,
    TOK_MINUS = 268,
    TOK_PLUS = 269,
    TOK_MULTIPLY = 270,
    TOK_DIVIDE = 271,
    TOK_SHIFT_LEFT = 272,
    TOK_SHIFT_RIGHT = 273,
    TOK_AND = 274,
    TOK_OR = 275,
    TOK_NUMBER = 276, // value in yyval
    TOK_NAME = 277,   // text in yytext
    TOK_LESS = 284,
    TOK_GREATER = 285,
    TOK_REMAINDER = 286,
    TOK_OPEN = 287,
    TOK_CLOSE = 288,
    TOK_A = 289,
    TOK_CC = 291,
    TOK_X = 292,
    TOK_Y = 293,
    TOK_SP = 294,
};

// How operators are read: as tokens of their own, or as plain characters.
enum ScanMode : int { kExpressionMode = 0, kOperandMode = 1 };

// ---- State owned here ----

extern std::string_view yytext; // text of the last name, in the line; cleared by each gettoken
extern std::int32_t yyval;      // low 32 bits of the last number; cleared by each gettoken
extern int ctoken; // the code last returned, which tells "%" and "*" apart; reset at each line

// ---- Functions ----

constexpr bool starts_symbol(char ch) { return has_class(ch, kClassLetter | kClassUnderscore); }

// The first character that is none of a symbol's.
inline const char *skip_symbol_chars(const char *p) {
    // Four at a time: names are what most of a source consists of.
    while (true) {
        if (!is_symbol_char(p[0])) {
            return p;
        }
        if (!is_symbol_char(p[1])) {
            return p + 1;
        }
        if (!is_symbol_char(p[2])) {
            return p + 2;
        }
        if (!is_symbol_char(p[3])) {
            return p + 3;
        }
        p += 4;
    }
}

// The length of the name at p, at most kNameLimit; 0 if there is none. A letter or "_" comes first,
// then letters, digits, "$", "." and "_"; a byte of 128 or more right behind makes it no name.
inline std::size_t symbol_length(const char *p) {
    if (!starts_symbol(*p)) {
        return 0;
    }
    const char *end = skip_symbol_chars(p + 1);
    const auto length = static_cast<std::size_t>(end - p);
    // Quirk (long-names): a longer name is cut without a message, and its rest is the next token.
    if (length >= kNameLimit) {
        return kNameLimit;
    }
    return static_cast<unsigned char>(*end) >= 128 ? 0 : length;
}

// The length of the register name at p (A, X, Y: 1; SP, CC: 2), which ends where no letter, digit
// or "_" follows; 0 if there is none. Quirk (register-prefix): "$" and "." end it too, although
// they belong to names.
inline std::size_t register_length(const char *p) {
    if (!has_class(*p, kClassRegister)) {
        return 0;
    }
    // No other character becomes one of these letters by the bit that makes them lower-case.
    const int first = *p | 0x20;
    if (first == 's' || first == 'c') {
        const bool is_pair = (p[1] | 0x20) == (first == 's' ? 'p' : 'c');
        return is_pair && !is_name_char(p[2]) ? 2 : 0;
    }
    return is_name_char(p[1]) ? 0 : 1;
}

// Reads a name into yytext and returns 1, or returns 0 without moving.
int valid_sym();

// A token as it stands in the text.
struct ScannedToken {
    int token;
    std::int32_t number; // low 32 bits of the value of a TOK_NUMBER
    const char *end;     // behind its last character
};

// The tokens that an operator character begins in an expression: alone, or with one of two others
// right behind it.
struct Operator {
    std::int16_t token = 0; // of the character alone; 0: no operator
    std::int16_t second = kNoCharacter;
    std::int16_t second_token = 0;
    std::int16_t other = kNoCharacter;
    std::int16_t other_token = 0;

    static constexpr std::int16_t kNoCharacter = -1;
};

consteval std::array<Operator, 256> make_operators() {
    std::array<Operator, 256> operators{};
    operators['('] = {TOK_OPEN};
    operators[')'] = {TOK_CLOSE};
    // Quirk (no-location-counter): always the product here, never the current address.
    operators['*'] = {TOK_MULTIPLY};
    operators['+'] = {TOK_PLUS};
    operators['-'] = {TOK_MINUS};
    operators['/'] = {TOK_DIVIDE};
    operators['%'] = {TOK_REMAINDER};
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

inline constexpr std::array<Operator, 256> kOperators = make_operators();

// These store the end of the token at p, and its number if it has one, and return its code, or 0
// where no such token stands.

// An operator, "%" as the one of the remainder.
inline int scan_operator(const char *p, ScannedToken &scanned) {
    const Operator &row = kOperators[static_cast<unsigned char>(*p)];
    if (row.token == 0) { // the text may end here
        return 0;
    }
    const int next = static_cast<unsigned char>(p[1]);
    scanned.end = p + 2;
    if (next == row.second) {
        return row.second_token;
    }
    if (next == row.other) {
        return row.other_token;
    }
    scanned.end = p + 1;
    return row.token;
}

// Digits up to a delimiter: true, or false where one is faulty, which is then taken too.
template <unsigned base> inline bool scan_digits(const char *p, ScannedToken &scanned) {
    std::uint64_t digit = digit_value(*p);
    if (digit < base) {
        std::uint64_t value = 0;
        do {
            value = value * base + digit;
            digit = digit_value(*++p);
        } while (digit < base);
        if (is_expression_delimiter(*p)) {
            // Quirk (modulo-32): only the low 32 bits count, as a signed number.
            scanned.number = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
            scanned.end = p;
            return true;
        }
    }
    scanned.end = p + 1;
    return false;
}

// A name, or a decimal or hexadecimal number without a faulty digit: what most operands are.
[[gnu::always_inline]] inline int scan_plain_operand(const char *p, ScannedToken &scanned) {
    if (starts_symbol(*p)) {
        const std::size_t length = register_length(p) != 0 ? 0 : symbol_length(p);
        scanned.end = p + length;
        return length != 0 ? TOK_NAME : 0;
    }
    if (digit_value(*p) < 10) {
        return scan_digits<10>(p, scanned) ? TOK_NUMBER : 0;
    }
    return *p == '$' && scan_digits<16>(p + 1, scanned) ? TOK_NUMBER : 0;
}

// Stores the token at p, where the token before it was previous, and returns its code. The number
// is stored for a TOK_NUMBER only. Moves nothing; reports faulty digits.
int scan_token(const char *p, int mode, int previous, ScannedToken &scanned);

// Reads the next token and returns its code.
int gettoken(int mode);

// Takes ch if it is the next character: 1, else 0.
int lookahead(char ch);

// 1 for the comment character ";", else 0.
inline int IsCommentChar(char ch) { return ch == ';' ? 1 : 0; }

// True for the tokens behind which "%" and "*" are binary operators.
bool is_operand_ending(int token);

inline void scan_new_line() { ctoken = 0; }
