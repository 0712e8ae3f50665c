// What has been heard of a run through the door, kept until all of it is known: a name that a
// report misses may be defined below it, and a hint may name any of them.
#pragma once

#include "door/door.h"
#include "zirpa/diagnostic.h"
#include "zirpa/nameTable.h"

#include <string>
#include <vector>

// The fields of a line, as they are written.
struct LineWords {
    std::string label;
    std::string operation;
    std::string operand;
    SourcePlace label_place;
    bool is_label_cut = false; // the operation follows the label without a blank
    bool goes_on = false;      // there is text behind the operand, which is no comment
};

struct HeardReport {
    door::Kind kind = door::Kind::kError;
    std::string id;
    std::string text;
    bool is_counted = true;
    SourcePlace place;
    LineWords words;

    // What the report points at.
    std::string pointed_at() const;
};

struct HeardName {
    door::NameKind kind = door::NameKind::kLabel;
    door::Place place; // of its first definition
    std::int32_t value = 0;
};

// The texts of the lines that have been told, one after another: most places need none, and who
// needs one comes when the run has ended.
class LineTexts {
  public:
    void take(const door::Line &line);

    // What belongs to a line that is not told itself is found in the next one that is.
    std::string_view of(int line) const;

  private:
    struct Piece {
        std::size_t begin;
        std::size_t size;
    };
    std::string text_;
    std::vector<Piece> pieces_; // by line, less 1
};

class Heard {
  public:
    void take(const door::Report &report);
    void take(const door::Definition &definition);
    void take(const door::Line &line);

    std::string file;
    std::vector<HeardReport> reports;
    NameTable<HeardName> names;
    LineTexts lines;
    door::Place phase_place; // the line whose length differs between the passes

  private:
    std::size_t reports_with_words_ = 0;
};

// A place with its text, and one whose text comes later.
SourcePlace place_in(const door::Place &place, std::string_view line);
SourcePlace without_text(const door::Place &place);

// Gives texts to the places of diagnostics that have none.
void add_texts(std::vector<Diagnostic> &diagnostics, const LineTexts &lines);
