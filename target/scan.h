// The token scanner of expressions and operands, and the scanner of names.
//
// A token is known by its code: a character that begins nothing longer stands for itself, all else
// is numbered below. Some characters have two readings, between which the token before them
// decides: after an operand "%" and "*" are operators, elsewhere they begin a binary number and are
// the location counter. That is why each scan needs the code of the token before.
//
// scan_token looks at a text and moves nothing. The others read at the shared scan position Col_Ptr
// and leave it after what they took.
#pragma once

#include "util/text.h"

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

// A token that begins at a place of the text which its reader knows.
struct ScannedToken {
    const char *end = nullptr; // after its last character
    int token = TOK_END;       // its code
    std::int32_t number = 0;   // low 32 bits of the value of a TOK_NUMBER
};

// ---- State owned here ----

extern std::string_view yytext; // text of the last name, in the line; cleared by each gettoken
extern std::int32_t yyval;      // low 32 bits of the last number; cleared by each gettoken
extern int ctoken; // the code last read, which tells "%" and "*" apart; reset at each line

// ---- Functions ----

// The token at p, where the token before it was previous. Reports a faulty digit; the number up to
// that digit is a TOK_END then.
ScannedToken scan_token(const char *p, int mode, int previous);

// The same where an operator is expected: operators and characters only.
ScannedToken scan_operator(const char *p);

// Reads the next token and returns its code.
int gettoken(int mode);

// Reads a name into yytext and returns 1, or returns 0 without moving. A letter or "_" comes first,
// then letters, digits, "$", "." and "_".
int valid_sym();

// Takes ch if it is the next character: 1, else 0.
int lookahead(char ch);

// 1 for the comment character ";", else 0.
inline int IsCommentChar(char ch) { return ch == ';' ? 1 : 0; }

// True for a character that stands for itself, and for TOK_END.
constexpr bool is_character(int token) { return token < TOK_LC; }

constexpr bool is_operand(int token) { return token == TOK_NUMBER || token == TOK_NAME; }

// True for the operators that need an operand on their right, signs and negations included.
constexpr bool is_operator(int token) {
    return (token >= TOK_EQ && token <= TOK_OR) || token == TOK_REMAINDER;
}

// True for the tokens after which "%" and "*" are binary operators.
constexpr bool is_operand_ending(int token) {
    return is_operand(token) || token == TOK_LC || token == TOK_CLOSE;
}

inline void scan_new_line() { ctoken = 0; }
