#include "zirpa/programInput.h"

#include "zirpa/assemble.h"
#include "zirpa/console.h"

#include <cerrno>
#include <cstring>

namespace {

// What standard input is called.
constexpr const char *kInputName = "stdin";

std::optional<std::string> content_of(const std::string &name) {
    return name == kStandardInput ? read_standard_input() : ::read_file(name);
}

Diagnostic diagnostic_of(const dis::Fault &fault, const std::string &file) {
    Diagnostic diagnostic = error_of_file(std::string(fault.id), file, fault.message);
    diagnostic.place = {fault.line, fault.first, fault.last, fault.text};
    return diagnostic;
}

class ProgramInput {
  public:
    explicit ProgramInput(const ProgramRequest &request) : request_(request) {}

    std::optional<dis::Listing> read(const std::string &file);

  private:
    template <typename Reader> void read_file(const std::string &file, const Reader &reader);
    void read_others(dis::Program &program, dis::Hints &hints);

    const ProgramRequest &request_;
    std::vector<Diagnostic> diagnostics_;
};

// The reader returns faults.
template <typename Reader>
void ProgramInput::read_file(const std::string &file, const Reader &reader) {
    const std::string name = file == kStandardInput ? kInputName : file;
    const std::optional<std::string> content = content_of(file);
    if (!content) {
        diagnostics_.push_back(error_of_file(
            "cannot-read", name, std::string("can't be read: ") + std::strerror(errno)));
        return;
    }
    for (const dis::Fault &fault : reader(*content)) {
        diagnostics_.push_back(diagnostic_of(fault, name));
    }
}

void ProgramInput::read_others(dis::Program &program, dis::Hints &hints) {
    for (const std::string &file : request_.hint_files) {
        read_file(file, [&](std::string_view content) { return dis::read_hints(content, hints); });
    }
    for (const std::string &file : request_.symbol_files) {
        read_file(file, [&](std::string_view content) {
            return dis::read_symbols(content, program.names);
        });
    }
    for (const std::string &file : request_.debug_files) {
        read_file(file, [&](std::string_view content) {
            dis::Reading reading = dis::read(content, dis::InputFormat::kRecords, 0);
            program.lines.insert(program.lines.end(), reading.program.lines.begin(),
                                 reading.program.lines.end());
            program.names.insert(program.names.end(), reading.program.names.begin(),
                                 reading.program.names.end());
            return reading.faults;
        });
    }
}

std::optional<dis::Listing> ProgramInput::read(const std::string &file) {
    dis::Program program;
    read_file(file, [&](std::string_view content) {
        dis::Reading reading = dis::read_program(content, request_.format, request_.base);
        program = std::move(reading.program);
        return reading.faults;
    });
    dis::Hints hints;
    read_others(program, hints);
    hints.add(request_.hints);
    if (!diagnostics_.empty()) {
        (void)show(request_.common, {{file, kUnusable, std::move(diagnostics_)}});
        return std::nullopt;
    }
    return dis::list(std::move(program), hints);
}

} // namespace

std::optional<dis::Listing> read_program(const ProgramRequest &request, const std::string &file) {
    return ProgramInput(request).read(file);
}

std::vector<std::string> other_inputs(const ProgramRequest &request) {
    std::vector<std::string> names = request.hint_files;
    names.insert(names.end(), request.symbol_files.begin(), request.symbol_files.end());
    names.insert(names.end(), request.debug_files.begin(), request.debug_files.end());
    return names;
}
