// The output streams, and the one way out of a run.
//
// The streams stand at the bottom of the program, because reports, emission, listing and close-down
// all write to them. asFiles names and creates the files behind them. Debug records gather in
// memory and follow the end record of the S-record file at close-down.
#pragma once

#include "util/output.h"

#include <string>

// ---- State owned here ----

extern OutputFile standard_output; // messages, summary, symbol table; attached at start-up
extern OutputFile objectfile;      // S-records; open from pass 1 to close-down
extern OutputFile listfile;        // listing; open only with -L
extern OutputFile algofile;        // C array; open only with -A
extern OutputFile zirpafile;       // simulator memory script; may fail to open, then stays closed
extern std::string symdebfile;     // debug records of the final pass, each with its newline

// Called instead of leaving the process when set; must not return. Only tests and fuzzers set it.
extern void (*end_run_hook)(int status);

// ---- Functions ----

// Fills closed standard descriptors, closes what an earlier run left open and attaches standard
// output.
void output_new_run();

// Gives all outputs but the S-record file what their buffers hold and their names.
void close_side_outputs();

// Closes all outputs of a run that cannot go on, and deletes the S-record file.
void abandon_outputs();

// Ends the run at once with an exit status of 0 to 255, after writing out all buffers. Outputs stay
// as they are by then.
[[noreturn]] void end_run(int status);
