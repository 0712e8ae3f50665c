#include "zirpa/lsp/diagnostics.h"

#include <algorithm>

namespace lsp {

namespace {

constexpr int kError = 1;
constexpr int kWarning = 2;
constexpr int kHint = 4;

Range range_of(const View &view, const door::Place &place) {
    return view.range_of({std::max(place.line, 1), place.line == 0 ? 0 : place.first, place.last});
}

bool is_unnecessary(const Diagnostic &diagnostic) {
    return diagnostic.id == kUnusedLabel || diagnostic.id == "dropped-text";
}

PublishedDiagnostic published(const View &view, const Diagnostic &diagnostic) {
    PublishedDiagnostic result;
    result.range = range_of(view, diagnostic.place.without_text());
    result.severity = diagnostic.severity == Severity::kError ? kError : kWarning;
    result.code = diagnostic.id;
    result.href = view.chapters.empty() ? "" : view.chapters + "#" + diagnostic.id;
    result.message =
        diagnostic.message + (diagnostic.hint.empty() ? "" : " (" + diagnostic.hint + ")");
    if (is_unnecessary(diagnostic)) {
        result.tags.push_back(DiagnosticTag::kUnnecessary);
    }
    for (const Note &note : diagnostic.notes) {
        result.related.push_back(
            {{view.uri, range_of(view, note.place.without_text())}, note.message});
    }
    return result;
}

// A run of skipped lines is shown as what has no effect.
PublishedDiagnostic skipped(const View &view, int first, int last) {
    PublishedDiagnostic result;
    result.range = {view.range_of_line(first).start, view.range_of_line(last).end};
    result.severity = kHint;
    result.message = "skipped by conditional assembly";
    result.tags.push_back(DiagnosticTag::kUnnecessary);
    return result;
}

void add_skipped(const View &view, std::vector<PublishedDiagnostic> &all) {
    const auto is_skipped = [&](int line) {
        return view.analysis.facts(line).kind == door::LineKind::kSkipped;
    };
    for (int line = 1; line <= view.analysis.line_count(); ++line) {
        const int first = line;
        while (is_skipped(line) && is_skipped(line + 1)) {
            ++line;
        }
        if (is_skipped(line)) {
            all.push_back(skipped(view, first, line));
        }
    }
}

bool touches(const Range &one, const Range &other) {
    return !(one.end < other.start) && !(other.end < one.start);
}

} // namespace

std::vector<PublishedDiagnostic> diagnostics(const View &view) {
    std::vector<PublishedDiagnostic> all(view.analysis.diagnostics.size());
    std::transform(view.analysis.diagnostics.begin(), view.analysis.diagnostics.end(), all.begin(),
                   [&](const Diagnostic &each) { return published(view, each); });
    add_skipped(view, all);
    return all;
}

std::vector<CodeAction> quick_fixes(const View &view, const Range &range) {
    std::vector<CodeAction> actions;
    for (const Diagnostic &diagnostic : view.analysis.diagnostics) {
        if (diagnostic.fixes.empty() ||
            !touches(range_of(view, diagnostic.place.without_text()), range)) {
            continue;
        }
        const PublishedDiagnostic mended = published(view, diagnostic);
        for (const Fix &fix : diagnostic.fixes) {
            actions.push_back({fix.title,
                               mended,
                               {view.uri, {{range_of(view, fix.place), fix.text}}},
                               diagnostic.fixes.size() == 1});
        }
    }
    return actions;
}

} // namespace lsp
