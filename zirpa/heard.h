// What has been heard of a run through the door, kept until all of it is known: a name that a
// report misses may be defined below it, and a hint may name any of them.
#pragma once

#include "door/door.h"
#include "zirpa/diagnostic.h"

#include <map>
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
    SourcePlace place; // of its first definition
    std::int32_t value = 0;
};

class Heard {
  public:
    void take(const door::Report &report);
    void take(const door::Definition &definition);
    void take(const door::Line &line);

    std::string file;
    std::vector<HeardReport> reports;
    std::map<std::string, HeardName, std::less<>> names;
    SourcePlace phase_place; // the line whose length differs between the passes

  private:
    std::size_t reports_with_words_ = 0;
    std::vector<HeardName *> unfinished_; // names of the line that is not told yet
};

SourcePlace place_in(const door::Place &place, std::string_view line);
