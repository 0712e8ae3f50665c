#include "as/asOutput.h"

#include <cstdlib>

#include <unistd.h>

OutputFile standard_output;
OutputFile objectfile;
OutputFile listfile;
OutputFile algofile;
OutputFile zirpafile;
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
