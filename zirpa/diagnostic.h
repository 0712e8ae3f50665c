// A diagnostic: what zirpa says of a place in a source, before it has a format.
#pragma once

#include "door/door.h"

#include <string>
#include <string_view>
#include <vector>

enum class Severity { kError, kWarning };

std::string_view name_of(Severity severity);

// A place in a source. Lines and columns count from 1, columns in bytes; the last one is part of
// the place. A place may be without columns, and without a line.
struct SourcePlace {
    int line = 0;
    int first = 0;
    int last = 0;
    std::string text = {}; // of the line

    door::Place without_text() const { return {line, first, last}; }
};

// What belongs to a diagnostic but stands elsewhere.
struct Note {
    SourcePlace place;
    std::string message;
};

// A change of the source that would help.
struct Fix {
    std::string title;
    door::Place place; // what is replaced; the text goes in ahead of first where last is before it
    std::string text;
};

struct Diagnostic {
    Severity severity = Severity::kError;
    std::string id;
    std::string file;
    SourcePlace place;
    std::string message;
    std::string hint = {}; // a word beside the carets
    std::vector<Note> notes = {};
    std::vector<Fix> fixes = {}; // what the hint speaks of, as changes
};

// Fixes that put each of the words in the diagnostic's place.
void offer_words(Diagnostic &diagnostic, const std::vector<std::string> &words);

// A fix that removes what is in the diagnostic's place, or puts a text there.
void offer_text(Diagnostic &diagnostic, std::string title, std::string text);

// An error of a file as a whole.
Diagnostic error_of_file(std::string id, std::string file, std::string message);

// The place in characters, as editors count: code points of UTF-8, a byte that is none is one, and
// so is a tab. The end is the column after the last character.
struct CharacterRange {
    int begin = 0; // 0: the place has no column
    int end = 0;
};

CharacterRange characters_of(const SourcePlace &place);

// The bytes of the character that begins a text, which is not empty.
std::size_t character_size(std::string_view text);

// By line, then by column; what came first stays first.
void sort_by_place(std::vector<Diagnostic> &diagnostics);

std::size_t count_of(const std::vector<Diagnostic> &diagnostics, Severity severity);
