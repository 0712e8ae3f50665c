// Neighbours of one mark are shown together: moved ones as a range, changed data as a line.
#include "dis/comparison.h"
#include "dis/lines.h"
#include "dis/source.h"

#include <algorithm>
#include <array>

namespace dis {

namespace {

constexpr std::array<std::string_view, 5> kMarks = {" ", "@", "~", "<", ">"};
constexpr std::array<std::string_view, 5> kWords = {"the same", "moved", "changed", "removed",
                                                    "new"};
constexpr std::size_t kSecondColumn = 40;
constexpr std::uint32_t kBytesOfLine = 8;

bool is_followed_by(const Item &item, const Item &next) {
    return item.size == 0 ? next.size == 0 : item.address + item.size == next.address;
}

bool is_data(const Item &item) { return item.size == 0 || item.kind != ItemKind::kInstruction; }

// Whether the next piece can be shown as part of this one.
bool joins(const Difference &piece, const Difference &next) {
    if (piece.mark != next.mark || !is_followed_by(piece.first, next.first) ||
        !is_followed_by(piece.second, next.second)) {
        return false;
    }
    const bool is_short = std::max(piece.first.size, piece.second.size) < kBytesOfLine;
    const bool are_data = is_data(piece.first) && is_data(piece.second) && is_data(next.first) &&
                          is_data(next.second);
    return piece.mark == Mark::kSame || piece.mark == Mark::kMoved || (are_data && is_short);
}

std::vector<Difference> joined(const std::vector<Difference> &pieces) {
    std::vector<Difference> result;
    for (const Difference &piece : pieces) {
        if (!result.empty() && joins(result.back(), piece)) {
            result.back().first.size += piece.first.size;
            result.back().second.size += piece.second.size;
        } else {
            result.push_back(piece);
        }
    }
    return result;
}

std::string range_of(const Item &item) {
    const std::string first = hex_address(item.address);
    return item.size == 1 ? first : first + "-" + hex_address(item.address + item.size - 1);
}

// Address, name and statement.
std::string shown(const Listing &listing, const Item &item) {
    if (item.size == 0) {
        return {};
    }
    const bool is_named = listing.given.contains(item.address);
    return hex_address(item.address) + "  " +
           (is_named ? label_of(listing, item.address) + " " : "") + statement_of(listing, item);
}

std::string line_of(const Difference &piece, const Listing &first, const Listing &second) {
    std::string line(kMarks[static_cast<std::size_t>(piece.mark)]);
    line += ' ';
    if (piece.mark == Mark::kMoved) {
        return line + range_of(piece.first) + " to " + range_of(piece.second) + "\n";
    }
    line += shown(first, piece.first);
    if (piece.second.size > 0) {
        line.resize(std::max(line.size() + 2, kSecondColumn), ' ');
        line += shown(second, piece.second);
    }
    return line + "\n";
}

// "3 changed, 12 moved", in instructions and bytes of data.
std::string summary_of(const Comparison &comparison) {
    std::array<std::size_t, kWords.size()> counts{};
    for (const Difference &piece : comparison.pieces) {
        ++counts[static_cast<std::size_t>(piece.mark)];
    }
    std::string text;
    for (const Mark mark :
         {Mark::kChanged, Mark::kNew, Mark::kRemoved, Mark::kMoved, Mark::kSame}) {
        const auto index = static_cast<std::size_t>(mark);
        if (counts[index] > 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(counts[index]) + " " +
                    std::string(kWords[index]);
        }
    }
    return text.empty() ? "no bytes\n" : text + "\n";
}

} // namespace

std::string text_of(const Comparison &comparison, const Listing &first, const Listing &second) {
    std::string text;
    for (const Difference &piece : joined(comparison.pieces)) {
        if (piece.mark != Mark::kSame) {
            text += line_of(piece, first, second);
        }
    }
    if (comparison.has_other_start) {
        text += "~ start " + hex_address(start_of(first.program)) + " to " +
                hex_address(start_of(second.program)) + "\n";
    }
    return text + summary_of(comparison);
}

} // namespace dis
