// Diagnostics: the one family of functions through which every error and warning is reported.
//
// Reports are made only in the final pass, so that a problem is reported once although the source
// is read three times; fatal errors end the run in any pass. Each report goes to standard output
// and, when there is a listing, into the listing ahead of the offending line.
//
// Error and Line_Done: an error ends work on its line, which Line_Done says to all steps that
// follow. Callers don't look at a result; they return, or go on and find the line done. In one case
// Error leaves Line_Done alone: from the second phase error of the pass on it swallows all reports.
// A caller whose line must end all the same sets Line_Done again itself.
#pragma once

#include <cstdarg>
#include <cstdint>

// The longest text of a fatal message, in characters; what is beyond is cut.
inline constexpr int kFatalTextLimit = 1024;

// ---- State owned here ----

extern std::int16_t Errors;     // errors of this pass, wrapping at 16 bits; reset at each pass
extern std::int32_t Warnings;   // warnings of this pass; reset at each pass
extern int LineError;           // the line has had an error reported; reset at each line
extern int Line_Done;           // nothing more is to be done with the line; reset at each line
extern int phase_error;         // a phase error waits to be reported; reset at passes 0 and 1
extern int Phase_Error_Written; // the pass's one phase error has been reported; reset likewise

// ---- Functions ----
// Reports are rare, so the code that leads to them is kept out of the way.

// Reports an error in the final pass, if it is the first of its line, and ends work on the line.
[[gnu::cold]] void Error(const char *text);

// As Error, with values inserted, and reported even if the line has had an error.
[[gnu::cold, gnu::format(printf, 1, 2)]] void vpError(const char *format, ...);

// Reports an error and returns -1, the result of what has failed.
[[gnu::cold]] int fail(const char *text);

// Reports a warning in the final pass with -w.
[[gnu::cold]] void Warning(const char *text);
[[gnu::cold, gnu::format(printf, 1, 2)]] void vpWarning(const char *format, ...);

// As Warning, for a place given by the caller.
void ExtendedWarning(const char *text, const char *file_name, int line);

// Reports in any pass and ends the run with status 1; files are left as they are.
[[noreturn, gnu::cold, gnu::format(printf, 1, 2)]] void vpFatal(const char *format, ...);

// Ends work on the current line.
inline void SkipLine() { Line_Done = 1; }

// Before passes 0 and 1: clears the counters and the phase-error flags.
void diag_new_pass();

// Before the final pass: clears the counters alone.
void diag_new_counts();

inline void diag_new_line() {
    LineError = 0;
    Line_Done = 0;
}
