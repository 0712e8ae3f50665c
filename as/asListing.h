// The listing: one line per source line of the final pass, with its address, bytes and text.
#pragma once

// ---- State owned here ----

extern int listing_on;        // the listing is switched on; set when the final pass begins
extern int uncond_listing_on; // skipped lines are listed too; reset at each pass

// ---- Functions ----

// Lists the current line and, with -g, records an instruction for the debugger. A line that
// conditional assembly skips is listed only where that has been switched on.
void as_write_listline(bool is_skipped);

void listing_new_run();
void listing_new_pass();
