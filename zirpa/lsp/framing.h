// The base protocol: messages in a stream of bytes, each with a header that tells its size.
//
// Whatever is no header is passed over up to the next one, so that garbage costs nothing but the
// messages in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lsp {

// Longer messages are taken for garbage: no source comes near.
inline constexpr std::size_t kLongestMessage = std::size_t{1} << 28U;

class Framing {
  public:
    // Takes bytes as they come, in any pieces.
    void feed(std::string_view bytes);

    // The next whole message, without its header; nothing until there is one.
    std::optional<std::string> next();

  private:
    bool read_header();
    void take_field(std::string_view field);

    std::string buffer_;
    std::size_t position_ = 0;        // what is before it is done with
    std::optional<std::size_t> size_; // as the fields tell that have been read
    bool is_in_content_ = false;
};

// A message with its header.
std::string framed(std::string_view message);

} // namespace lsp
