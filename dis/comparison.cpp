// Pieces are matched by the longest sequence that both programs have in common. What is alike at
// both ends is taken first, which for most pairs of programs leaves little to search.
#include "dis/comparison.h"

#include "dis/references.h"

#include <algorithm>

namespace dis {

namespace {

// Steps of the search. Programs that would take more are compared in their order instead.
constexpr std::size_t kMostSteps = 16'000'000;

// An instruction, or a byte of data.
struct Unit {
    Item item;
    std::uint32_t key; // equal for what does the same, wherever the addresses in it lead
};

constexpr std::uint32_t kIsInstruction = 0x10000;
constexpr std::uint32_t kIsReference = 0x20000;

Unit instruction(const Image &image, const Item &item) {
    const Step step = step_at(image, item.address);
    const std::uint32_t opcode = image.at(item.address) * 256U;
    const bool is_reference = reference_kind(step).has_value();
    const std::uint32_t key = is_reference ? opcode | kIsReference : opcode | step.operand;
    return {item, key | kIsInstruction};
}

std::vector<Unit> units_of(const Listing &listing) {
    std::vector<Unit> units;
    const Image &image = listing.program.image;
    for (const Item &item : listing.items) {
        if (item.kind == ItemKind::kInstruction) {
            units.push_back(instruction(image, item));
            continue;
        }
        for (std::uint32_t i = 0; i < item.size; ++i) {
            units.push_back({{ItemKind::kBytes, item.address + i, 1}, image.at(item.address + i)});
        }
    }
    return units;
}

using Units = std::span<const Unit>;
using Pair = std::pair<std::size_t, std::size_t>; // indices of what is matched

bool is_alike(const Unit &one, const Unit &other) { return one.key == other.key; }

// How many units the rests of both sides have in common, for each pair of beginnings.
std::vector<std::uint16_t> common_lengths(Units first, Units second) {
    const std::size_t width = second.size() + 1;
    std::vector<std::uint16_t> lengths((first.size() + 1) * width);
    for (std::size_t i = first.size(); i-- > 0;) {
        for (std::size_t j = second.size(); j-- > 0;) {
            lengths[i * width + j] =
                is_alike(first[i], second[j])
                    ? static_cast<std::uint16_t>(lengths[(i + 1) * width + j + 1] + 1)
                    : std::max(lengths[(i + 1) * width + j], lengths[i * width + j + 1]);
        }
    }
    return lengths;
}

void match_middle(Units first, Units second, std::size_t offset, std::vector<Pair> &pairs) {
    if (first.size() * second.size() > kMostSteps) {
        return;
    }
    const std::vector<std::uint16_t> lengths = common_lengths(first, second);
    const std::size_t width = second.size() + 1;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < first.size() && j < second.size()) {
        if (is_alike(first[i], second[j])) {
            pairs.emplace_back(offset + i++, offset + j++);
        } else if (lengths[(i + 1) * width + j] >= lengths[i * width + j + 1]) {
            ++i;
        } else {
            ++j;
        }
    }
}

std::vector<Pair> match(Units first, Units second) {
    std::vector<Pair> pairs;
    const std::size_t least = std::min(first.size(), second.size());
    std::size_t head = 0;
    while (head < least && is_alike(first[head], second[head])) {
        pairs.emplace_back(head, head);
        ++head;
    }
    std::size_t tail = 0;
    while (tail < least - head &&
           is_alike(first[first.size() - tail - 1], second[second.size() - tail - 1])) {
        ++tail;
    }
    match_middle(first.subspan(head, first.size() - head - tail),
                 second.subspan(head, second.size() - head - tail), head, pairs);
    for (; tail > 0; --tail) {
        pairs.emplace_back(first.size() - tail, second.size() - tail);
    }
    return pairs;
}

class Comparer {
  public:
    Comparer(const Listing &first, const Listing &second)
        : first_(first), second_(second), first_units_(units_of(first)),
          second_units_(units_of(second)), moved_to_(kAddresses, kAddresses),
          is_matched_(kAddresses) {}

    std::vector<Difference> compare();

  private:
    void gap(Pair begin, Pair end);
    Mark mark_of(const Unit &one, const Unit &other) const;
    bool leads_to_the_same(const Item &one, const Item &other) const;
    bool is_same_place(std::uint32_t one, std::uint32_t other) const;

    const Listing &first_;
    const Listing &second_;
    std::vector<Unit> first_units_;
    std::vector<Unit> second_units_;
    std::vector<std::uint32_t> moved_to_;  // by address of the first; kAddresses: to nowhere
    std::vector<std::uint8_t> is_matched_; // by address of the second
    std::vector<Difference> pieces_;
};

std::vector<Difference> Comparer::compare() {
    std::vector<Pair> pairs = match(first_units_, second_units_);
    for (const auto &[i, j] : pairs) {
        moved_to_[first_units_[i].item.address] = second_units_[j].item.address;
        is_matched_[second_units_[j].item.address] = 1;
    }
    pairs.emplace_back(first_units_.size(), second_units_.size());
    Pair begin = {0, 0};
    for (const Pair &pair : pairs) {
        gap(begin, pair);
        if (pair.first < first_units_.size() && pair.second < second_units_.size()) {
            const Unit &one = first_units_[pair.first];
            const Unit &other = second_units_[pair.second];
            pieces_.push_back({mark_of(one, other), one.item, other.item});
        }
        begin = {pair.first + 1, pair.second + 1};
    }
    return std::move(pieces_);
}

// Between two matches: what stands there in both is changed, and the rest is new or removed.
void Comparer::gap(Pair begin, Pair end) {
    auto [i, j] = begin;
    while (i < end.first && j < end.second) {
        pieces_.push_back({Mark::kChanged, first_units_[i++].item, second_units_[j++].item});
    }
    for (; i < end.first; ++i) {
        pieces_.push_back({Mark::kRemoved, first_units_[i].item, {}});
    }
    for (; j < end.second; ++j) {
        pieces_.push_back({Mark::kNew, {}, second_units_[j].item});
    }
}

Mark Comparer::mark_of(const Unit &one, const Unit &other) const {
    if ((one.key & kIsReference) != 0 && !leads_to_the_same(one.item, other.item)) {
        return Mark::kChanged;
    }
    return one.item.address == other.item.address ? Mark::kSame : Mark::kMoved;
}

bool Comparer::leads_to_the_same(const Item &one, const Item &other) const {
    const std::int32_t value = value_of(step_at(first_.program.image, one.address));
    const std::int32_t other_value = value_of(step_at(second_.program.image, other.address));
    const auto target = resolved(first_.program.image, value);
    const auto other_target = resolved(second_.program.image, other_value);
    if (!target || !other_target) {
        return !target && !other_target && value == other_value;
    }
    const std::uint32_t anchor = anchor_of(first_, *target);
    const std::uint32_t other_anchor = anchor_of(second_, *other_target);
    return is_same_place(anchor, other_anchor) && *target - anchor == *other_target - other_anchor;
}

// What is new or gone at a place leaves it the place: a label stays before what is put in after it.
bool Comparer::is_same_place(std::uint32_t one, std::uint32_t other) const {
    const auto is_kept = [](std::uint32_t address) { return address < kAddresses; };
    const auto kept = std::find_if(std::next(moved_to_.begin(), static_cast<std::ptrdiff_t>(one)),
                                   moved_to_.end(), is_kept);
    const auto matched = std::find(
        std::next(is_matched_.begin(), static_cast<std::ptrdiff_t>(other)), is_matched_.end(), 1);
    if (kept == moved_to_.end() || matched == is_matched_.end()) {
        return kept == moved_to_.end() && matched == is_matched_.end();
    }
    return *kept == static_cast<std::uint32_t>(matched - is_matched_.begin());
}

} // namespace

bool Comparison::is_same() const {
    return !has_other_start && std::all_of(pieces.begin(), pieces.end(), [](const auto &piece) {
        return piece.mark == Mark::kSame;
    });
}

Comparison compare(const Listing &first, const Listing &second) {
    Comparison comparison;
    comparison.pieces = Comparer(first, second).compare();
    comparison.has_other_start = start_of(first.program) != start_of(second.program);
    return comparison;
}

} // namespace dis
