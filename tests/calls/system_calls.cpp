#include "tests/calls/system_calls.h"

#include <cstdarg>

#include <fcntl.h>

// The linker's names of the calls: __real_ for what the operating system does, __wrap_ for what the
// program reaches.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
int __real_open(const char *path, int flags, ...);
ssize_t __real_read(int descriptor, void *buffer, size_t size);
ssize_t __real_write(int descriptor, const void *buffer, size_t size);
int __real_close(int descriptor);
int __real_fstat(int descriptor, struct stat *status);
int __real_stat(const char *path, struct stat *status);
int __real_lstat(const char *path, struct stat *status);
int __real_unlink(const char *path);
int __real_truncate(const char *path, off_t size);
int __real_ftruncate(int descriptor, off_t size);
int __real_fchown(int descriptor, uid_t owner, gid_t group);
int __real_fchmod(int descriptor, mode_t permissions);
int __real_rename(const char *from, const char *to);
ssize_t __real_readlink(const char *path, char *buffer, size_t size);
char *__real_getcwd(char *buffer, size_t size);
}

namespace {

int real_open(const char *path, int flags, mode_t permissions) {
    return __real_open(path, flags, permissions);
}

} // namespace

constexpr SystemCalls real_calls = {
    .open = real_open,
    .read = __real_read,
    .write = __real_write,
    .close = __real_close,
    .fstat = __real_fstat,
    .stat = __real_stat,
    .lstat = __real_lstat,
    .unlink = __real_unlink,
    .truncate = __real_truncate,
    .ftruncate = __real_ftruncate,
    .fchown = __real_fchown,
    .fchmod = __real_fchmod,
    .rename = __real_rename,
    .readlink = __real_readlink,
    .getcwd = __real_getcwd,
};

constinit SystemCalls calls = real_calls;

extern "C" {

int __wrap_open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t permissions = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return calls.open(path, flags, permissions);
}
ssize_t __wrap_read(int descriptor, void *buffer, size_t size) {
    return calls.read(descriptor, buffer, size);
}
ssize_t __wrap_write(int descriptor, const void *buffer, size_t size) {
    return calls.write(descriptor, buffer, size);
}
int __wrap_close(int descriptor) { return calls.close(descriptor); }
int __wrap_fstat(int descriptor, struct stat *status) { return calls.fstat(descriptor, status); }
int __wrap_stat(const char *path, struct stat *status) { return calls.stat(path, status); }
int __wrap_lstat(const char *path, struct stat *status) { return calls.lstat(path, status); }
int __wrap_unlink(const char *path) { return calls.unlink(path); }
int __wrap_truncate(const char *path, off_t size) { return calls.truncate(path, size); }
int __wrap_ftruncate(int descriptor, off_t size) { return calls.ftruncate(descriptor, size); }
int __wrap_fchown(int descriptor, uid_t owner, gid_t group) {
    return calls.fchown(descriptor, owner, group);
}
int __wrap_fchmod(int descriptor, mode_t permissions) {
    return calls.fchmod(descriptor, permissions);
}
int __wrap_rename(const char *from, const char *to) { return calls.rename(from, to); }
ssize_t __wrap_readlink(const char *path, char *buffer, size_t size) {
    return calls.readlink(path, buffer, size);
}
char *__wrap_getcwd(char *buffer, size_t size) { return calls.getcwd(buffer, size); }

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
