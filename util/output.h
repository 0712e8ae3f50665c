// A buffered output file, and formatting by hand into it.
//
// Every byte that the program writes goes through this class: bytes and numbers are put into a
// large buffer by table look-up, and the buffer goes to the operating system when it is full. A
// failed write is remembered and reported once by the owner at the end of the run.
//
// A file goes by way of its destination: under its name there is the old file, or the whole new
// one.
#pragma once

#include "util/buffer.h"
#include "util/destination.h"
#include "util/format.h"
#include "util/terminal.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>

// The longest text that is composed in the buffer, in bytes.
inline constexpr std::size_t kRoomLimit = 80;

// Bytes gathered before a write; a character that has begun may be among them.
inline constexpr std::size_t kOutputBufferSize =
    buffer_size(65536, kLongestBegunCharacter + kRoomLimit);

// The memory in which an output file gathers its bytes: apart from the file, so that a buffer which
// is not used touches no page.
using OutputBuffer = std::array<char, kOutputBufferSize>;

// What takes the bytes of an output in the place of the operating system.
struct Sink {
    void (*take)(void *owner, std::string_view bytes) = nullptr;
    void *owner = nullptr;
};

class OutputFile {
  public:
    // The buffer must outlive the file.
    explicit OutputFile(OutputBuffer &buffer) : buffer_(buffer.data()) {}

    // Where the file is to go; looked up before it is created.
    Destination &destination() { return destination_; }

    // Begins a file at the destination. Returns false when that fails; the object is closed then.
    bool create();

    // Hands all bytes to a sink from now on, instead of the operating system; no file is created
    // then. Without a function: no more.
    void divert(Sink sink) { sink_ = sink; }
    bool is_diverted() const { return sink_.take != nullptr; }

    // Writes to an already open descriptor, which close() leaves open; with a guard, text that a
    // terminal must not obey.
    void attach(int descriptor, TerminalGuard *guard = nullptr);

    bool is_open() const { return descriptor_ >= 0; }

    // True when a write or the closing has failed since create() or attach().
    bool has_failed() const { return failure_ != 0; }
    int failure() const { return failure_; } // its errno
    void forget_failure() { failure_ = 0; }

    // A closed file swallows what is put into it.
    void put(char ch) {
        if (used_ == kOutputBufferSize) {
            write_out(false);
        }
        buffer_[used_++] = ch;
    }

    void put(std::string_view text) {
        if (text.size() <= kOutputBufferSize - used_) {
            std::memcpy(buffer_ + used_, text.data(), text.size());
            used_ += text.size();
        } else {
            put_in_pieces(text);
        }
    }
    void put(std::initializer_list<std::string_view> texts);

    // Room for a text of at most kRoomLimit bytes that is composed in its place; add says where it
    // ends.
    char *room(std::size_t size) {
        if (size > kOutputBufferSize - used_) {
            write_out(false);
        }
        return buffer_ + used_;
    }
    void add(const char *end) { used_ = static_cast<std::size_t>(end - buffer_); }

    // Two upper-case hexadecimal digits.
    void put_hex_byte(unsigned value) { put(hex_byte_text(value)); }

    // Upper-case hexadecimal, at least min_digits digits (1 to 16), zero-padded.
    void put_hex(std::uint64_t value, unsigned min_digits);

    // Decimal, padded with blanks on the left to at least width characters.
    void put_decimal(std::int64_t value, unsigned width = 0);

    // Hands the buffer to the operating system.
    void flush() { write_out(true); }

    // Flushes and closes; a closed file stays closed.
    void finish();

    // Gives the file, which is closed, its name.
    void publish();

    // Both. The file gets its name also when a write has failed.
    void close();

    // Closes without writing out what the buffer holds. Nothing stays at the destination, neither
    // the file nor an old one.
    void withdraw();

  private:
    void put_in_pieces(std::string_view text);
    void write_out(bool is_end);
    bool write(std::string_view text);

    int descriptor_ = -1;
    bool owned_ = false;
    int failure_ = 0; // errno of the first write that has failed
    std::size_t used_ = 0;
    char *buffer_; // kOutputBufferSize bytes
    TerminalGuard *guard_ = nullptr;
    Sink sink_;
    Destination destination_;
};
