// The output files of a run: one row each in a table that says what sets it apart, and the loops
// over the rows that name, create, head, end, close, publish and withdraw them.
//
// Pass 1 creates the files, the final pass fills them. Nothing is created before it is known that
// no output would overwrite the source, another output or a standard stream.
#pragma once

#include "util/output.h"

#include <array>
#include <string>

inline constexpr std::size_t kOutputFiles = 4;

// ---- State owned here; the names are filled once, in pass 1 ----

extern std::string File_name;     // the source's name without directories
extern std::string FileTitle;     // File_name without its extension
extern std::string Object_name;   // the S-record file
extern std::string List_name;     // the listing
extern std::string zirpafilename; // the simulator memory script

// ---- Functions ----

// Has every output hand its bytes to the sink of the same place, in this run only: S-records,
// listing, C array, script.
void divert_outputs(const std::array<Sink, kOutputFiles> &sinks);

// The names of the outputs in the same order, empty for those that the run has not made.
std::array<std::string, kOutputFiles> names_of_outputs();

// Forgets names and failures of an earlier run, and closes what it has left open.
void outputs_new_run();

// Opens the source for pass 1, creates the output files and has emission hand its bytes to them.
// Returns 0 when the source cannot be opened. Ends the run, before anything is created, if an
// output would overwrite the source or another output.
int openfiles(const char *file);

// Before the final pass: writes the heads of the listing and the script.
void write_headers();

// Ends all outputs and closes them. The S-record file comes last: after errors, or when an output
// could not be written, it is deleted.
void CloseDown();

// Reports every output that could not be written. True when there was one.
bool report_write_failures();

// Closes all outputs of a run that ends early; they stay as they are by then.
void close_outputs();

// As close_outputs for a run that has failed halfway: deletes the S-record file.
void abandon_outputs();
