// The simulator memory script: commands that clear a simulator and set its memory, one for each
// byte of the program.
#pragma once

#include "target/emit.h"
#include "util/output.h"

#include <string>

// ---- State owned here ----

extern OutputFile
    zirpafile; // open from pass 1 to close-down; a script that can't be made is left out

// ---- Functions ----

// Writes the head, which names the script, and the commands that clear the simulator.
void begin_script(const std::string &name);

// Writes a command for each byte of a record.
void put_script_lines(const Record &record);
