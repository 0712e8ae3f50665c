// The listing: a head, one line per source line of the final pass with its address, bytes and text,
// and the number of errors.
//
// Reports go into the same file by themselves, each before the line that it is about, because a
// line is listed when it has been assembled.
#pragma once

#include "as/asOptions.h"

#include <string>

// ---- State owned here ----

extern int listing_on;        // the listing is switched on; set when the final pass begins
extern int uncond_listing_on; // skipped lines are listed too; reset at each pass

// ---- Functions ----

// Writes the head, which names the listing, and switches the listing on.
void begin_listing(const std::string &name);

// Lists the current line, of which a listing or records for the debugger are wanted.
void write_wanted_line(bool is_skipped);

// Lists the current line and, with -g, records an instruction for the debugger. A line that
// conditional assembly skips is listed only where that has been switched on.
inline void as_write_listline(bool is_skipped) {
    if (O_list != 0 || O_symdebug != 0) {
        write_wanted_line(is_skipped);
    }
}

// Writes the number of errors, when there are any.
void end_listing();

void listing_new_run();
void listing_new_pass();
