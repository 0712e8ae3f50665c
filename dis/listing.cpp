#include "dis/listing.h"

#include "dis/lines.h"
#include "dis/pieces.h"
#include "dis/references.h"

#include <algorithm>
#include <set>

namespace dis {

namespace {

// What an entry outside of the image is called.
constexpr std::string_view kEntry = "entry";

std::string made_up_label(std::uint32_t address) { return "L" + hex_address(address); }

bool is_inside(const Listing &listing, std::uint32_t address) {
    return listing.flow.cells[address] != Cell::kEmpty;
}

// Without a name, END leaves the start to the first ORG.
bool needs_start(const Listing &listing) {
    const std::uint32_t first = listing.program.image.next_held(0);
    return first < kAddresses && first != start_of(listing.program);
}

// ---- Names ----

// The addresses that operands mean.
std::vector<std::uint8_t> operand_addresses(const Listing &listing) {
    std::vector<std::uint8_t> is_operand(kAddresses);
    for (std::uint32_t address = 0; address < kAddresses; ++address) {
        if (listing.flow.cells[address] == Cell::kCode) {
            const Step step = step_at(listing.program.image, address);
            if (step.opcode->operand == "n" && !step.opcode->is_branch) {
                is_operand[step.operand] = 1;
            }
        }
    }
    return is_operand;
}

// Names of people come first, and each text has one address.
class Namer {
  public:
    explicit Namer(Listing &listing) : listing_(listing), is_operand_(operand_addresses(listing)) {}

    void give(const std::vector<Name> &names);
    void label_references();
    void avoid_clashes();
    void name_constants();
    void name_start();

  private:
    bool is_wanted(const Name &name) const;
    bool is_new(const std::string &text) { return texts_.insert(text).second; }
    // The text, made longer until nothing else is called so.
    std::string new_name(std::string text) {
        while (!is_new(text)) {
            text += '_';
        }
        return text;
    }
    std::string start_label(std::uint32_t start);

    Listing &listing_;
    std::set<std::string, std::less<>> texts_;
    std::vector<std::uint8_t> is_operand_; // by address
    std::map<std::uint32_t, std::string> outside_;
};

// An operand byte can't have a label, no source has what can't be one, and a name outside of the
// program is worth a line only if it is used.
bool Namer::is_wanted(const Name &name) const {
    const bool is_used =
        is_operand_[name.address] != 0 || name.address == start_of(listing_.program);
    const Cell cell = listing_.flow.cells[name.address];
    return cell != Cell::kOperand && (cell != Cell::kEmpty || is_used) && is_label(name.text);
}

void Namer::give(const std::vector<Name> &names) {
    for (const Name &name : names) {
        if (!is_wanted(name) || !is_new(name.text)) {
            continue;
        }
        if (is_inside(listing_, name.address)) {
            listing_.given[name.address].push_back(name.text);
            listing_.is_labelled[name.address] = 1;
        } else {
            outside_.try_emplace(name.address, name.text);
        }
    }
}

void Namer::label_references() {
    for (const Reference &reference : listing_.references) {
        listing_.is_labelled[anchor_of(listing_, reference.to)] = 1;
    }
    if (needs_start(listing_)) {
        const std::uint32_t start = start_of(listing_.program);
        const bool can_be = is_inside(listing_, start) && anchor_of(listing_, start) == start;
        listing_.is_labelled[start] = can_be ? 1 : 0;
    }
}

// A given name may be what another address would be called.
void Namer::avoid_clashes() {
    for (const auto &text : std::set(texts_)) {
        const auto address = number_of(std::string_view(text).substr(1), 16);
        if (!address || *address >= kAddresses || made_up_label(*address) != text ||
            listing_.is_labelled[*address] == 0 || listing_.given.contains(*address)) {
            continue;
        }
        listing_.given[*address].push_back(new_name(text));
    }
}

void Namer::name_start() {
    const std::uint32_t start = start_of(listing_.program);
    if (!needs_start(listing_)) {
        return;
    }
    if (is_inside(listing_, start) && anchor_of(listing_, start) == start) {
        listing_.start = start_label(start);
        return;
    }
    const auto [given, is_empty] = outside_.try_emplace(start, kEntry);
    if (is_empty || !is_start_label(given->second)) {
        given->second = new_name(std::string(kEntry));
    }
    listing_.start = given->second;
}

// A label at the start that END can name.
std::string Namer::start_label(std::uint32_t start) {
    const auto given = listing_.given.find(start);
    if (given == listing_.given.end()) {
        return made_up_label(start);
    }
    std::vector<std::string> &names = given->second;
    const auto found = std::find_if(names.begin(), names.end(), is_start_label);
    return found != names.end() ? *found : names.emplace_back(new_name(made_up_label(start)));
}

void Namer::name_constants() {
    for (const auto &[address, text] : outside_) {
        listing_.constants.push_back({text, address});
    }
}

// ---- Items ----

// The end of data of one kind without a label after its beginning.
std::uint32_t end_of_data(const Listing &listing, std::uint32_t begin) {
    const std::vector<Cell> &cells = listing.flow.cells;
    std::uint32_t end = begin + 1;
    while (end < kAddresses && cells[end] == cells[begin] && listing.flow.breaks[end] == 0 &&
           listing.is_labelled[end] == 0) {
        ++end;
    }
    return end;
}

void split(Listing &listing) {
    const Image &image = listing.program.image;
    for (std::uint32_t at = image.next_held(0); at < kAddresses;) {
        const Cell cell = listing.flow.cells[at];
        if (cell == Cell::kEmpty) {
            at = image.next_held(at);
        } else if (cell == Cell::kCode) {
            const std::uint32_t size = step_at(image, at).size;
            listing.items.push_back({ItemKind::kInstruction, at, size});
            at += size;
        } else {
            const std::uint32_t end = end_of_data(listing, at);
            split_data(image, cell, at, end, listing.items);
            at = end;
        }
    }
}

// ---- Back to hints ----

HintKind hint_of(ItemKind kind) {
    return kind == ItemKind::kText    ? HintKind::kString
           : kind == ItemKind::kTable ? HintKind::kTable
                                      : HintKind::kData;
}

// The hint on an item, as told before or found now.
HintKind hint_of(const Listing &listing, const Item &item) {
    return listing.flow.cells[item.address] == Cell::kText ? HintKind::kString : hint_of(item.kind);
}

void add_range(const Listing &listing, const Item &item, std::vector<Range> &ranges) {
    const HintKind kind = hint_of(listing, item);
    const std::uint32_t last = item.address + item.size - 1;
    const Flow &flow = listing.flow;
    if (!ranges.empty() && ranges.back().kind == kind && ranges.back().last + 1 == item.address &&
        flow.breaks[item.address] == 0 &&
        flow.cells[item.address] == flow.cells[ranges.back().last]) {
        ranges.back().last = last;
    } else {
        ranges.push_back({kind, item.address, last});
    }
}

} // namespace

Listing list(Program program, const Hints &hints) {
    Listing listing;
    listing.flow = follow(program, hints);
    listing.references = references_in(program, listing.flow);
    listing.program = std::move(program);
    listing.is_labelled.resize(kAddresses);
    Namer namer(listing);
    namer.give(hints.names);
    namer.give(listing.program.names);
    namer.label_references();
    namer.avoid_clashes();
    namer.name_start();
    namer.name_constants();
    split(listing);
    return listing;
}

std::uint32_t anchor_of(const Listing &listing, std::uint32_t address) {
    return listing.flow.cells[address] == Cell::kOperand ? address - 1 : address;
}

std::string label_of(const Listing &listing, std::uint32_t address) {
    if (const auto given = listing.given.find(address); given != listing.given.end()) {
        return given->second.front();
    }
    return made_up_label(address);
}

std::span<const Reference> references_to(const Listing &listing, std::uint32_t address) {
    const bool has_operand =
        address + 1 < kAddresses && listing.flow.cells[address + 1] == Cell::kOperand;
    const auto is_before = [](const Reference &one, std::uint32_t to) { return one.to < to; };
    const auto &all = listing.references;
    const auto begin = std::lower_bound(all.begin(), all.end(), address, is_before);
    const auto end = std::lower_bound(begin, all.end(), address + (has_operand ? 2 : 1), is_before);
    return {all.data() + (begin - all.begin()), static_cast<std::size_t>(end - begin)};
}

Hints hints_of(const Listing &listing) {
    Hints hints;
    hints.code = listing.flow.starts;
    for (const Item &item : listing.items) {
        if (item.kind != ItemKind::kInstruction) {
            add_range(listing, item, hints.ranges);
        }
        if (listing.is_labelled[item.address] == 0) {
            continue;
        }
        if (const auto given = listing.given.find(item.address); given != listing.given.end()) {
            for (const std::string &text : given->second) {
                hints.names.push_back({text, item.address});
            }
        } else {
            hints.names.push_back({label_of(listing, item.address), item.address});
        }
    }
    hints.names.insert(hints.names.end(), listing.constants.begin(), listing.constants.end());
    return hints;
}

} // namespace dis
