#include "tests/fuzz/memory_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

MemoryFiles *active = nullptr;

constexpr int kOpenArgumentMode = 0666;

} // namespace

MemoryFiles::MemoryFiles(std::string_view source_name, std::string_view source)
    : source_name_(source_name), source_(source) {
    active = this;
}

MemoryFiles::~MemoryFiles() { active = nullptr; }

const std::string *MemoryFiles::output(const std::string &name) const {
    const auto found = outputs_.find(name);
    return found == outputs_.end() ? nullptr : &found->second;
}

int MemoryFiles::open_file(const char *path, int flags) {
    if ((flags & O_CREAT) != 0) {
        const int descriptor = kSourceDescriptor + 1 + static_cast<int>(open_outputs_.size());
        open_outputs_[descriptor] = path;
        outputs_[path].clear();
        return descriptor;
    }
    if (source_name_ == path) {
        position_ = 0;
        return kSourceDescriptor;
    }
    errno = ENOENT;
    return -1;
}

long MemoryFiles::read_file(int, void *buffer, std::size_t size) {
    const std::size_t count = std::min(size, source_.size() - position_);
    std::memcpy(buffer, source_.data() + position_, count);
    position_ += count;
    return static_cast<long>(count);
}

long MemoryFiles::write_file(int descriptor, const void *buffer, std::size_t size) {
    std::string &target =
        descriptor == STDOUT_FILENO ? printed_ : outputs_[open_outputs_[descriptor]];
    target.append(static_cast<const char *>(buffer), size);
    return static_cast<long>(size);
}

int MemoryFiles::rename_file(const char *from, const char *to) {
    auto file = outputs_.extract(from);
    if (file.empty()) {
        errno = ENOENT;
        return -1;
    }
    outputs_.erase(to);
    file.key() = to;
    outputs_.insert(std::move(file));
    return 0;
}

// The linker's names of the calls.
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
int __real_rename(const char *from, const char *to);
int __real_truncate(const char *path, off_t size);
ssize_t __real_readlink(const char *path, char *buffer, size_t size);
char *__real_getcwd(char *buffer, size_t size);

int __wrap_open(const char *path, int flags, ...) {
    if (active != nullptr) {
        return active->open_file(path, flags);
    }
    va_list arguments;
    va_start(arguments, flags);
    const int mode = (flags & O_CREAT) != 0 ? va_arg(arguments, int) : kOpenArgumentMode;
    va_end(arguments);
    return __real_open(path, flags, mode);
}

ssize_t __wrap_read(int descriptor, void *buffer, size_t size) {
    return active != nullptr && active->owns(descriptor)
               ? active->read_file(descriptor, buffer, size)
               : __real_read(descriptor, buffer, size);
}

ssize_t __wrap_write(int descriptor, const void *buffer, size_t size) {
    return active != nullptr && (descriptor == STDOUT_FILENO || active->owns(descriptor))
               ? active->write_file(descriptor, buffer, size)
               : __real_write(descriptor, buffer, size);
}

int __wrap_close(int descriptor) {
    return active != nullptr && active->owns(descriptor) ? 0 : __real_close(descriptor);
}

int __wrap_fstat(int descriptor, struct stat *status) {
    if (active == nullptr || !active->owns(descriptor)) {
        return __real_fstat(descriptor, status);
    }
    *status = {};
    status->st_mode = S_IFREG;
    status->st_size = static_cast<off_t>(active->source_size());
    status->st_ino = 1;
    return 0;
}

// Directories exist, outputs do not yet.
int __wrap_stat(const char *path, struct stat *status) {
    if (active == nullptr) {
        return __real_stat(path, status);
    }
    const std::string_view name = path;
    if (name != "." && (name.empty() || name.back() != '/')) {
        errno = ENOENT;
        return -1;
    }
    *status = {};
    status->st_mode = S_IFDIR;
    status->st_ino = 2;
    return 0;
}

int __wrap_lstat(const char *path, struct stat *status) {
    if (active == nullptr) {
        return __real_lstat(path, status);
    }
    if (active->output(path) == nullptr) {
        errno = ENOENT;
        return -1;
    }
    *status = {};
    status->st_mode = S_IFREG;
    return 0;
}

int __wrap_unlink(const char *path) {
    if (active == nullptr) {
        return __real_unlink(path);
    }
    active->unlink_file(path);
    return 0;
}

int __wrap_rename(const char *from, const char *to) {
    return active == nullptr ? __real_rename(from, to) : active->rename_file(from, to);
}

int __wrap_truncate(const char *path, off_t size) {
    return active == nullptr ? __real_truncate(path, size) : 0;
}

ssize_t __wrap_readlink(const char *path, char *buffer, size_t size) {
    return active == nullptr ? __real_readlink(path, buffer, size) : -1;
}

char *__wrap_getcwd(char *buffer, size_t size) {
    if (active == nullptr) {
        return __real_getcwd(buffer, size);
    }
    std::strncpy(buffer, "/w", size);
    return buffer;
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
