#include "zirpa/assemble.h"

#include "zirpa/console.h"
#include "zirpa/project.h"

#include <cerrno>
#include <cstring>

namespace {

Inspection unreadable(const std::string &name, const std::string &reason) {
    Inspection inspection;
    inspection.file = name;
    inspection.take({door::Failure::Kind::kRead, name, reason});
    return inspection;
}

// Adds the settings of the source's zirpa.json, if there is one; what has been asked for on the
// command line comes after them. Or tells what is wrong with the file.
std::optional<std::string> add_project(const std::string &file, Settings &settings) {
    const std::optional<std::string> text = read_file(file);
    if (!text) {
        return errno == ENOENT || errno == ENOTDIR
                   ? std::nullopt
                   : std::optional<std::string>(std::strerror(errno));
    }
    Project project;
    if (auto failure = read_project(*text, project); failure) {
        return failure;
    }
    project.add({std::move(settings.options), std::move(settings.warnings)});
    settings.options = std::move(project.options);
    settings.warnings = std::move(project.warnings);
    return std::nullopt;
}

} // namespace

std::string as_file_name(const std::string &source) {
    return source.starts_with('-') ? "./" + source : source;
}

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
            return unreadable(settings.source, std::strerror(errno));
        }
    }
    const std::string project = project_file_of(settings.source);
    if (const auto failure = add_project(project, settings); failure) {
        return unreadable(project, *failure);
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
