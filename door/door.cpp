// A run is as_main with a watcher: what the watcher is called with is put together with the state
// of the modules, and handed on. What is needed from one call to the next is kept in a session.
#include "door/door.h"

#include "as/asCond.h"
#include "as/asData.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asOutputs.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "as/asWatch.h"
#include "door/fields.h"
#include "door/messages.h"
#include "door/positions.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/optab.h"
#include "util/ahead.h"

#include <algorithm>
#include <array>

namespace door {

namespace {

// A branch whose end has not been met.
struct OpenBlock {
    std::string word;
    int line;
    bool is_taken;
};

struct Session {
    const Run *run = nullptr;
    const Listener *listener = nullptr;
    Result result;
    std::string printed; // since the last line

    // Of the line
    std::vector<std::uint8_t> bytes;
    std::uint64_t size = 0; // bytes emitted, also those that are not kept
    Traces traces;
    bool is_conditional = false;

    bool is_displaced = false;
    std::vector<std::uint32_t> layout; // the location counter after each line of pass 1
    std::vector<OpenBlock> blocks;
    bool has_failed = false;
};

Session *session = nullptr;

// Without columns for an empty piece.
Place place_of(const Piece &piece, int line) {
    if (piece.is_empty()) {
        return {line, 0, 0};
    }
    return {line, static_cast<int>(piece.begin) + 1, static_cast<int>(piece.end)};
}

Place place_of_name(std::string_view name) {
    const std::size_t begin = offset_of(name.data());
    const std::size_t size =
        std::min(name.size(), ::Line.length() - std::min(begin, ::Line.length()));
    return place_of({begin, begin + size}, Line_no);
}

// ---- What the watcher is told ----

template <typename Function, typename Event>
void tell(const Function &function, const Event &event) {
    if (function) {
        function(event);
    }
}

void take_byte(std::uint32_t value) {
    if (++session->size <= kBytesOfLine) {
        session->bytes.push_back(static_cast<std::uint8_t>(value));
    }
}

void tell_of_options() {
    link_chains();
    for (const std::vector<const Symbol *> &chain : symheads) {
        for (const Symbol *symbol : chain) {
            tell(session->listener->definition,
                 Definition{NameKind::kOption, symbol->name_view(), {}, symbol->value, false});
        }
    }
}

void on_pass() {
    if (Pass == 0) {
        tell_of_options();
    } else if (Pass2 != 0) {
        emit_to(take_byte, nullptr);
        session->blocks.clear();
    }
}

void on_report(ReportKind kind, const char *format, const char *text, bool is_counted) {
    const Message &message = message_of(format, text);
    Traces &traces = session->traces;
    traces.scan_position = offset_of(Col_Ptr);
    traces.offset = static_cast<std::size_t>(std::max(offset, 0));
    const bool has_line = Line_no > 0;
    const Piece piece = has_line ? piece_of(message.where, ::Line.view(), traces) : Piece{};
    ++(kind == ReportKind::kWarning ? session->result.warnings : session->result.errors);
    tell(session->listener->report,
         Report{static_cast<Kind>(kind), message.id, text, session->run->source,
                place_of(piece, Line_no), has_line ? line_text() : "", is_counted});
}

void on_character(const char *position) { session->traces.digit = offset_of(position); }

void on_definition(DefinitionKind kind, const Symbol &symbol) {
    const Piece piece = piece_of(Where::kLabel, ::Line.view(), {});
    tell(session->listener->definition,
         Definition{static_cast<NameKind>(kind), symbol.name_view(), place_of(piece, Line_no),
                    symbol.value, symbol.has(SYM_CONDITIONAL)});
}

void on_reference(ReferenceKind kind, std::string_view name, const Symbol &symbol) {
    const Place place = place_of_name(name);
    const bool is_defined = !symbol.has(SYM_UNDEFINED);
    if (!is_defined && place.has_column()) {
        session->traces.undefined = {static_cast<std::size_t>(place.first) - 1,
                                     static_cast<std::size_t>(place.last)};
    }
    tell(session->listener->reference, Reference{static_cast<Use>(kind), symbol.name_view(), place,
                                                 symbol.value, is_defined, symbol.definition_line});
}

void on_expression(const char *begin, std::int64_t value) {
    if (Pass2 == 0) {
        return;
    }
    const Piece piece = {offset_of(begin), std::min(offset_of(Col_Ptr), line_text().size())};
    if (piece.begin < piece.end) {
        tell(session->listener->expression,
             Expression{place_of(piece, Line_no),
                        line_text().substr(piece.begin, piece.end - piece.begin), value});
    }
}

// ---- Conditional blocks ----

void close_block(int last) {
    if (!session->blocks.empty()) {
        const OpenBlock &block = session->blocks.back();
        tell(session->listener->block, Block{block.word, block.line, last, block.is_taken});
        session->blocks.pop_back();
    }
}

void open_block() {
    const Piece word = split(::Line.view()).operation;
    const std::string_view text = line_text().substr(word.begin, word.end - word.begin);
    const std::size_t name = std::min(text.find_first_not_of("# \t"), text.size());
    session->blocks.push_back({std::string(text.substr(name)), Line_no, is_true_level() != 0});
}

void on_conditional(int token) {
    session->is_conditional = true;
    if (Pass2 == 0) {
        return;
    }
    const bool is_branch = token == DIR_ELSE || token == DIR_ELIF;
    if (is_branch || token == DIR_ENDIF) {
        close_block(Line_no);
    }
    if ((is_branch && ifdepth > 0) || token == DIR_IF || token == DIR_IFDEF ||
        token == DIR_IFNDEF) {
        open_block();
    }
}

// ---- Lines ----

// What a line is by its text, where it is not skipped.
LineKind kind_of(const Fields &fields) {
    if (fields.operation.is_empty()) {
        return !fields.label.is_empty() ? LineKind::kLabel
               : line_text().empty() || skip_blanks_and_tabs(::Line.begin())[0] != ';'
                   ? LineKind::kEmpty
                   : LineKind::kComment;
    }
    if (mp->coder != kNoCoder) {
        return LineKind::kInstruction;
    }
    if (GetPseudoToken(::Line.begin() + fields.operation.begin) != DIR_NONE) {
        return LineKind::kDirective;
    }
    return line_text().starts_with(".stab") ? LineKind::kDebugger : LineKind::kFaulty;
}

LineKind kind_of_line(const Fields &fields) {
    if (session->is_conditional) {
        return LineKind::kConditional;
    }
    return is_true_level() == 0 ? LineKind::kSkipped : kind_of(fields);
}

// The first line after which the location counter is not what it was in pass 1 has another length
// than there, or another address.
bool displaces() {
    const auto index = static_cast<std::size_t>(realline) - 1;
    if (session->is_displaced || index >= session->layout.size() || session->layout[index] == LC) {
        return false;
    }
    session->is_displaced = true;
    return true;
}

void tell_of_line() {
    const Fields fields = split(::Line.view());
    const LineKind kind = kind_of_line(fields);
    const char *operation = ::Line.begin() + fields.operation.begin;
    const bool is_reserved =
        kind == LineKind::kDirective && GetPseudoToken(operation) == DIR_RESERVE;
    const std::span<const std::uint8_t> bytes = session->bytes;
    session->listener->line({Line_no, kind, line_text(),
                             LC - static_cast<std::uint32_t>(session->size), session->size,
                             is_reserved ? bytes.first(0) : bytes, is_reserved, displaces(),
                             place_of(fields.label, Line_no), place_of(fields.operation, Line_no),
                             place_of(fields.operand, Line_no)});
}

void on_line() {
    if (Pass2 == 0) {
        session->layout.resize(static_cast<std::size_t>(realline), LC);
    } else {
        if (session->listener->line) {
            tell_of_line();
        }
    }
    session->bytes.clear();
    session->size = 0;
    session->traces = {};
    session->is_conditional = false;
}

// ---- The end ----

void on_end() {
    while (!session->blocks.empty()) {
        close_block(0);
    }
    const bool is_refused = session->listener->end && session->listener->end();
    session->has_failed = is_refused || session->result.errors != 0;
    standard_output.flush();
    session->printed.clear();
}

// Asked when the symbol table has been printed.
bool has_failed() {
    if (!session->result.has_run) {
        standard_output.flush();
        session->result.symbols = std::move(session->printed);
        session->result.has_run = true;
    }
    return session->has_failed || !session->result.failures.empty();
}

void on_failure(FailureKind kind, const char *name, const char *reason) {
    session->result.failures.push_back({static_cast<Failure::Kind>(kind), name, reason});
}

constexpr Watcher kWatcher = {on_pass,       on_report,    on_character,  on_line,
                              on_definition, on_reference, on_expression, on_conditional,
                              on_end,        has_failed,   on_failure};

// ---- A run ----

void keep(void *owner, std::string_view bytes) { static_cast<std::string *>(owner)->append(bytes); }

void drop(void * /*owner*/, std::string_view /*bytes*/) {}

std::array<std::string, kOutputFiles> kept; // outputs to memory

// When the modules are set up: has the run read and write where it is to.
void prepare() {
    const Run &run = *session->run;
    standard_output.divert({keep, &session->printed});
    if (run.text) {
        provide_source(run.source.c_str(), *run.text);
    }
    if (run.outputs == Outputs::kFiles) {
        return;
    }
    std::array<Sink, kOutputFiles> sinks;
    for (std::size_t i = 0; i < sinks.size(); ++i) {
        sinks[i] = {run.outputs == Outputs::kMemory ? keep : drop, &kept[i]};
    }
    divert_outputs(sinks);
}

// The outputs that were made; a failure leaves the listing alone.
void note_outputs(Result &result) {
    if (!result.has_run || session->run->outputs == Outputs::kNowhere) {
        return;
    }
    const bool is_failure = has_failed();
    std::array<std::string, kOutputFiles> names = names_of_outputs();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto kind = static_cast<OutputKind>(i);
        if (!names[i].empty() && (!is_failure || kind == OutputKind::kListing)) {
            result.outputs.push_back({kind, std::move(names[i]), std::move(kept[i])});
        }
    }
}

int assemble(const Run &run) {
    std::vector<const char *> words = {kProgramName};
    for (const std::string &option : run.options) {
        words.push_back(option.c_str());
    }
    words.push_back(run.source.c_str());
    return as_main(static_cast<int>(words.size()), words.data(), prepare);
}

} // namespace

static_assert(kLongestLine == kLineReadLimit);

Result run(const Run &run, const Listener &listener) {
    Session own;
    const std::int64_t usual_limit = reservation_limit;
    if (run.most_reserved > 0) {
        reservation_limit = std::min(usual_limit, run.most_reserved);
    }
    own.run = &run;
    own.listener = &listener;
    session = &own;
    kept = {};
    watcher = &kWatcher;
    own.result.status = assemble(run);
    reservation_limit = usual_limit;
    watcher = nullptr;
    standard_output.divert({});
    divert_outputs({});
    note_outputs(own.result);
    session = nullptr;
    return std::move(own.result);
}

} // namespace door
