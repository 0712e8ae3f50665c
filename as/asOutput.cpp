#include "as/asOutput.h"

#include <cstdlib>

#include <unistd.h>

namespace {

// Apart from the files, so that a file that isn't used costs no page of memory.
std::array<OutputBuffer, 5> buffers;

TerminalGuard terminal_guard;

} // namespace

OutputFile standard_output(buffers[0]);
OutputFile objectfile(buffers[1]);
OutputFile listfile(buffers[2]);
OutputFile algofile(buffers[3]);
OutputFile zirpafile(buffers[4]);
std::string symdebfile;

void (*end_run_hook)(int status) = nullptr;

void output_new_run() {
    fill_standard_descriptors();
    abandon_outputs();
    for (OutputFile *file : {&objectfile, &listfile, &algofile, &zirpafile}) {
        file->forget_failure();
    }
    symdebfile.clear();
    standard_output.attach(STDOUT_FILENO, &terminal_guard);
}

void close_side_outputs() {
    for (OutputFile *file : {&listfile, &algofile, &zirpafile}) {
        file->close();
    }
}

void abandon_outputs() {
    close_side_outputs();
    if (objectfile.is_open()) {
        objectfile.withdraw();
    }
}

void end_run(int status) {
    standard_output.flush();
    close_side_outputs();
    objectfile.close();
    if (end_run_hook != nullptr) {
        end_run_hook(status);
    }
    std::exit(status);
}
