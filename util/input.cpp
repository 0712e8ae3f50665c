// A file is read to its end whatever its size was said to be: a pipe has no size, and a file may
// grow or shrink while it is read. The size only saves growing.
#include "util/input.h"

#include "util/buffer.h"
#include "util/memory.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Room for a source that does not tell its size, such as a pipe; doubled as needed.
constexpr std::size_t kFirstCapacity = buffer_size(65536);

// Moves the text to a larger place. It is not filled beforehand: what is not read into stays
// untouched.
void grow(FileText &text, std::size_t capacity) {
    auto larger = make_room(capacity + kFileGuard);
    if (text.size > 0) {
        std::memcpy(larger.get(), text.data.get(), text.size);
    }
    text.data = std::move(larger);
}

bool read_all(int descriptor, std::size_t capacity, FileText &text) {
    grow(text, capacity);
    while (true) {
        if (text.size == capacity) {
            capacity *= 2;
            grow(text, capacity);
        }
        const ssize_t count = ::read(descriptor, &text.data[text.size], capacity - text.size);
        if (count > 0) {
            text.size += static_cast<std::size_t>(count);
        } else if (count == 0) {
            std::memset(&text.data[text.size], 0, kFileGuard);
            return true;
        } else if (errno != EINTR) {
            return false;
        }
    }
}

} // namespace

bool read_file(const char *name, FileText &text) {
    const int descriptor = ::open(name, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const DescriptorGuard guard(descriptor);
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return false;
    }
    text.size = 0;
    text.is_regular = S_ISREG(status.st_mode);
    text.identity = identity_of(status);
    // One byte more than the size, so that the end of the file is seen without growing.
    const std::size_t capacity =
        text.is_regular ? static_cast<std::size_t>(status.st_size) + 1 : kFirstCapacity;
    if (!read_all(descriptor, capacity, text)) {
        return false;
    }
    text.holds_nul = std::memchr(text.data.get(), '\0', text.size) != nullptr;
    return true;
}

FileText copy_text(std::string_view text) {
    FileText copy;
    grow(copy, text.size());
    copy.size = text.size();
    std::copy(text.begin(), text.end(), copy.data.get());
    std::memset(&copy.data[copy.size], 0, kFileGuard);
    copy.holds_nul = text.find('\0') != std::string_view::npos;
    return copy;
}

bool is_passing_failure(int error) {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EIO || error == EINTR;
}

bool can_open(const char *name) {
    const int descriptor = ::open(name, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    (void)::close(descriptor);
    return true;
}
