// The instruction encoders: from a mnemonic's row and its operand to the bytes of the instruction.
// There is one for each way of reading an operand; the table names the encoder of each mnemonic.
//
// A fault in the operand is found before the first byte, so a faulty instruction emits nothing. A
// value out of range is emitted truncated, so that all passes agree on every length.
#pragma once

// ---- State owned here ----

extern int isinstruction; // final pass with -g: the line is an instruction; reset at each line

// ---- Functions ----

// Encodes the instruction in mp from the operand at the scan position and ends work on the line. -1
// after a fault, else not negative.
int CodeLine();

// The encoders; each returns -1 after a fault.
int coder0(); // inherent
int coder1(); // LDA, STA, ANDCC, ORCC
int coder2(); // branches
int coder3(); // memory operations, JMP, JSR, stores of registers
int coder4(); // operations with a byte operand
int coder5(); // TFR
int coder6(); // EXG
int coder7(); // LEAX, LEAY

inline void encode_new_line() { isinstruction = 0; }
