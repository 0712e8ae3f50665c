#include "door/messages.h"

#include <algorithm>
#include <array>

namespace door {

namespace {

// What an expression that is faulty is reported with.
constexpr std::string_view kPlacedFormat = "%s, Position[%d]";

// clang-format off
constexpr std::array kMessages = std::to_array<Message>({
    // Lines
    {"Illegal label",                                    "bad-label",                Where::kFirstWord},
    {"Illegal mnemonic",                                 "unknown-instruction",      Where::kOperation},
    {"Multiple definition",                              "multiple-definition",      Where::kLabel},
    {"Phase error between passes",                       "phase-error",              Where::kLabel},
    {"Source line is to long",                           "long-line",                Where::kLine},
    // Operands
    {"Syntax Error",                                     "bad-operand",              Where::kOperand},
    {"Bad operand syntax",                               "bad-operand-syntax",       Where::kOperand},
    {"Illegal Addressing Mode",                          "addressing-mode",          Where::kOperand},
    {"Illegal addressing mode",                          "branch-addressing-mode",   Where::kOperand},
    {"Bad register pair",                                "bad-register-pair",        Where::kOperand},
    {"Illegal register combination",                     "register-combination",     Where::kOperand},
    {"Value (0x%X) is truncated",                        "value-out-of-range",       Where::kValue},
    {"Word (16 bit) sized operand/data truncated",       "word-out-of-range",        Where::kValue},
    {"Displacement (0x%X) is out of range",              "branch-out-of-reach",      Where::kOperand},
    {"Short branch displacement is zero",                "branch-to-next",           Where::kOperand},
    // Expressions
    {"Illegal decimal digit",                            "bad-decimal-digit",        Where::kDigit},
    {"Illegal hexadecimal digit",                        "bad-hexadecimal-digit",    Where::kDigit},
    {"Illegal binary digit",                             "bad-binary-digit",         Where::kDigit},
    {"Missing Parenthesis",                              "missing-parenthesis",      Where::kOffset},
    {"Unexpected Parenthesis",                           "unexpected-parenthesis",   Where::kOffset},
    {"Operand expected",                                 "operand-expected",         Where::kOffset},
    {"Missing operator",                                 "missing-operator",         Where::kOffset},
    {"Unterminated expression",                          "unterminated-expression",  Where::kOffset},
    {"Illegal character",                                "illegal-character",        Where::kOffset},
    {"Illegal use of reserved word",                     "reserved-word",            Where::kOffset},
    {"Undefined symbol '%s'",                            "undefined-name",           Where::kUndefined},
    {"Undefined Symbol",                                 "undefined-expression",     Where::kOperand},
    {"Integer divide by zero",                           "division-by-zero",         Where::kDivisor},
    {"Reached unreacheable point in Parser..P0",         "less-or-greater",          Where::kBefore},
    // Directives
    {"No label for \"equ\"",                             "equ-without-label",        Where::kOperation},
    {"symbol '%s' previously defined at line %d",        "already-defined",          Where::kLabel},
    {"symbol '%s' redefined at line %d",                 "changed-value",            Where::kLabel},
    {"symbol '%s' is forward referenced from line %d",   "forward-constant",         Where::kLabel},
    {"Forward reference",                                "forward-reference",        Where::kOperand},
    {"Undetermined size for reservation of storage",     "bad-reservation",          Where::kOperand},
    {"Bad delimiter",                                    "bad-delimiter",            Where::kHere},
    {"Bad constant delimiter",                           "bad-constant-delimiter",   Where::kHere},
    {"Illegal ASCII character",                          "non-ascii-character",      Where::kBefore},
    {"start symbol '%s' is defined",                     "undefined-start",          Where::kOperand},
    {"Program entry defined, END <address> ignored",     "second-start",             Where::kOperand},
    // Conditional assembly
    {"#if too deeply nested",                            "if-too-deep",              Where::kConditional},
    {"#ifndef too deeply nested",                        "ifndef-too-deep",          Where::kConditional},
    {"#elif with no #if",                                "elif-without-if",          Where::kConditional},
    {"#elif after #else",                                "elif-after-else",          Where::kConditional},
    {"#else with no #if",                                "else-without-if",          Where::kConditional},
    {"#else after #else",                                "else-after-else",          Where::kConditional},
    {"#endif with no #if",                               "endif-without-if",         Where::kConditional},
    {"Message Directive",                                "error-directive",          Where::kConditional},
    {"Macro Expansions is NOT supported, 'define' igored", "macro-definition",       Where::kOperand},
    {"Bad preproc",                                      "bad-conditional-name",     Where::kOperand},
    // Lines of a compiler
    {"Unrecognized '.stab'-entry",                       "debug-entry",              Where::kFirstWord},
    {"Debug label '%s' is missing",                      "debug-label",              Where::kLine},
    {"Symbol '%s:%s' is missing",                        "debug-symbol",             Where::kLine},
    {"Unidentified symbol type '%c'",                    "debug-symbol-type",        Where::kLine},
    {"Warning: Bad line number in symdebug info",        "debug-line-number",        Where::kLine},
    {"Read Error: Possibly last line continuation",      "open-continuation",        Where::kLine},
    // Files and limits
    {"Cannot create output fil '%s'",                    "output-refused",           Where::kLine},
    {"Can't create listfile",                            "no-listing",               Where::kLine},
    {"Can't create C output file",                       "no-array",                 Where::kLine},
    {"Include stack is exhausted, '%s' is ignored",      "too-many-directories",     Where::kLine},
    {"Pathname should be quoted, option ignored",        "empty-directory",          Where::kLine},
    {"To many input files, source stack exhausted",      "too-many-files",           Where::kLine},
    {"Recursion in file stack, file ignored",            "recursive-file",           Where::kLine},
    {"File '%s' not found",                              "file-not-found",           Where::kLine},
    {"(F1010) Symbol table overflow",                    "too-many-names",           Where::kLine},
    // Words of other dialects
    {"Old fashioned directive: '%s', use '%s' instead",  "old-directive",            Where::kOperation},
    {"Unimplemented assembler directive, ignored",       "unimplemented-directive",  Where::kOperation},
    {"DPR register is 8 bits",                           "direct-page",              Where::kOperand},
    // Faults of the assembler itself
    {"RegisterSymSize failed",                           "internal-symbol-size",     Where::kLine},
    {"(F1016)",                                          "internal-coder",           Where::kLine},
    {"(F1017)",                                          "internal-size",            Where::kLine},
    {"(F1023)",                                          "internal-definition",      Where::kLine},
    {"(F1024)",                                          "internal-symbol",          Where::kLine},
    {"(F1034)",                                          "long-file-name",           Where::kLine},
});
// clang-format on

constexpr Message kUnknown = {"", "unknown", Where::kLine};

} // namespace

std::span<const Message> messages() { return kMessages; }

const Message &message_of(std::string_view format, std::string_view text) {
    if (format == kPlacedFormat) {
        format = text.substr(0, text.rfind(", Position["));
    }
    const auto *found = std::find_if(kMessages.begin(), kMessages.end(),
                                     [&](const Message &row) { return row.format == format; });
    return found != kMessages.end() ? *found : kUnknown;
}

} // namespace door
