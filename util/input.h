// Reading a whole file into memory, once, so that pipes serve as sources too.
#pragma once

#include <cstddef>
#include <memory>

#include <sys/types.h>

struct FileText {
    std::unique_ptr<char[]> data;
    std::size_t size = 0; // bytes
    bool holds_nul = false;
    bool is_regular = false;
    dev_t device = 0; // with inode: the file's identity
    ino_t inode = 0;
};

// Reads the file. Returns false when it cannot be opened or read (a directory, for one).
bool read_file(const char *name, FileText &text);

// True when the file can be opened for reading.
bool can_open(const char *name);
