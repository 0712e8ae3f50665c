// A run ends early by an exception, so that whatever stands on the way to as_main gives back what
// it holds, and the process could go on with another run.
#include "as/asStreams.h"

#include "as/asOptions.h"

#include <unistd.h>

namespace {

OutputBuffer printed;
OutputBuffer listed;
TerminalGuard terminal_guard;

} // namespace

OutputFile standard_output(printed);
OutputFile listfile(listed);

void streams_new_run() {
    fill_standard_descriptors();
    standard_output.attach(STDOUT_FILENO, &terminal_guard);
}

void put_banner(OutputFile &out) {
    out.put({kProgramName, " - ", kProcessorName, " Absolute crossassembler, Version ", kVersion});
}

void end_run(int status) { throw EndOfRun{status}; }
