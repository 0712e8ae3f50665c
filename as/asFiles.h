// The output files of a run: their names, their creation in pass 1, their headers, and close-down.
#pragma once

#include <string>

// ---- State owned here; the names are filled once, in pass 1 ----

extern std::string File_name;     // the source's name without directories
extern std::string FileTitle;     // File_name without its extension
extern std::string Object_name;   // the S-record file
extern std::string List_name;     // the listing
extern std::string zirpafilename; // the simulator memory script
extern std::string startsymname;  // the start symbol of the debug records

// ---- Functions ----

void files_new_run();

// Opens the source for pass 1 and creates the output files. Returns 0 when the source cannot be
// opened. Ends the run, before anything is created, if an output would overwrite the source or
// another output.
int openfiles(const char *file);

// Writes the headers of the listing and of the script.
void write_headers();

// Ends all outputs and closes them. The S-record file comes last: after errors, or when an output
// could not be written, it is deleted.
void CloseDown();

// Reports every output that could not be written. True when there was one.
bool report_write_failures();
