#include "util/output.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kCreationMode = 0666;

bool write_fully(int descriptor, const char *data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size);
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

} // namespace

bool OutputFile::create(const char *name) {
    close();
    failed_ = false;
    descriptor_ = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kCreationMode);
    owned_ = true;
    return is_open();
}

void OutputFile::attach(int descriptor) {
    close();
    failed_ = false;
    descriptor_ = descriptor;
    owned_ = false;
}

void OutputFile::put_in_pieces(std::string_view text) {
    while (!text.empty()) {
        if (used_ == kOutputBufferSize) {
            flush();
        }
        const std::size_t count = std::min(text.size(), kOutputBufferSize - used_);
        std::memcpy(buffer_ + used_, text.data(), count);
        used_ += count;
        text.remove_prefix(count);
    }
}

void OutputFile::put(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        put(text);
    }
}

void OutputFile::put_hex(std::uint64_t value, unsigned min_digits) {
    NumberText text;
    put(hex_text(text, value, min_digits));
}

void OutputFile::put_decimal(std::int64_t value, unsigned width) {
    NumberText text;
    const std::string_view digits = decimal_text(text, value);
    for (std::size_t length = digits.size(); length < width; ++length) {
        put(' ');
    }
    put(digits);
}

// A file that was never used is left as it is: writing to it would cost a page of memory.

void OutputFile::flush() {
    if (used_ == 0) {
        return;
    }
    if (is_open() && !failed_) {
        failed_ = !write_fully(descriptor_, buffer_, used_);
    }
    used_ = 0;
}

void OutputFile::close() {
    flush();
    if (!is_open()) {
        return;
    }
    if (owned_ && ::close(descriptor_) != 0) {
        failed_ = true;
    }
    descriptor_ = -1;
}

void OutputFile::discard() {
    used_ = 0;
    close();
}

void delete_output(const char *name) {
    struct stat status {};
    if (lstat(name, &status) == 0 && !S_ISCHR(status.st_mode) && !S_ISBLK(status.st_mode)) {
        if (::unlink(name) != 0) {
            (void)::truncate(name, 0);
        }
    }
}
