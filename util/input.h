// Reading a whole file into memory, once, so that pipes serve as sources too.
#pragma once

#include <cstddef>
#include <memory>

#include <sys/types.h>

// NULs behind a file's text, so that it can be read a few characters ahead without a check.
inline constexpr std::size_t kFileGuard = 64;

struct FileText {
    std::unique_ptr<char[]> data;
    std::size_t size = 0; // bytes
    bool holds_nul = false;
    bool is_regular = false;
    dev_t device = 0; // with inode: the file's identity
    ino_t inode = 0;
};

// Reads the file. Returns false when it cannot be opened or read (a directory, for one); errno then
// tells why, as it does after can_open.
bool read_file(const char *name, FileText &text);

// True when the file can be opened for reading.
bool can_open(const char *name);

// True for failures that say nothing about the file: a search must not go on after them, because it
// could find another file than it would have found otherwise.
bool is_passing_failure(int error);
