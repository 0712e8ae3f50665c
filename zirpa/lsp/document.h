// A text that a client edits: its lines as the protocol counts them, which end in LF, CR LF or CR,
// and positions in it in the client's encoding. The text is UTF-8 always.
#pragma once

#include "zirpa/lsp/protocol.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lsp {

class Document {
  public:
    explicit Document(std::string_view text = {}, Encoding encoding = Encoding::kUtf16);

    void apply(const ContentChange &change);

    const std::string &text() const { return text_; }
    std::size_t line_count() const { return starts_.size(); }

    // Without its line end; empty beyond the last one.
    std::string_view line(std::size_t index) const;

    // Offsets in bytes. What lies beyond a line is its end, and what lies in a character its begin.
    std::size_t offset_of(Position position) const;
    Position position_of(std::size_t offset) const;
    Range range_of(std::size_t begin, std::size_t end) const;

  private:
    void replace(std::size_t begin, std::size_t end, std::string_view text);

    std::string text_;
    std::vector<std::size_t> starts_; // of lines, the first of which begins at 0
    Encoding encoding_;
};

} // namespace lsp
