#include "dis/source.h"

#include "dis/lines.h"
#include "dis/operands.h"
#include "dis/pieces.h"

#include <algorithm>

namespace dis {

namespace {

constexpr std::size_t kOperationColumn = 10;
constexpr std::size_t kOperandColumn = 16;
constexpr std::size_t kCommentColumn = 36;
constexpr std::size_t kShownBytes = 8;
constexpr std::size_t kShownReferences = 12;

// Characters of a usual line, to have the room ahead.
constexpr std::size_t kUsualLine = 28;

// Blanks up to a column, at least one.
void pad(std::string &line, std::size_t begin, std::size_t column) {
    line.resize(std::max(line.size() + 1, begin + column), ' ');
}

std::string byte_list(const Image &image, const Item &item) {
    std::string text;
    for (std::uint32_t i = 0; i < item.size; ++i) {
        text += (i == 0 ? "$" : ",$") + hex(image.at(item.address + i));
    }
    return text;
}

std::string address_list(const Listing &listing, const Item &item) {
    std::string text;
    for (std::uint32_t i = 0; i < item.size; ++i) {
        text +=
            (i == 0 ? "" : ",") + address_text(listing, listing.program.image.at(item.address + i));
    }
    return text;
}

std::string string_of(const Image &image, const Item &item) {
    std::string text = "\"";
    for (std::uint32_t i = 0; i < item.size; ++i) {
        text += in_text(image.at(item.address + i)).value_or("");
    }
    return text + "\"";
}

std::string instruction(const Listing &listing, const Item &item) {
    const Step step = step_at(listing.program.image, item.address);
    std::string text(step.opcode->mnemonic);
    if (!step.opcode->operand.empty()) {
        pad(text, 0, kOperandColumn - kOperationColumn);
        text += operand_of(listing, step);
    }
    return text;
}

std::string directive(const char *word, const std::string &operand) {
    std::string text = word;
    pad(text, 0, kOperandColumn - kOperationColumn);
    return text + operand;
}

class Writer {
  public:
    Writer(const Listing &listing, const Comments &comments)
        : listing_(listing), comments_(comments), lines_by_address_(listing.program.lines) {
        std::stable_sort(lines_by_address_.begin(), lines_by_address_.end(),
                         [](const SourceLine &one, const SourceLine &other) {
                             return one.address < other.address;
                         });
    }

    std::string write();

  private:
    void constants();
    void origin(std::uint32_t address);
    void item(const Item &item);
    void labels(const Item &item);
    void references(std::uint32_t address);
    void comment(const Item &item, std::size_t begin);
    std::string line_comment(std::uint32_t address) const;
    std::string bytes_comment(const Item &item) const;
    void statement(std::string_view label, const std::string &text, const Item *item = nullptr);

    const Listing &listing_;
    const Comments &comments_;
    std::vector<SourceLine> lines_by_address_;
    std::string text_;
};

std::string Writer::write() {
    text_.reserve(listing_.items.size() * kUsualLine);
    constants();
    std::uint32_t next = kAddresses;
    if (listing_.items.empty()) {
        origin(start_of(listing_.program));
    }
    for (const Item &each : listing_.items) {
        if (each.address != next) {
            origin(each.address);
        }
        item(each);
        next = each.address + each.size;
    }
    statement("", listing_.start.empty() ? "END" : directive("END", listing_.start));
    return std::move(text_);
}

void Writer::constants() {
    for (const Name &name : listing_.constants) {
        statement(name.text, directive("EQU", "$" + hex_address(name.address)));
    }
}

void Writer::origin(std::uint32_t address) {
    if (!text_.empty()) {
        text_ += '\n';
    }
    statement("", directive("ORG", "$" + hex_address(address)));
}

// All labels but the last have a line of their own.
void Writer::item(const Item &item) {
    const bool is_labelled = listing_.is_labelled[item.address] != 0;
    if (is_labelled && comments_.references) {
        references(item.address);
    }
    std::string label;
    if (const auto given = listing_.given.find(item.address); given != listing_.given.end()) {
        for (std::size_t i = 0; i + 1 < given->second.size(); ++i) {
            text_ += given->second[i] + "\n";
        }
        label = given->second.back();
    } else if (is_labelled) {
        label = label_of(listing_, item.address);
    }
    statement(label, statement_of(listing_, item), &item);
}

void Writer::references(std::uint32_t address) {
    const auto found = references_to(listing_, address);
    if (found.empty()) {
        return;
    }
    text_ += "; used at";
    for (const Reference &reference : found.first(std::min(found.size(), kShownReferences))) {
        text_ += " " + hex_address(reference.from);
    }
    text_ += found.size() > kShownReferences ? " ...\n" : "\n";
}

void Writer::statement(std::string_view label, const std::string &text, const Item *item) {
    const std::size_t begin = text_.size();
    text_ += label;
    pad(text_, begin, kOperationColumn);
    text_ += text;
    if (item != nullptr) {
        comment(*item, begin);
    }
    text_ += '\n';
}

void Writer::comment(const Item &item, std::size_t begin) {
    std::string text = comments_.bytes ? bytes_comment(item) : "";
    const std::string line = line_comment(item.address);
    text += (text.empty() || line.empty() ? "" : "  ") + line;
    if (!text.empty()) {
        pad(text_, begin, kCommentColumn);
        text_ += "; " + text;
    }
}

std::string Writer::bytes_comment(const Item &item) const {
    std::string text = hex_address(item.address) + " ";
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(item.size, kShownBytes); ++i) {
        text += " " + hex(listing_.program.image.at(item.address + i));
    }
    return text + (item.size > kShownBytes ? " ..." : "");
}

// The name is from a file and must not end the line, nor go on in the next one.
std::string Writer::line_comment(std::uint32_t address) const {
    const auto found = std::lower_bound(
        lines_by_address_.begin(), lines_by_address_.end(), address,
        [](const SourceLine &line, std::uint32_t wanted) { return line.address < wanted; });
    if (found == lines_by_address_.end() || found->address != address) {
        return {};
    }
    std::string file = found->file.substr(0, kShownLine);
    std::replace_if(
        file.begin(), file.end(), [](char ch) { return !is_text_character(ch); }, '?');
    return file + ":" + std::to_string(found->line);
}

} // namespace

std::string statement_of(const Listing &listing, const Item &item) {
    switch (item.kind) {
    case ItemKind::kInstruction: return instruction(listing, item);
    case ItemKind::kText: return directive("FCS", string_of(listing.program.image, item));
    case ItemKind::kZeros: return directive("RMB", std::to_string(item.size));
    case ItemKind::kTable: return directive("FCB", address_list(listing, item));
    default: return directive("FCB", byte_list(listing.program.image, item));
    }
}

std::string source_of(const Listing &listing, const Comments &comments) {
    return Writer(listing, comments).write();
}

} // namespace dis
