// Warnings of what the assembler does in silence though hardly anyone means it.
//
// A group of warnings takes what is told of a run, in its order, and has its findings when the run
// has ended. A line is told after all that is told of it.
#pragma once

#include "door/door.h"
#include "zirpa/diagnostic.h"
#include "zirpa/heard.h"

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

// A warning; the file and the text of the line are filled in where all are gathered.
Diagnostic warning(std::string id, const door::Place &place, std::string message,
                   std::string hint = {});

// The text of a place in a line; nothing for an empty one.
std::string_view text_at(const door::Line &line, const door::Place &place);

// Whether the operation of a line is that directive, which is given in upper case.
bool is_directive(const door::Line &line, std::string_view name);

// Addresses: bytes before ORG, above FF, written twice.
class AddressWarnings {
  public:
    void take(const door::Line &line);
    std::vector<Diagnostic> findings;

  private:
    void note_first_bytes(const door::Line &line);
    void note_address(const door::Line &line);
    void note_second_writing(const door::Line &line);

    bool has_origin_ = false;
    bool has_bytes_ = false;
    bool was_beyond_ = false;
    bool was_twice_ = false;
    std::array<door::Place, 256> writers_; // by address; no line: none
};

// Names: hidden by registers, read too early, asked for by conditionals, unknown or unused.
class NameWarnings {
  public:
    void take(const door::Definition &definition);
    void take(const door::Reference &reference);
    void take(const door::Line &line);

    // When all names are known.
    std::vector<Diagnostic> findings(bool with_unused) const;

  private:
    struct Name {
        door::NameKind kind = door::NameKind::kLabel;
        door::Place place; // of the definition; no line: not defined
        std::int32_t value = 0;
        std::vector<const Name *> operands; // names from which a constant is computed
        bool is_tested = false;
        bool is_used = false;
        door::Place test; // where a conditional asks for it first
    };
    using Entry = NameTable<Name>::value_type;
    // How a name is used where it has not got its value yet.
    enum class Early { kValue, kSize, kUndefinedInEqu };
    struct EarlyUse {
        Early kind;
        const Entry *entry;
        door::Place place;
        std::int32_t value;
    };

    void note_reference(Entry &entry, const door::Reference &reference, const door::Line &line);
    static bool is_of_labels(const Name &name, int depth);
    void add_early(const EarlyUse &use, std::vector<Diagnostic> &found) const;

    NameTable<Name> names_;
    std::vector<EarlyUse> early_;
    // Of the line that is not told yet. Their texts are not valid any more.
    std::vector<std::pair<Entry *, door::Reference>> pending_references_;
    std::vector<std::pair<Name *, door::Definition>> pending_definitions_;
};

// The text of lines: what is dropped, taken for a comment or can't be seen.
class LineWarnings {
  public:
    void take(const door::Line &line, bool is_faulty);
    void take(const door::Block &block);
    std::vector<Diagnostic> findings;

    // Texts behind operands that are to be computed, if their names are defined.
    struct Computed {
        door::Place place;
        std::vector<std::string> names;
    };
    std::vector<Computed> computed;

  private:
    void note_characters(const door::Line &line);
    bool note_dropped(const door::Line &line, std::string_view reader);
    void note_tail(const door::Line &line);
    void note_end(const door::Line &line);

    std::map<int, door::Place> conditionals_; // words that open a conditional, by line
};

// Expressions whose value is another one in C.
class ExpressionWarnings {
  public:
    void take(const door::Reference &reference);
    void take(const door::Expression &expression);
    void take(const door::Line &line);
    std::vector<Diagnostic> findings;

  private:
    std::vector<std::pair<int, std::int32_t>> values_; // of names of the line, with columns
};

// All groups, and the names that they need of each other.
class Warnings {
  public:
    void take(const door::Definition &definition) { names_.take(definition); }
    void take(const door::Reference &reference);
    void take(const door::Expression &expression) { expressions_.take(expression); }
    void take(const door::Block &block) { lines_.take(block); }
    void take(const door::Line &line, bool is_faulty);

    // Takes the findings out of the groups.
    std::vector<Diagnostic> findings(const Heard &heard, bool with_unused);

  private:
    AddressWarnings addresses_;
    NameWarnings names_;
    LineWarnings lines_;
    ExpressionWarnings expressions_;
};
