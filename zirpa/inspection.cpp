#include "zirpa/inspection.h"

#include "zirpa/heard.h"
#include "zirpa/warnings.h"
#include "zirpa/wording.h"

#include <algorithm>
#include <array>
#include <new>

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

// What is short of memory has no name.
Diagnostic diagnostic_of(const door::Failure &failure) {
    if (failure.name.empty()) {
        return error_of_file("cannot-write", "zirpa", "out of memory");
    }
    return error_of_file(std::string(id_of(failure.kind)), failure.name,
                         "can't be " + std::string(verb_of(failure.kind)) + ": " + failure.reason);
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

struct IdleOption {
    std::string_view option;
    std::string_view name;
};

constexpr std::array<IdleOption, 6> kIdleOptions = {{{"-I", "--include"},
                                                     {"-d", "--debug-directory"},
                                                     {"-S1", "--address-width"},
                                                     {"-S2", "--address-width"},
                                                     {"-S3", "--address-width"},
                                                     {"nonative", "--compatibility nonative"}}};

// Options from which nothing follows. The assembler takes its own short ones.
void add_option_warnings(const Settings &settings, std::vector<Diagnostic> &diagnostics) {
    const auto has = [&](std::string_view option) {
        return std::find(settings.options.begin(), settings.options.end(), option) !=
               settings.options.end();
    };
    const auto add = [&](std::string id, std::string message) {
        diagnostics.push_back(warning(std::move(id), {}, std::move(message)));
        diagnostics.back().file = settings.source;
    };
    if (has("-A") && !has("-L")) {
        add("array-without-listing", "--array without --listing writes an empty C array");
    }
    for (const auto &[option, name] : kIdleOptions) {
        if (has(option)) {
            add("idle-option", std::string(name) + " has no effect");
        }
    }
}

bool is_hidden_character(const Diagnostic &diagnostic) {
    return diagnostic.id == "byte-order-mark" || diagnostic.id == "invisible-character";
}

// Whatever is wrong with a line in which something can't be seen, that is what to look at.
void blame_hidden_characters(std::vector<Diagnostic> &reports, std::vector<Diagnostic> &silent) {
    for (Diagnostic &hidden : silent) {
        if (is_hidden_character(hidden)) {
            const auto removed = std::erase_if(reports, [&](const Diagnostic &report) {
                return report.place.line == hidden.place.line &&
                       report.severity == Severity::kError;
            });
            hidden.severity = removed > 0 ? Severity::kError : hidden.severity;
        }
    }
}

// What is gathered in the course of a run.
struct Gathering {
    Heard heard;
    Warnings warnings;

    bool is_faulty(int line) const {
        return !heard.reports.empty() && heard.reports.back().place.line == line &&
               heard.reports.back().kind != door::Kind::kWarning;
    }
};

std::vector<Diagnostic> all_diagnostics(Gathering &gathering, const Settings &settings) {
    const WarningChoice &choice = settings.warnings;
    const bool with_unused =
        choice.wanted.contains(kUnusedLabel) || choice.denied.contains(kUnusedLabel);
    std::vector<Diagnostic> all = put_into_words(gathering.heard);
    std::vector<Diagnostic> silent = gathering.warnings.findings(gathering.heard, with_unused);
    blame_hidden_characters(all, silent);
    std::move(silent.begin(), silent.end(), std::back_inserter(all));
    add_texts(all, gathering.heard.lines);
    add_option_warnings(settings, all);
    choose(all, choice);
    sort_by_place(all);
    return all;
}

template <typename Function, typename Event>
void tell(const Function &function, const Event &event) {
    if (function) {
        function(event);
    }
}

door::Listener listener_of(Gathering &gathering, const door::Listener &also) {
    Heard &heard = gathering.heard;
    Warnings &warnings = gathering.warnings;
    door::Listener listener;
    listener.report = [&](const door::Report &report) { heard.take(report); };
    listener.definition = [&](const door::Definition &definition) {
        heard.take(definition);
        warnings.take(definition);
        tell(also.definition, definition);
    };
    listener.reference = [&](const door::Reference &reference) {
        warnings.take(reference);
        tell(also.reference, reference);
    };
    listener.expression = [&](const door::Expression &expression) {
        warnings.take(expression);
        tell(also.expression, expression);
    };
    listener.block = [&](const door::Block &block) {
        warnings.take(block);
        tell(also.block, block);
    };
    listener.line = [&](const door::Line &line) {
        heard.take(line);
        warnings.take(line, gathering.is_faulty(line.line));
        tell(also.line, line);
    };
    return listener;
}

// A run that is short of memory takes care of its outputs first, and says so itself.
door::Result run_without_handler(const door::Run &run, const door::Listener &listener) {
    const std::new_handler before = std::set_new_handler(nullptr);
    door::Result result = door::run(run, listener);
    (void)std::set_new_handler(before);
    return result;
}

} // namespace

void Inspection::take(const door::Failure &failure) {
    is_unusable = true;
    diagnostics.insert(diagnostics.begin(), diagnostic_of(failure));
}

Inspection inspect(const Settings &settings, const door::Listener &also) {
    Inspection inspection;
    inspection.file = settings.source;
    Gathering gathering;
    gathering.heard.file = settings.source;
    bool is_judged = false;
    const auto judge = [&] {
        is_judged = true;
        inspection.diagnostics = all_diagnostics(gathering, settings);
        inspection.has_failed = is_failure(inspection.diagnostics, settings.warnings);
        return inspection.has_failed;
    };
    door::Listener listener = listener_of(gathering, also);
    listener.end = judge;
    inspection.result = run_without_handler({settings.options, settings.source, settings.text,
                                             settings.outputs, settings.most_reserved},
                                            listener);
    if (!is_judged) {
        judge();
    }
    if (!inspection.result.failures.empty()) {
        std::erase_if(inspection.diagnostics, is_told_as_failure);
    }
    std::for_each(inspection.result.failures.rbegin(), inspection.result.failures.rend(),
                  [&](const door::Failure &failure) { inspection.take(failure); });
    return inspection;
}
