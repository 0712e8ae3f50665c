// A buffered output file, and formatting by hand into it.
//
// Every byte that the program writes goes through this class: bytes and numbers are put into a
// large buffer by table look-up, and the buffer goes to the operating system when it is full. A
// failed write is remembered and reported once by the owner at the end of the run.
#pragma once

#include "util/buffer.h"
#include "util/format.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>

// Bytes gathered before a write.
inline constexpr std::size_t kOutputBufferSize = buffer_size(65536);

// The memory in which an output file gathers its bytes. A short output then touches one page only.
struct alignas(4096) OutputBuffer {
    std::array<char, kOutputBufferSize> bytes;
};

class OutputFile {
  public:
    // The buffer must outlive the file.
    explicit constexpr OutputFile(OutputBuffer &buffer) : buffer_(buffer.bytes.data()) {}

    // Creates or empties the file. Returns false when that fails; the object is closed then.
    bool create(const char *name);

    // Writes to an already open descriptor, which close() leaves open.
    void attach(int descriptor);

    bool is_open() const { return descriptor_ >= 0; }

    // True when a write or the closing has failed since create() or attach().
    bool has_failed() const { return failed_; }

    // A closed file swallows what is put into it.
    void put(char ch) {
        if (used_ == kOutputBufferSize) {
            flush();
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

    // Two upper-case hexadecimal digits.
    void put_hex_byte(unsigned value) { put(hex_byte_text(value)); }

    // Upper-case hexadecimal, at least min_digits digits (1 to 16), zero-padded.
    void put_hex(std::uint64_t value, unsigned min_digits);

    // Decimal, padded with blanks on the left to at least width characters.
    void put_decimal(std::int64_t value, unsigned width = 0);

    // Hands the buffer to the operating system.
    void flush();

    // Flushes and closes; a closed file stays closed.
    void close();

    // Closes without writing out what the buffer holds.
    void discard();

  private:
    void put_in_pieces(std::string_view text);

    int descriptor_ = -1;
    bool owned_ = false;
    bool failed_ = false;
    std::size_t used_ = 0;
    char *buffer_; // kOutputBufferSize bytes
};

// Deletes a file that is about to be replaced or is not to be kept; one that cannot be deleted is
// emptied. Devices are left alone, so that "/dev/null" as an output is never removed.
void delete_output(const char *name);
