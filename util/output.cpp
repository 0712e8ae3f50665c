// Text gathers in the buffer, and a full buffer is written in one call. To a terminal, only whole
// characters are written: the first bytes of one that the buffer's end has cut stay there and move
// to its front, so that the guard never takes half a character for a byte to be hidden.
//
// A failure is remembered and nothing is written any more, but callers go on as before: they would
// have nothing better to do, and the end of the run reports it once.
#include "util/output.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <unistd.h>

namespace {

// Stands for the descriptor of an output whose bytes a sink takes.
constexpr int kNoDescriptor = std::numeric_limits<int>::max();

// The errno of what has failed just now, and never 0.
int last_failure() { return errno != 0 ? errno : EIO; }

} // namespace

bool OutputFile::create() {
    close();
    failure_ = 0;
    guard_ = nullptr;
    owned_ = !is_diverted();
    descriptor_ = owned_ ? destination_.open() : kNoDescriptor;
    return is_open();
}

// The guard's answer is about the descriptor before, so it has to ask anew.
void OutputFile::attach(int descriptor, TerminalGuard *guard) {
    close();
    failure_ = 0;
    sink_ = {};
    descriptor_ = descriptor;
    owned_ = false;
    guard_ = guard;
    if (guard_ != nullptr) {
        guard_->reset();
    }
}

void OutputFile::put_in_pieces(std::string_view text) {
    while (!text.empty()) {
        if (used_ == kOutputBufferSize) {
            write_out(false);
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

bool OutputFile::write(std::string_view text) {
    if (is_diverted()) {
        sink_.take(sink_.owner, text);
        return true;
    }
    return guard_ != nullptr ? guard_->write(descriptor_, text) : write_fully(descriptor_, text);
}

// A file that was never used is left as it is: writing to it would cost a page of memory.
void OutputFile::write_out(bool is_end) {
    if (used_ == 0) {
        return;
    }
    std::string_view text(buffer_, used_);
    const std::size_t kept = guard_ != nullptr && !is_end ? begun_character_size(text) : 0;
    text.remove_suffix(kept);
    if (is_open() && !has_failed() && !write(text)) {
        failure_ = last_failure();
    }
    std::memmove(buffer_, buffer_ + text.size(), kept);
    used_ = kept;
}

void OutputFile::finish() {
    flush();
    if (is_open()) {
        if (owned_ && ::close(descriptor_) != 0) {
            failure_ = last_failure();
        }
        descriptor_ = -1;
    }
}

void OutputFile::publish() {
    if (!is_diverted() && !destination_.publish()) {
        failure_ = last_failure();
    }
}

void OutputFile::close() {
    finish();
    publish();
}

void OutputFile::withdraw() {
    used_ = 0;
    finish();
    if (!is_diverted()) {
        destination_.withdraw();
    }
}
