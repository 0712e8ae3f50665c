// The line reader: every module's state of the line is reset, then the next line is taken.
//
// It stands above all modules that have such state and below those that ask for a line, so that the
// source files need not know who works on their lines.
#pragma once

// Delivers the next line in Line. Returns 1, or 0 at the end of the main file.
int as_read_line();
