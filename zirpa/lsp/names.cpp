#include "zirpa/lsp/names.h"

#include "zirpa/lsp/forms.h"
#include "zirpa/lsp/sameProgram.h"
#include "zirpa/lsp/wordTexts.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace lsp {

namespace {

// The assembler cuts longer ones.
constexpr std::size_t kLongestName = 128;

// The places of a name: definitions, then uses.
struct Places {
    std::vector<door::Place> definitions;
    std::vector<door::Place> uses;
};

bool is_written(const View &view, const NameFacts &name, const Token &token, int line) {
    const std::string_view word = view.line_text(line).substr(token.begin, token.end - token.begin);
    return word == name.name || (view.analysis.is_caseless() && door::upper(word) == name.name);
}

// The words of a line that is not read, told apart as if it were.
std::vector<Token> tokens_of_skipped(const View &view, int line) {
    const std::string_view text = view.line_text(line);
    const door::LineFields fields = door::fields_of(text);
    LineFacts facts;
    facts.kind = door::LineKind::kDirective;
    facts.label = fields.label;
    facts.operation = fields.operation;
    facts.operand = fields.operand;
    return tokens_of(text, facts);
}

bool is_skipped(const View &view, int line) {
    return view.analysis.facts(line).kind == door::LineKind::kSkipped;
}

void add_written(const View &view, const NameFacts &name, int line,
                 std::vector<door::Place> &places) {
    const std::vector<Token> tokens =
        is_skipped(view, line) ? tokens_of_skipped(view, line) : view.tokens(line);
    for (const Token &token : tokens) {
        const bool is_name = token.kind == TokenKind::kName ||
                             (token.kind == TokenKind::kLabel && is_skipped(view, line));
        if (is_name && is_written(view, name, token, line)) {
            places.push_back(
                {line, static_cast<int>(token.begin) + 1, static_cast<int>(token.end)});
        }
    }
}

// Where the name stands in blocks that are skipped.
std::vector<door::Place> skipped_places(const View &view, const NameFacts &name) {
    std::vector<door::Place> places;
    for (int line = 1; line <= view.analysis.line_count(); ++line) {
        if (is_skipped(view, line)) {
            add_written(view, name, line, places);
        }
    }
    return places;
}

// Where the name stands on lines that have an error: the assembler does not read on there.
std::vector<door::Place> faulty_places(const View &view, const NameFacts &name) {
    std::set<int> lines;
    for (const Diagnostic &diagnostic : view.analysis.diagnostics) {
        if (diagnostic.severity == Severity::kError) {
            lines.insert(diagnostic.place.line);
        }
    }
    std::vector<door::Place> places;
    for (const int line : lines) {
        if (!is_skipped(view, line)) {
            add_written(view, name, line, places);
        }
    }
    return places;
}

bool is_same(const door::Place &one, const door::Place &other) {
    return one.line == other.line && one.first == other.first;
}

Places places_of(const View &view, const NameFacts &name) {
    Places places;
    places.definitions = name.definitions;
    places.uses = faulty_places(view, name);
    for (const UseFacts &use : view.analysis.uses) {
        if (&view.analysis.names[use.name] == &name && use.place.has_column()) {
            places.uses.push_back(use.place);
        }
    }
    std::sort(places.uses.begin(), places.uses.end(),
              [](const door::Place &one, const door::Place &other) {
                  return std::tie(one.line, one.first) < std::tie(other.line, other.first);
              });
    places.uses.erase(std::unique(places.uses.begin(), places.uses.end(), is_same),
                      places.uses.end());
    return places;
}

void add_locations(const View &view, const std::vector<door::Place> &places,
                   std::vector<Location> &locations) {
    for (const door::Place &place : places) {
        locations.push_back({view.uri, view.range_of(place)});
    }
}

[[noreturn]] void refuse(const std::string &text) {
    throw ResponseError{ErrorCode::kRequestFailed, text};
}

bool is_name(const std::string &word) {
    return !word.empty() && word.size() <= kLongestName && door::begins_name(word[0]) &&
           std::all_of(word.begin(), word.end(), door::is_name_character);
}

// A register's name ends at "$" and "." too.
bool is_read_as_register(const std::string &word) {
    return door::is_register(std::string_view(word).substr(0, word.find_first_of("$.")));
}

bool is_operation(const std::string &word) {
    return is_instruction(word) || !text_of_word(word).empty();
}

void check_new_name(const View &view, const NameFacts &old, const std::string &name) {
    if (!is_name(name)) {
        refuse("'" + name +
               "' is no name: letters, digits, '$', '.' and '_', the first a letter "
               "or '_', 128 at most");
    }
    if (is_read_as_register(name)) {
        refuse("'" + name + "' is read as a register wherever it is used");
    }
    if (is_operation(name)) {
        refuse("'" + name + "' is the word of an operation");
    }
    const std::string stored = view.analysis.is_caseless() ? door::upper(name) : name;
    const NameFacts *other = view.analysis.find(stored);
    if (other != nullptr && other != &old) {
        refuse("there is a name '" + name + "' already");
    }
}

} // namespace

std::vector<Location> definitions(const View &view, Position position) {
    std::vector<Location> locations;
    if (const View::NameAt found = view.name_at(position); found.name != nullptr) {
        add_locations(view, found.name->definitions, locations);
    }
    return locations;
}

std::vector<Location> references(const View &view, Position position, bool with_definitions) {
    std::vector<Location> locations;
    if (const View::NameAt found = view.name_at(position); found.name != nullptr) {
        const Places places = places_of(view, *found.name);
        if (with_definitions) {
            add_locations(view, places.definitions, locations);
        }
        add_locations(view, places.uses, locations);
    }
    return locations;
}

std::vector<DocumentHighlight> highlights(const View &view, Position position) {
    std::vector<DocumentHighlight> found;
    if (const View::NameAt at = view.name_at(position); at.name != nullptr) {
        const Places places = places_of(view, *at.name);
        for (const door::Place &place : places.definitions) {
            found.push_back({view.range_of(place), true});
        }
        for (const door::Place &place : places.uses) {
            found.push_back({view.range_of(place), false});
        }
    }
    return found;
}

std::optional<Renamable> renamable(const View &view, Position position) {
    const View::NameAt found = view.name_at(position);
    if (found.name == nullptr || found.name->definitions.empty()) {
        return std::nullopt;
    }
    const Extent extent = view.analysis.where(found.place, view.text());
    return Renamable{view.document.range_of(extent.begin, extent.end),
                     view.text().substr(extent.begin, extent.end - extent.begin)};
}

WorkspaceEdit rename(const View &view, Position position, const std::string &name,
                     const Settings &settings) {
    const View::NameAt found = view.name_at(position);
    if (found.name == nullptr || found.name->definitions.empty()) {
        refuse("there is no name here that the source defines");
    }
    check_new_name(view, *found.name, name);
    Places places = places_of(view, *found.name);
    std::vector<door::Place> all = skipped_places(view, *found.name);
    all.insert(all.end(), places.definitions.begin(), places.definitions.end());
    all.insert(all.end(), places.uses.begin(), places.uses.end());
    WorkspaceEdit edit{view.uri, {}};
    for (const door::Place &place : all) {
        edit.edits.push_back({view.range_of(place), name});
    }
    if (!is_same_program(view.document, edit.edits, settings)) {
        refuse("'" + name + "' would change what is assembled");
    }
    return edit;
}

} // namespace lsp
