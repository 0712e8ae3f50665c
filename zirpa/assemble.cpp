#include "zirpa/assemble.h"

#include "zirpa/console.h"

#include <cerrno>
#include <cstring>

namespace {

Inspection unreadable(const std::string &name) {
    Inspection inspection;
    inspection.file = name;
    inspection.take({door::Failure::Kind::kRead, name, std::strerror(errno)});
    return inspection;
}

// A name that looks like an option would be taken for one.
std::string as_file_name(const std::string &source) {
    return source.starts_with('-') ? "./" + source : source;
}

} // namespace

Inspection assemble(const Request &request, const std::string &source, door::Outputs outputs,
                    const door::Listener &also) {
    Settings settings;
    settings.options = request.options;
    settings.outputs = outputs;
    settings.warnings = request.warnings;
    settings.source = as_file_name(source);
    if (source == kStandardInput) {
        settings.source = as_file_name(request.stdin_name);
        settings.text = read_standard_input();
        if (!settings.text) {
            return unreadable(settings.source);
        }
    }
    return inspect(settings, also);
}

bool show(const Request &request, const std::vector<FileReport> &reports) {
    std::string text;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    for (const FileReport &report : reports) {
        std::vector<Diagnostic> diagnostics = report.diagnostics;
        if (request.is_quiet) {
            std::erase_if(diagnostics, [](const Diagnostic &diagnostic) {
                return diagnostic.severity == Severity::kWarning;
            });
        }
        errors += count_of(diagnostics, Severity::kError);
        warnings += count_of(diagnostics, Severity::kWarning);
        text += text_of(diagnostics, is_coloured(request.colour));
    }
    if (!request.is_quiet) {
        text += summary_of(errors, warnings);
    }
    return text.empty() || complain(text);
}
