// The driver: start-up, the three passes, close-down and the summary.
#pragma once

// Sets every module to the state in which a run begins. The invocation is the program's own path.
void start_up(const char *invocation);

// Runs the assembler as a program: argv[0] is the invocation path. Returns the exit status.
// Everything is set up anew, so that one process can run it many times. When that is done and
// before the command line is read, prepare is called, if there is one.
int as_main(int argc, const char *const *argv, void (*prepare)() = nullptr);
