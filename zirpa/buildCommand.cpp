// The assembler writes the outputs itself, so that their bytes and the care that is taken of old
// files are its own; what goes to standard output comes by way of memory.
#include "zirpa/assemble.h"
#include "zirpa/console.h"

#include <cerrno>
#include <cstring>

namespace {

bool is_special_in_makefiles(char ch) { return ch == ' ' || ch == '#' || ch == '\\'; }

std::string for_makefile(const std::string &name) {
    std::string text;
    for (const char ch : name) {
        text += ch == '$' ? "$" : is_special_in_makefiles(ch) ? "\\" : "";
        text += ch;
    }
    return text;
}

// "outputs: source", for make and ninja.
std::string dependencies(const Inspection &inspection) {
    std::string text;
    for (const door::Output &output : inspection.result.outputs) {
        text += (text.empty() ? "" : " ") + for_makefile(output.name);
    }
    return text + ": " + for_makefile(inspection.file) + "\n";
}

void note_unwritable(Inspection &inspection, const std::string &name) {
    inspection.is_unusable = true;
    inspection.diagnostics.push_back(error_of_file(
        "cannot-write", name, std::string("can't be written: ") + std::strerror(errno)));
}

void print_records(Inspection &inspection) {
    for (const door::Output &output : inspection.result.outputs) {
        if (output.kind == door::OutputKind::kRecords && !print(output.bytes)) {
            note_unwritable(inspection, "standard output");
        }
    }
}

// What comes besides the outputs of the assembler.
void finish(Inspection &inspection, const BuildRequest &request) {
    if (!inspection.result.symbols.empty() && !print(inspection.result.symbols)) {
        note_unwritable(inspection, "standard output");
    }
    if (inspection.status() != 0) {
        return;
    }
    if (request.to_stdout) {
        print_records(inspection);
    } else if (!request.depfile.empty() && !write_file(request.depfile, dependencies(inspection))) {
        note_unwritable(inspection, request.depfile);
    }
}

} // namespace

int build(const BuildRequest &request) {
    const door::Outputs outputs =
        request.to_stdout ? door::Outputs::kMemory : door::Outputs::kFiles;
    Inspection inspection = assemble(request.common, request.source, outputs);
    finish(inspection, request);
    const int status = inspection.status();
    const bool is_shown =
        show(request.common, {{inspection.file, status, std::move(inspection.diagnostics)}});
    return is_shown ? status : kUnusable;
}
