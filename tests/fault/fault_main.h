// What the fault programs run.
#pragma once

// Runs the program with a command line. Returns its status.
int run_program(int argc, const char *const *argv);
