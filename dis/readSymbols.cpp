#include "dis/lines.h"
#include "dis/reading.h"

namespace dis {

namespace {

constexpr std::string_view kTitle = "SYMBOL TABLE:";
constexpr std::string_view kHeads = "VALUE";

bool take_row(std::string_view line, std::vector<Name> &names) {
    const auto value = number_of(take_word(line), 16);
    const std::string_view name = take_word(line);
    if (!value || name.empty() || !take_word(line).empty()) {
        return false;
    }
    if (*value < kAddresses) {
        names.push_back({std::string(name), *value});
    }
    return true;
}

bool find_title(Lines &lines) {
    while (lines.next()) {
        if (lines.text().find(kTitle) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

// The line with the heads of the columns, and those without characters, are part of the table; any
// other line ends it.
bool is_skipped(std::string_view line) {
    return line.empty() || line.find(kHeads) != std::string_view::npos;
}

} // namespace

std::vector<Fault> read_symbols(std::string_view content, std::vector<Name> &names) {
    Lines lines(content);
    if (!find_title(lines)) {
        return {{"bad-symbols", "there is no symbol table, as -S prints it"}};
    }
    while (lines.next() && (is_skipped(lines.text()) || take_row(lines.text(), names))) {
    }
    return {};
}

} // namespace dis
