// The assembler writes the outputs itself, so that their bytes and the care that is taken of old
// files are its own; what goes to standard output comes by way of memory.
#include "zirpa/assemble.h"
#include "zirpa/console.h"

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

// What goes to standard output.
std::string printed(const Inspection &inspection, bool with_records) {
    std::string text = inspection.result.symbols;
    for (const door::Output &output : inspection.result.outputs) {
        text += with_records && output.kind == door::OutputKind::kRecords ? output.bytes : "";
    }
    return text;
}

void write_depfile(Inspection &inspection, const std::string &name) {
    std::vector<std::string> kept = {inspection.file};
    for (const door::Output &output : inspection.result.outputs) {
        kept.push_back(output.name);
    }
    if (const auto failure = door::write_file(name, dependencies(inspection), kept)) {
        inspection.take(*failure);
    }
}

// What comes besides the outputs of the assembler.
void finish(Inspection &inspection, const BuildRequest &request) {
    const bool is_good = inspection.status() == 0;
    const std::string text = printed(inspection, is_good && request.to_stdout);
    if (!text.empty() && !print(text)) {
        inspection.is_unusable = true;
    }
    if (is_good && !request.depfile.empty()) {
        write_depfile(inspection, request.depfile);
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
