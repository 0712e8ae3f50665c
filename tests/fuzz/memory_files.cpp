#include "tests/fuzz/memory_files.h"

#include "tests/calls/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

MemoryFiles *active = nullptr;

int missing() {
    errno = ENOENT;
    return -1;
}

int open_file(const char *path, int flags, mode_t /*permissions*/) {
    return active->open_file(path, flags);
}

ssize_t read_file(int descriptor, void *buffer, std::size_t size) {
    return active->owns(descriptor) ? active->read_file(descriptor, buffer, size)
                                    : real_calls.read(descriptor, buffer, size);
}

ssize_t write_file(int descriptor, const void *buffer, std::size_t size) {
    return descriptor == STDOUT_FILENO || active->owns(descriptor)
               ? active->write_file(descriptor, buffer, size)
               : real_calls.write(descriptor, buffer, size);
}

int close_file(int descriptor) {
    return active->owns(descriptor) ? 0 : real_calls.close(descriptor);
}

int status_of_open_file(int descriptor, struct stat *status) {
    if (!active->owns(descriptor)) {
        return real_calls.fstat(descriptor, status);
    }
    *status = {};
    status->st_mode = S_IFREG;
    status->st_size = static_cast<off_t>(active->source_size());
    status->st_ino = 1;
    return 0;
}

// Directories exist, outputs do not yet.
int status_of_file(const char *path, struct stat *status) {
    const std::string_view name = path;
    if (name != "." && (name.empty() || name.back() != '/')) {
        return missing();
    }
    *status = {};
    status->st_mode = S_IFDIR;
    status->st_ino = 2;
    return 0;
}

int status_of_output(const char *path, struct stat *status) {
    if (active->output(path) == nullptr) {
        return missing();
    }
    *status = {};
    status->st_mode = S_IFREG;
    return 0;
}

int unlink_file(const char *path) {
    active->unlink_file(path);
    return 0;
}

int truncate_file(const char * /*path*/, off_t /*size*/) { return 0; }

int rename_file(const char *from, const char *to) { return active->rename_file(from, to); }

ssize_t no_link(const char * /*path*/, char * /*buffer*/, std::size_t /*size*/) { return -1; }

char *working_directory(char *buffer, std::size_t size) { return std::strncpy(buffer, "/w", size); }

// What is done to a descriptor after its file was opened stays the operating system's, which knows
// none of these descriptors.
SystemCalls memory_calls() {
    SystemCalls changed = real_calls;
    changed.open = open_file;
    changed.read = read_file;
    changed.write = write_file;
    changed.close = close_file;
    changed.fstat = status_of_open_file;
    changed.stat = status_of_file;
    changed.lstat = status_of_output;
    changed.unlink = unlink_file;
    changed.truncate = truncate_file;
    changed.rename = rename_file;
    changed.readlink = no_link;
    changed.getcwd = working_directory;
    return changed;
}

} // namespace

MemoryFiles::MemoryFiles(std::string_view source_name, std::string_view source)
    : source_name_(source_name), source_(source) {
    active = this;
    calls = memory_calls();
}

MemoryFiles::~MemoryFiles() {
    calls = real_calls;
    active = nullptr;
}

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
    return missing();
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
        return missing();
    }
    outputs_.erase(to);
    file.key() = to;
    outputs_.insert(std::move(file));
    return 0;
}
