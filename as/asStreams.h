// The two streams that reports go to, and the one way out of a run.
//
// They stand at the ground of the program because everybody reports. The other output files belong
// to the modules that write their formats; asOutputs knows them all.
#pragma once

#include "util/output.h"

// ---- State owned here ----

extern OutputFile standard_output; // messages, summary, symbol table; attached at start-up
extern OutputFile listfile;        // listing; open only with -L, from pass 1 to close-down

// ---- Functions ----

// Fills closed standard descriptors and attaches standard output.
void streams_new_run();

// Writes the line that the usage text, the listing and the script begin with.
void put_banner(OutputFile &out);

// What end_run throws. as_main catches it, gives the outputs what has been written by then, and
// returns the status.
struct EndOfRun {
    int status; // 0 to 255
};

// Ends the run at once, in the middle of whatever the callers do.
[[noreturn, gnu::cold]] void end_run(int status);
