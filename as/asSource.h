// Source files: the stack of open files, the search for a file, and the next line of the one that
// is read.
//
// Passes 0 and 1 record the sequence of file switches; the final pass replays it instead of opening
// anything, so that all passes see the same lines in the same order. A file's text is read into
// memory once and serves every pass. No source word opens a further file, so in practice the stack
// holds the main file only; the rules for nesting are kept for the shared dispatcher.
#pragma once

#include "util/destination.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Longer lines, newline included, draw a warning.
inline constexpr std::size_t kLineWarningLimit = 4093;
// Longest name of a source file, in characters.
inline constexpr std::size_t kSourceNameLimit = 256;
// Depth of nested files at which no further file may be opened.
inline constexpr int kSourceStackTop = 18;
// Include directories that are kept.
inline constexpr std::size_t kIncludeDirectoryLimit = 21;

// ---- State owned here ----

extern std::string AsmStartDirectory;   // the program's own directory, without a trailing separator
extern std::string AsmCurrentDirectory; // working directory at start
extern int source_stack_ptr;            // nesting depth; 0: main file, -1: no file
extern int pplevel; // step in the sequence of file switches, -1 before the first
extern std::vector<int> file_entry_index;      // per step: the current file's index, -1: no file
extern std::vector<std::string> include_stack; // include directories in the order given
extern int newuse;  // the current file has changed; cleared by the listing
extern int endflag; // the current file is to be left before the next line

// ---- Functions ----

// Forgets all files and directories of an earlier run and notes the invocation path.
void source_new_run(const char *invocation);

// Before passes 0 and 1: empties the file table and the sequence of switches.
void source_new_pass();

// Before the final pass: rewinds every file and restarts the recorded sequence.
void source_rewind();

// Restarts the line counters and clears endflag; part of source_new_pass too.
void source_new_counts();

// Has a name stand for a text in memory, which is copied, in place of a file. Of this run only.
void provide_source(const char *name, std::string_view text);

// Makes name the current file, or takes the next recorded step in the final pass. Returns 1, also
// when a recursive file is ignored, and 0 when it cannot be opened.
int push_source(const char *name);

// Leaves the current file. Returns 1 when a file remains, else 0.
int pop_source();

// Puts the next line into Line and the scan position at its start, and counts it. False at the end
// of the main file. The state of the line is as_read_line's to reset.
bool read_source_line();

// The text of the line that comes next in the current file, its line feed included where it has
// one; empty at the file's end and after an END. It can be read on for kFileGuard bytes.
std::string_view next_source_line();

// Counts that line of size bytes without reading it.
void skip_source_line(std::size_t size);

// The module's directories, or null when empty.
const char *GetAsmStartDirectory();
const char *GetAsmCurrentDirectory();

void init_as_include_stack();

// Stores a directory, without its quotes. A faulty one is ignored.
void push_include(const char *path);

// Finds the first include directory with a file of that name. Returns its index and whether it is
// below the program's own directory, or -1.
int match_include(const char *name, bool &from_start_directory);

// True when a source of this run is the regular file that an output would go to.
bool is_source_file(const Destination &destination);
