// The program for hosts that have files: calls of the system go to functions in JavaScript.
//
// They stand in the place of those of the C library, which would say that there are no files. A
// host gives back what the call does, or the negative number of a failure, as this C library counts
// them.
#include "as/asMain.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#define EXPORT(name) extern "C" __attribute__((export_name(#name)))
#define HOST(name) extern "C" __attribute__((import_module("host"), import_name(#name)))

namespace {

// What a host tells of a file.
enum StatusField { kDevice, kInode, kMode, kLinks, kUser, kGroup, kSize, kStatusFields };
using HostStatus = std::array<std::int64_t, kStatusFields>;

} // namespace

HOST(open) int host_open(const char *path, int flags, int mode);
HOST(close) int host_close(int descriptor);
HOST(read) int host_read(int descriptor, void *bytes, std::size_t size);
HOST(write) int host_write(int descriptor, const void *bytes, std::size_t size);
HOST(fstat) int host_fstat(int descriptor, std::int64_t *status);
HOST(stat) int host_stat(const char *path, std::int64_t *status);
HOST(lstat) int host_lstat(const char *path, std::int64_t *status);
HOST(readlink) int host_readlink(const char *path, char *target, std::size_t size);
HOST(unlink) int host_unlink(const char *path);
HOST(rename) int host_rename(const char *from, const char *to);
HOST(truncate) int host_truncate(const char *path);
HOST(ftruncate) int host_ftruncate(int descriptor);
HOST(fchown) int host_fchown(int descriptor, int user, int group);
HOST(fchmod) int host_fchmod(int descriptor, int mode);
HOST(getcwd) int host_getcwd(char *path, std::size_t size);
HOST(geteuid) int host_geteuid();
HOST(getpid) int host_getpid();
HOST(isatty) int host_isatty(int descriptor);

namespace {

int result_of(int answer) {
    if (answer < 0) {
        errno = -answer;
        return -1;
    }
    return answer;
}

int take(int answer, const HostStatus &told, struct stat *status) {
    *status = {};
    status->st_dev = static_cast<dev_t>(told[kDevice]);
    status->st_ino = static_cast<ino_t>(told[kInode]);
    status->st_mode = static_cast<mode_t>(told[kMode]);
    status->st_nlink = static_cast<nlink_t>(told[kLinks]);
    status->st_uid = static_cast<uid_t>(told[kUser]);
    status->st_gid = static_cast<gid_t>(told[kGroup]);
    status->st_size = static_cast<off_t>(told[kSize]);
    return result_of(answer);
}

} // namespace

// ---- The C library ----

extern "C" {

int open(const char *path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(rest, int) : 0;
    va_end(rest);
    return result_of(host_open(path, flags, mode));
}

int close(int descriptor) { return result_of(host_close(descriptor)); }

ssize_t read(int descriptor, void *bytes, size_t size) {
    return result_of(host_read(descriptor, bytes, size));
}

ssize_t write(int descriptor, const void *bytes, size_t size) {
    return result_of(host_write(descriptor, bytes, size));
}

int fstat(int descriptor, struct stat *status) {
    HostStatus told{};
    const int answer = host_fstat(descriptor, told.data());
    return take(answer, told, status);
}

int stat(const char *path, struct stat *status) {
    HostStatus told{};
    const int answer = host_stat(path, told.data());
    return take(answer, told, status);
}

int lstat(const char *path, struct stat *status) {
    HostStatus told{};
    const int answer = host_lstat(path, told.data());
    return take(answer, told, status);
}

ssize_t readlink(const char *path, char *target, size_t size) {
    return result_of(host_readlink(path, target, size));
}

int unlink(const char *path) { return result_of(host_unlink(path)); }

int rename(const char *from, const char *to) { return result_of(host_rename(from, to)); }

// Files are emptied, never cut elsewhere.
int truncate(const char *path, off_t /*size*/) { return result_of(host_truncate(path)); }

int ftruncate(int descriptor, off_t /*size*/) { return result_of(host_ftruncate(descriptor)); }

int fchown(int descriptor, uid_t user, gid_t group) {
    return result_of(host_fchown(descriptor, static_cast<int>(user), static_cast<int>(group)));
}

int fchmod(int descriptor, mode_t mode) {
    return result_of(host_fchmod(descriptor, static_cast<int>(mode)));
}

char *getcwd(char *path, size_t size) {
    return result_of(host_getcwd(path, size)) < 0 ? nullptr : path;
}

uid_t geteuid() { return static_cast<uid_t>(host_geteuid()); }

pid_t getpid() { return host_getpid(); }

int isatty(int descriptor) { return host_isatty(descriptor); }

// Whether a standard descriptor is open: the host has opened those that were not.
int fcntl(int /*descriptor*/, int /*command*/, ...) { return 0; }

// Signals reach the host alone, which ignores those that the program ignores.
int sigaction(int /*signal*/, const struct sigaction * /*action*/, struct sigaction * /*before*/) {
    errno = EINVAL;
    return -1;
}

void (*signal(int /*signal*/, void (* /*handler*/)(int)))(int) { return SIG_DFL; }

int raise(int /*signal*/) { return 0; }

} // extern "C"

// ---- The program ----

namespace {

std::string words; // each with its NUL

} // namespace

EXPORT(room_for) char *room_for(std::size_t size) {
    words.resize(size);
    return words.data();
}

EXPORT(run) int run() {
    std::vector<const char *> arguments;
    for (std::size_t begin = 0; begin < words.size(); begin = words.find('\0', begin) + 1) {
        arguments.push_back(words.data() + begin);
    }
    return as_main(static_cast<int>(arguments.size()), arguments.data());
}
