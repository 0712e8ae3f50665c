// Where the assembler stands: the line, the scan position in it, its numbers and its file.
//
// Everything reads this: reports and symbols name the place, scanners and handlers move the scan
// position on. The reader of source files alone changes the rest, and it stands above most of those
// that read it. That is why the place has a module of its own, on the ground.
#pragma once

#include "util/input.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>

// Longest piece of a line that is read at once, in characters; a rest comes as the next line.
inline constexpr std::size_t kLineReadLimit = 4095;

// The text of one line: always NUL-terminated, with further NULs after the terminator, so that a
// position in it can be read a few characters ahead without a check.
class LineBuffer {
  public:
    constexpr LineBuffer() = default;

    // Takes at most kLineReadLimit bytes; a NUL among them ends the text.
    void assign(const char *text, std::size_t size);

    // The same for a file's text without NULs, up to its first line feed. Returns how many bytes it
    // has taken.
    std::size_t take_line(const char *text, std::size_t size);

    // Cuts the last two characters and ends the line in a line feed instead.
    void end_in_line_feed();

    constexpr const char *begin() const { return text_.data(); }
    std::size_t length() const { return length_; }
    std::string_view view() const { return {text_.data(), length_}; }

  private:
    static constexpr std::size_t kGuard = 16; // NULs after a line

    void terminate(std::size_t length) {
        length_ = length;
        std::memset(&text_[length], 0, kGuard);
    }

    std::size_t length_ = 0;
    std::array<char, kLineReadLimit + kFileGuard> text_{};
};

// A file opened in a pass.
struct FileEntry {
    std::string name;               // without directories; shown in the listing
    std::string pathname;           // absolute; shown on standard output
    int saved_line = 0;             // line number to resume at
    const FileText *text = nullptr; // the file's bytes, owned by the module for the run
    std::size_t position = 0;       // offset of the next byte to read

    const char *rest() const { return text->data.get() + position; } // what is still to be read
};

// ---- State owned here ----

extern LineBuffer Line;     // the current line
extern const char *Col_Ptr; // scan position in it, advanced by every reader
extern int Line_no;         // 1-based line number within the current file
extern int realline;        // lines read in this pass, over all files
extern int listline;        // line number in the listing

// The start of the line, which never moves: lines are copied to it.
inline constexpr const char *Line_Ptr = Line.begin();

extern std::deque<FileEntry> file_entry; // files in opening order; rebuilt in passes 0 and 1
extern int file_entry_ptr;               // index of the last file, -1: no file
extern int place_file;                   // index of the file that is read, -1: no file

// ---- Functions ----

// n < 0: the current file, or the first when none is open; else file n. Null if there is no such
// file.
const FileEntry *getCurrentFileInfo(int n);

// Index of the current file in the file table, -1: no file.
inline int current_file_index() { return place_file; }

// Counts a line that has been taken from the current file.
inline void count_line() {
    ++Line_no;
    ++realline;
    ++listline;
}

// Puts the scan position at the start of the line.
inline void scan_from_start() { Col_Ptr = Line_Ptr; }

void place_new_run();

// Before passes 0 and 1: empties the file table; no line has been read.
void place_new_pass();

// No line has been read; part of place_new_pass too.
void place_new_counts();
