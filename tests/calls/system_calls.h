// A seam between the program and the operating system: each call that the program makes goes
// through a pointer in one table, so that a test may let it fail or keep its files in memory. The
// linker puts the table in place (--wrap), which leaves the calls of the libraries alone. So
// neither the program nor its build knows of the seam.
#pragma once

#include <cstddef>

#include <sys/stat.h>
#include <unistd.h>

struct SystemCalls {
    int (*open)(const char *path, int flags, mode_t permissions); // 0 for an existing file
    ssize_t (*read)(int descriptor, void *buffer, std::size_t size);
    ssize_t (*write)(int descriptor, const void *buffer, std::size_t size);
    int (*close)(int descriptor);
    int (*fstat)(int descriptor, struct stat *status);
    int (*stat)(const char *path, struct stat *status);
    int (*lstat)(const char *path, struct stat *status);
    int (*unlink)(const char *path);
    int (*truncate)(const char *path, off_t size);
    int (*ftruncate)(int descriptor, off_t size);
    int (*fchown)(int descriptor, uid_t owner, gid_t group);
    int (*fchmod)(int descriptor, mode_t permissions);
    int (*rename)(const char *from, const char *to);
    ssize_t (*readlink)(const char *path, char *buffer, std::size_t size);
    char *(*getcwd)(char *buffer, std::size_t size);
};

// The operating system's own.
extern const SystemCalls real_calls;

// State owned here.
extern SystemCalls calls; // what the program's calls reach; real_calls at the start
