// as_main below tells the run from its start to its exit status; what each step needs stands above
// it in the same order.
#include "as/asMain.h"

#include "as/asCommand.h"
#include "as/asCond.h"
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asDialect.h"
#include "as/asLabel.h"
#include "as/asLine.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asOutputs.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asRead.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "as/asWatch.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "util/ahead.h"
#include "util/text.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace {

constexpr int kFailure = 1;
constexpr int kStatusMask = 0xFF;

// What every pass begins with.
void reset_pass_state() {
    location_new_pass();
    label_new_pass();
    listing_new_pass();
    dialect_new_pass();
}

void tell_of_pass() {
    if (watcher != nullptr) {
        watcher->pass();
    }
}

void tell_of_line() {
    if (watcher != nullptr) {
        watcher->line();
    }
}

void tell_of_end() {
    if (watcher != nullptr) {
        watcher->end();
    }
}

// Before passes 0 and 1, which open every file anew.
void initpass1(int pass) {
    Pass = pass;
    Pass2 = 0;
    reset_pass_state();
    diag_new_pass();
    source_new_pass();
    tell_of_pass();
}

// What pass 0 has no use for, because it looks for constants and conditional words only: empty
// lines, comments, and lines that begin with a blank and a word. A piece without a line feed may be
// followed by blanks without end, so it is read.
bool has_no_constant(std::string_view line) {
    const char first = line.front();
    const bool is_operation = first == ' ' && line.back() == '\n' &&
                              has_class(*skip_blanks_and_tabs(line.data()), kClassLetter);
    return is_operation || first == ';' || first == '\n';
}

// The next line for pass 0. The others are counted instead of read, since most lines are
// instructions (3 % of the large workload's time; measured by leaving out the call). Conditional
// words may begin with a letter in the other dialects only.
int next_line_with_constant() {
    if (O_directive_style_native == 0 && O_directive_style_gnu == 0) {
        std::string_view line = next_source_line();
        while (!line.empty() && has_no_constant(line)) {
            skip_source_line(line.size());
            line = next_source_line();
        }
    }
    return as_read_line();
}

// Before the final pass, which follows the recorded sequence of files.
void begin_final_pass() {
    Pass = 2;
    Pass2 = 1;
    prep_undefine();
    // Quirk (no-org): the first record begins at the location counter that pass 1 has left, which
    // only an ORG corrects.
    outrecinit(record_type, LC);
    write_headers();
    source_rewind();
    push_source("");
    reset_pass_state();
    source_new_counts();
    diag_new_counts();
    tell_of_pass();
}

// What is known only after the last line.
void write_symbols() {
    if (O_symtab != 0) {
        symwrite(O_list != 0 ? listfile : standard_output);
    }
    if (O_symdebug != 0) {
        std::string types;
        symdebugwrite(types);
        add_debug_text(types);
    }
}

// Quirk (clean-run): a clean run says "No errors." alone with -w and after "-- " without.
void print_summary() {
    const bool warned = O_warn > 0 && Warnings != 0;
    if (Errors != 0 || O_warn <= 0 || warned) {
        standard_output.put("-- ");
    }
    if (Errors != 0) {
        standard_output.put_decimal(Errors);
        standard_output.put(" error(s).\n");
    } else {
        standard_output.put("No errors.\n");
    }
    if (warned) {
        standard_output.put_decimal(Warnings);
        standard_output.put(" warning(s).\n");
    }
}

// The exit status of a run that has made its outputs. A summary would praise a run whose outputs
// are lost, so what could not be written is reported in its place.
int finish() {
    CloseDown();
    if (report_write_failures()) {
        standard_output.flush();
        return kFailure;
    }
    print_summary();
    standard_output.flush();
    // Quirk (status): the system keeps 8 bits, so 256 errors look like none to a makefile.
    return standard_output.has_failed() ? kFailure : Errors & kStatusMask;
}

int finish_without_source() {
    standard_output.flush();
    return standard_output.has_failed() ? kFailure : 0;
}

int cannot_open(const char *file) {
    if (watcher != nullptr) {
        watcher->failure(FailureKind::kRead, file, std::strerror(errno));
    }
    standard_output.put({kProgramName, ": Can't open '", file, "'\n"});
    standard_output.flush();
    return kFailure;
}

// The outputs go first, so that none is taken for whole whatever becomes of the message.
int out_of_memory() {
    abandon_outputs();
    if (watcher != nullptr) {
        watcher->failure(FailureKind::kWrite, "", std::strerror(ENOMEM));
    }
    standard_output.put({kProgramName, ": Out of memory\n"});
    standard_output.flush();
    return kFailure;
}

// Starts up and reads the command line. The source's name, or null when there is nothing to do.
const char *begin_run(int argc, const char *const *argv, void (*prepare)()) {
    // A closed pipe or a file that grows too large is a write that fails, and is reported as one.
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
    start_up(argc > 0 ? argv[0] : kProgramName);
    if (prepare != nullptr) {
        prepare();
    }
    if (argc < 2) {
        print_usage();
        return nullptr;
    }
    return read_command_line(argc, argv);
}

} // namespace

// Outputs come first: closed standard descriptors are filled before any file is opened.
void start_up(const char *invocation) {
    streams_new_run();
    outputs_new_run();
    options_new_run();
    diag_new_pass();
    source_new_run(invocation);
    command_new_run();
    debug_new_run();
    label_new_run();
    location_new_pass();
    listing_new_run();
    pseudo_new_run();
    emit_new_run();
    InitSegmentList();
    init_as_symbol_table();
    init_as_conditional_handling();
}

int as_main(int argc, const char *const *argv, void (*prepare)()) {
    try {
        const char *file = begin_run(argc, argv, prepare);
        if (file == nullptr) {
            return finish_without_source();
        }
        // Pass 0: constants become known.
        initpass1(0);
        if (push_source(file) == 0) {
            return cannot_open(file);
        }
        while (next_line_with_constant() != 0) {
            assaline(0);
        }
        // Pass 1: labels get their addresses.
        initpass1(1);
        if (openfiles(file) == 0) {
            return cannot_open(file);
        }
        while (as_read_line() != 0) {
            assaline(1);
            tell_of_line();
        }
        // The final pass: everything is evaluated, emitted, listed and reported.
        begin_final_pass();
        while (as_read_line() != 0) {
            assaline(2);
            as_write_listline(is_true_level() == 0);
            tell_of_line();
        }
        tell_of_end();
        write_symbols();
        return finish();
    } catch (const EndOfRun &end) {
        standard_output.flush();
        close_outputs();
        return end.status;
    } catch (const std::bad_alloc &) {
        return out_of_memory();
    }
}
