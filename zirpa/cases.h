// The words for reports on statements: on their labels, operations and operands.
#pragma once

#include "zirpa/diagnostic.h"
#include "zirpa/heard.h"

// What a diagnostic is made of.
struct Case {
    const HeardReport &report;
    const Heard &heard;
    Diagnostic &diagnostic;

    const LineWords &words() const { return report.words; }
};

// Each fills in the diagnostic.
void word_unknown_instruction(const Case &each);
void word_bad_label(const Case &each);
void word_operand(const Case &each);
void word_operand_syntax(const Case &each);
void word_addressing_mode(const Case &each);
void word_register_pair(const Case &each);
void word_register_combination(const Case &each);

// An expression that ends too early, and a delimiter that is none.
void word_unterminated(const Case &each);
