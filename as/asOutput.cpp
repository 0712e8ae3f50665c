#include "as/asOutput.h"

#include <cstdlib>

#include <unistd.h>

namespace {

// Apart from the files, so that a file that isn't used costs no page of memory.
std::array<OutputBuffer, 5> buffers;

} // namespace

OutputFile standard_output(buffers[0]);
OutputFile objectfile(buffers[1]);
OutputFile listfile(buffers[2]);
OutputFile algofile(buffers[3]);
OutputFile zirpafile(buffers[4]);
std::string symdebfile;

void (*end_run_hook)(int status) = nullptr;

void output_new_run() {
    objectfile.close();
    listfile.close();
    algofile.close();
    zirpafile.close();
    symdebfile.clear();
    standard_output.attach(STDOUT_FILENO);
}

void end_run(int status) {
    standard_output.flush();
    objectfile.flush();
    listfile.flush();
    algofile.flush();
    zirpafile.flush();
    if (end_run_hook != nullptr) {
        end_run_hook(status);
    }
    std::exit(status);
}
