// The operators: what they make of their two sides, and which of them binds its left side at once.
#pragma once

#include "target/scan.h"

#include <cstdint>

// True where an operand that ends at p is no value of its own yet.
//
// Quirk (left-to-right): only "/", "*" or "%%" right after an operand keep it as the term of an
// operator; any other operator takes the whole value so far.
// Quirk (remainder-of-sum): a "%" alone is such an operator.
// Quirk (doubled-percent): "%%" is not, since its second "%" begins a number.
inline bool term_goes_on(const char *p) {
    return *p == '/' || *p == '*' || (*p == '%' && p[1] == '%');
}

// True for the operators that don't take 0 on their right.
constexpr bool is_division(int token) { return token == TOK_DIVIDE || token == TOK_REMAINDER; }

// The value of an operator or an opening parenthesis with its sides.
std::int64_t apply_operator(int token, std::int64_t left, std::int64_t right);
