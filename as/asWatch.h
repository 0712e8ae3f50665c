// Whoever watches a run: tools that want to know more than the outputs say.
//
// The program tells here, in the midst of its work, what has just happened, and says no more than
// which state to look at: it knows neither columns nor identifiers. A watcher reads the state of
// the modules and makes of it what its users want. Nobody watches the program itself, so telling
// costs a look at a null pointer.
#pragma once

#include <cstdint>
#include <string_view>

struct Symbol;

enum class ReportKind { kError, kWarning, kFatal };

// How a name gets its value, and what it is asked for.
enum class DefinitionKind { kLabel, kConstant, kDefine };
enum class ReferenceKind { kValue, kTest, kStart };

// What a file could not be used for.
enum class FailureKind { kRead, kCreate, kWrite };

// All members are set. Each is called after the fact.
struct Watcher {
    // A pass is about to begin; Pass tells which.
    void (*pass)();

    // A report of the final pass, or the one that ends the run: the format stands where the report
    // is raised. Warnings are told without -w too. One that is not counted is shown nowhere else.
    void (*report)(ReportKind kind, const char *format, const char *text, bool is_counted);

    // A faulty character of a token, ahead of the report of it.
    void (*character)(const char *position);

    // A line of pass 1 or of the final pass has been assembled.
    void (*line)();

    // In the final pass: a name is defined by the line, or referred to by a piece of it or of a
    // copy that asCond has made.
    void (*definition)(DefinitionKind kind, const Symbol &symbol);
    void (*reference)(ReferenceKind kind, std::string_view name, const Symbol &symbol);

    // In any pass: an expression of several tokens, which ends at the scan position, has a value.
    void (*expression)(const char *begin, std::int64_t value);

    // In any pass: a conditional word has been carried out.
    void (*conditional)(int token);

    // The last line has been assembled.
    void (*end)();

    // Asked before the outputs get their names: true when they are to be withdrawn, all but the
    // listing, whatever the number of errors is.
    bool (*has_failed)();

    // A file could not be used.
    void (*failure)(FailureKind kind, const char *name, const char *reason);
};

// ---- State owned here ----

extern const Watcher *watcher; // null: nobody watches
