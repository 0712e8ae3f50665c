// The operand parser: turns the operand field of an instruction into one addressing mode and a
// value.
//
// A fault in the form of an operand is not reported here: the encoder that asks for the operand
// knows which message fits the instruction. All parts stand right next to each other, since a blank
// ends the operand and begins the comment.
#pragma once

#include "expr/record.h"

// ---- State owned here ----

extern int commadel; // cleared at the start of every operand and every line

// ---- Functions ----

// Reads an operand at the scan position. 0 and one mode bit set, or nonzero for a syntax fault,
// which the caller reports.
int Parse_Operand(OperandRecord &operand);

// Reads two register names with a comma between. 1 and their tokens, or 0.
int ParseReglist(int &first, int &second);

inline void operand_new_line() { commadel = 0; }
