// The line assembler: splits a line into label, operation and operand fields and has them carried
// out.
//
// A step that finds nothing more to do sets Line_Done, as every error does. The steps after it
// still run: they look after the label and the listing, and leave out their own work.
#pragma once

#include "as/asDiag.h"
#include "as/asPlace.h"
#include "util/ahead.h"
#include "util/text.h"

// ---- Functions ----

// Assembles the line in Line for pass 0, 1 or 2.
void assaline(int pass);

// Takes a ",": 0. Anything else is taken and reported as "Bad delimiter": 1.
int Skip_Delimiter();

// Skips blanks and tabs. Returns the position, or null at the end of the line, where work on the
// line ends.
inline const char *SkipSpace() {
    if (isblanc(*Col_Ptr)) {
        Col_Ptr = skip_blanks_and_tabs(Col_Ptr);
    }
    if (*Col_Ptr == '\n' || *Col_Ptr == '\0') {
        Line_Done = 1;
        return nullptr;
    }
    return Col_Ptr;
}
