// What one run of the assembler says of a text, kept so that any question about it can be answered
// without another run: a line's address and bytes, names with their definitions and uses, values of
// expressions, conditional blocks, diagnostics.
//
// Lines are those of the assembler, counted from 1, and places are door's; where() leads to offsets
// in the text. What is not told, as the lines below END, has facts of kind kEmpty.
#pragma once

#include "door/door.h"
#include "zirpa/inspection.h"
#include "zirpa/memoryMap.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lsp {

// Bytes that are reserved at once: whoever types can't wait for more.
inline constexpr std::int64_t kMostReserved = 1 << 20;

struct LineFacts {
    door::LineKind kind = door::LineKind::kEmpty;
    bool is_told = false;
    bool is_reserved = false;
    std::uint32_t address = 0;
    std::uint64_t size = 0;
    std::size_t bytes = 0; // where they begin among the bytes of all lines
    std::size_t count = 0; // that are known
    door::Place label;
    door::Place operation;
    door::Place operand;
};

struct NameFacts {
    std::string name; // as it is stored
    door::NameKind kind = door::NameKind::kLabel;
    std::int32_t value = 0;
    std::vector<door::Place> definitions; // none: not defined, or by an option
    bool is_defined = false;
};

struct UseFacts {
    std::size_t name = 0; // among the names
    door::Use use = door::Use::kValue;
    door::Place place;
    std::int32_t value = 0;
    bool is_defined = false;
};

struct ExpressionFacts {
    door::Place place;
    std::int64_t value = 0;
};

struct BlockFacts {
    int first = 0;
    int last = 0; // 0: left open
    bool is_taken = false;
};

// Bytes from begin up to end, offsets in the text.
struct Extent {
    std::size_t begin = 0;
    std::size_t end = 0;
};

class Analysis {
  public:
    Analysis() = default;
    Analysis(std::string_view text, Settings settings);

    std::vector<LineFacts> lines; // by number, less 1
    std::vector<std::uint8_t> bytes;
    std::vector<NameFacts> names;
    std::vector<UseFacts> uses;               // in the order of the source
    std::vector<ExpressionFacts> expressions; // likewise
    std::vector<BlockFacts> blocks;
    std::vector<Diagnostic> diagnostics;
    int status = 0;   // 0: all is well
    MemoryMap memory; // without the labels
    door::Result result;

    // Whether names are the same in either case.
    bool is_caseless() const { return is_caseless_; }

    // The number of the line that holds an offset.
    int line_at(std::size_t offset) const;
    std::size_t line_begin(int line) const;
    const LineFacts &facts(int line) const;
    int line_count() const { return static_cast<int>(lines.size()); }

    // A place without columns is the whole line, but for what ends it.
    Extent where(int line, int first, int last, std::string_view text) const;
    Extent where(const door::Place &place, std::string_view text) const {
        return where(place.line, place.first, place.last, text);
    }
    std::string_view line_text(int line, std::string_view text) const;

    const NameFacts *find(std::string_view name) const;

    // The uses and expressions of a line.
    std::vector<UseFacts> uses_of(int line) const;
    std::vector<ExpressionFacts> expressions_of(int line) const;

  private:
    void find_lines(std::string_view text);
    door::Listener listener();
    std::size_t index_of(std::string_view name);
    void take(const door::Line &line);
    void take(const door::Definition &definition);

    bool is_caseless_ = false;
    std::vector<std::size_t> begins_; // of the lines, and the end of the text
    // Looked up by texts that are no strings of their own.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> indices_;
};

} // namespace lsp
