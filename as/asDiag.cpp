// A report goes to standard output and, while a listing is open, there too, in a form of its own.
// The listing's line for the source line follows later, because it shows what the line has
// generated.
#include "as/asDiag.h"

#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asStreams.h"
#include "as/asWatch.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

std::int16_t Errors = 0;
std::int32_t Warnings = 0;
int LineError = 0;
int Line_Done = 0;
int phase_error = 0;
int Phase_Error_Written = 0;

namespace {

std::string format_text(const char *format, va_list values) {
    va_list counted;
    va_copy(counted, values);
    const int length = std::vsnprintf(nullptr, 0, format, counted);
    va_end(counted);
    std::string text(static_cast<std::size_t>(std::max(length, 0)) + 1, '\0');
    (void)std::vsnprintf(text.data(), text.size(), format, values);
    // A NUL among the values ends the message.
    text.resize(text.find('\0'));
    return text;
}

// The two names of the place that a report speaks of: standard output shows the path, the listing
// the bare name.
struct Place {
    const char *path;
    const char *name;
    int line;
};

Place current_place() {
    const FileEntry *file = getCurrentFileInfo(-1);
    if (file == nullptr) {
        return {"", "", Line_no};
    }
    return {file->pathname.c_str(), file->name.c_str(), Line_no};
}

bool is_listing() { return O_list != 0 && listfile.is_open(); }

// Quirk (error-count): 16 bits, so 65,536 errors count as 0.
void count_error() { Errors = static_cast<std::int16_t>(static_cast<std::uint16_t>(Errors) + 1U); }

void report_error(const char *text) {
    count_error();
    LineError = 1;
    const Place place = current_place();
    const std::string line = std::to_string(place.line);
    standard_output.put({place.path, " (", line, ") Error: ", text, "\n"});
    if (is_listing()) {
        listfile.put({"\"", place.name, "\" line ", line, ", ERROR: ", text, "\n"});
    }
}

// Quirk (message-forms): the listing says "LINE:" and has no blank after the comma, unlike its
// error lines, and both differ from standard output.
void report_warning(const char *text, const Place &place) {
    Warnings = static_cast<std::int32_t>(static_cast<std::uint32_t>(Warnings) + 1U);
    const std::string line = std::to_string(place.line);
    standard_output.put({place.path, " (", line, ") Warning: ", text, "\n"});
    if (is_listing()) {
        listfile.put({"\"", place.name, "\" LINE: ", line, ",WARNING: ", text, "\n"});
    }
}

bool warnings_are_reported() { return O_warn > 0 && Pass2 != 0; }

bool warnings_are_told() { return watcher != nullptr && Pass2 != 0; }

void tell(ReportKind kind, const char *format, const char *text, bool is_counted = true) {
    if (watcher != nullptr) {
        watcher->report(kind, format, text, is_counted);
    }
}

void raise_error(const char *format, const char *text) {
    if (Pass2 != 0) {
        if (phase_error != 0) {
            // Quirk (second-phase-error): after the one that is reported, the next one leaves the
            // flag set, and every later error of the pass is swallowed here, uncounted.
            if (Phase_Error_Written != 0) {
                tell(ReportKind::kError, format, text, false);
                return;
            }
            Phase_Error_Written = 1;
            phase_error = 0;
        }
        // Quirk (once-a-line): a plain error counts once a line, one with a value each time.
        if (LineError == 0) {
            tell(ReportKind::kError, format, text);
            report_error(text);
        }
    }
    Line_Done = 1;
}

void raise_warning(const char *format, const char *text) {
    if (Pass2 != 0) {
        tell(ReportKind::kWarning, format, text);
    }
    if (warnings_are_reported()) {
        report_warning(text, current_place());
    }
}

} // namespace

void Error(const char *text) { raise_error(text, text); }

// A handler that reports and gives up does so in one statement.
int fail(const char *text) {
    Error(text);
    return -1;
}

void vpError(const char *format, ...) {
    va_list values;
    va_start(values, format);
    const std::string text = Pass2 != 0 ? format_text(format, values) : std::string();
    va_end(values);
    // A report with a value says more than that the line is faulty, so each is made.
    LineError = 0;
    raise_error(format, text.c_str());
}

void Warning(const char *text) { raise_warning(text, text); }

void vpWarning(const char *format, ...) {
    if (warnings_are_reported() || warnings_are_told()) {
        va_list values;
        va_start(values, format);
        const std::string text = format_text(format, values);
        va_end(values);
        raise_warning(format, text.c_str());
    }
}

void ExtendedWarning(const char *text, const char *file_name, int line) {
    if (warnings_are_reported()) {
        report_warning(text, {file_name, file_name, line});
    }
}

void vpFatal(const char *format, ...) {
    va_list values;
    va_start(values, format);
    std::string text = format_text(format, values);
    va_end(values);
    // A name from outside may be of any length.
    text.resize(std::min<std::size_t>(text.size(), kFatalTextLimit));
    tell(ReportKind::kFatal, format, text.c_str());
    const Place place = current_place();
    if (*place.path == '\0') {
        standard_output.put({"Fatal error: ", text, "\n"});
    } else {
        const std::string line = std::to_string(place.line);
        // Quirk (message-forms): no blank between ")" and "Fatal" on standard output, and the path
        // in the listing.
        standard_output.put({place.path, " (", line, ")Fatal error: ", text, "\n"});
        if (is_listing()) {
            listfile.put({"\"", place.path, "\" (", line, ") Fatal error: ", text, "\n"});
        }
    }
    end_run(1);
}

void diag_new_pass() {
    diag_new_counts();
    phase_error = 0;
    Phase_Error_Written = 0;
}

// The phase-error flags need no clearing: they are set in the final pass alone.
void diag_new_counts() {
    Errors = 0;
    Warnings = 0;
}
