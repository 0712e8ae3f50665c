#include "zirpa/inspection.h"

#include "zirpa/heard.h"
#include "zirpa/wording.h"

#include <algorithm>

namespace {

std::string_view verb_of(door::Failure::Kind kind) {
    switch (kind) {
    case door::Failure::Kind::kRead: return "read";
    case door::Failure::Kind::kCreate: return "created";
    default: return "written";
    }
}

std::string_view id_of(door::Failure::Kind kind) {
    switch (kind) {
    case door::Failure::Kind::kRead: return "cannot-read";
    case door::Failure::Kind::kCreate: return "output-refused";
    default: return "cannot-write";
    }
}

Diagnostic diagnostic_of(const door::Failure &failure) {
    return {Severity::kError,
            std::string(id_of(failure.kind)),
            failure.name,
            {},
            "can't be " + std::string(verb_of(failure.kind)) + ": " + failure.reason};
}

// Leaves out what is allowed and makes errors of what is denied.
void choose(std::vector<Diagnostic> &diagnostics, const WarningChoice &choice) {
    std::erase_if(diagnostics, [&](const Diagnostic &diagnostic) {
        return diagnostic.severity == Severity::kWarning && choice.allowed.contains(diagnostic.id);
    });
    for (Diagnostic &diagnostic : diagnostics) {
        if (choice.all_denied || choice.denied.contains(diagnostic.id)) {
            diagnostic.severity = Severity::kError;
        }
    }
}

bool is_failure(const std::vector<Diagnostic> &diagnostics, const WarningChoice &choice) {
    return count_of(diagnostics, Severity::kError) > 0 ||
           (choice.is_strict && !diagnostics.empty());
}

// The report of an output that was refused says less than the failure.
bool is_told_as_failure(const Diagnostic &diagnostic) { return diagnostic.id == "output-refused"; }

void add_failures(Inspection &inspection) {
    std::vector<Diagnostic> &diagnostics = inspection.diagnostics;
    if (inspection.result.failures.empty()) {
        return;
    }
    inspection.is_unusable = true;
    std::erase_if(diagnostics, is_told_as_failure);
    std::vector<Diagnostic> failures;
    std::ranges::transform(inspection.result.failures, std::back_inserter(failures), diagnostic_of);
    diagnostics.insert(diagnostics.begin(), failures.begin(), failures.end());
}

} // namespace

Inspection inspect(const Settings &settings) {
    Inspection inspection;
    inspection.file = settings.source;
    Heard heard;
    heard.file = settings.source;
    bool is_judged = false;
    const auto judge = [&] {
        is_judged = true;
        inspection.diagnostics = put_into_words(heard);
        choose(inspection.diagnostics, settings.warnings);
        sort_by_place(inspection.diagnostics);
        inspection.has_failed = is_failure(inspection.diagnostics, settings.warnings);
        return inspection.has_failed;
    };
    door::Listener listener;
    listener.report = [&](const door::Report &report) { heard.take(report); };
    listener.definition = [&](const door::Definition &definition) { heard.take(definition); };
    listener.line = [&](const door::Line &line) { heard.take(line); };
    listener.end = judge;
    inspection.result =
        door::run({settings.options, settings.source, settings.text, settings.outputs}, listener);
    if (!is_judged) {
        judge();
    }
    add_failures(inspection);
    return inspection;
}
