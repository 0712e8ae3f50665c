#include "dis/graph.h"

#include "dis/lines.h"
#include "dis/operands.h"
#include "dis/source.h"

namespace dis {

namespace {

constexpr std::string_view kHead = "digraph flow {\n"
                                   "    node [shape=box, fontname=\"monospace\", fontsize=10];\n"
                                   "    edge [fontname=\"monospace\", fontsize=9];\n";

class Drawer {
  public:
    explicit Drawer(const Listing &listing) : listing_(listing) {}

    std::string draw();

  private:
    bool begins_block(const Item &item) const;
    void block(std::size_t first, std::size_t last);
    void arrows(const Item &item);
    void arrow(std::uint32_t to, std::string_view style);
    bool is_code(std::uint32_t address) const {
        return address < kAddresses && listing_.flow.cells[address] == Cell::kCode;
    }

    const Listing &listing_;
    std::string text_;
    std::uint32_t block_ = 0;
};

std::string node(std::uint32_t address) { return "n" + hex_address(address); }

std::string escaped(std::string_view text) {
    std::string result;
    for (const char ch : text) {
        if (ch == '"' || ch == '\\') {
            result += '\\';
        }
        result += ch;
    }
    return result;
}

bool ends_block(const Step &step) { return step.way != Way::kNext && step.way != Way::kCall; }

std::string Drawer::draw() {
    text_ = kHead;
    const std::vector<Item> &items = listing_.items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].kind != ItemKind::kInstruction) {
            continue;
        }
        std::size_t last = i;
        while (!ends_block(step_at(listing_.program.image, items[last].address)) &&
               last + 1 < items.size() && !begins_block(items[last + 1]) &&
               items[last + 1].address == items[last].address + items[last].size) {
            ++last;
        }
        block(i, last);
        i = last;
    }
    return text_ + "}\n";
}

bool Drawer::begins_block(const Item &item) const {
    return item.kind != ItemKind::kInstruction || listing_.is_labelled[item.address] != 0;
}

void Drawer::block(std::size_t first, std::size_t last) {
    block_ = listing_.items[first].address;
    text_ += "    " + node(block_) + " [label=\"";
    text_ += listing_.is_labelled[block_] != 0 ? escaped(label_of(listing_, block_)) + "\\l" : "";
    for (std::size_t i = first; i <= last; ++i) {
        const Item &item = listing_.items[i];
        text_ += hex_address(item.address) + "  " + escaped(statement_of(listing_, item)) + "\\l";
    }
    text_ += block_ == start_of(listing_.program) ? "\", penwidth=2];\n" : "\"];\n";
    for (std::size_t i = first; i <= last; ++i) {
        arrows(listing_.items[i]);
    }
    const Item &end = listing_.items[last];
    const Step step = step_at(listing_.program.image, end.address);
    const bool goes_on = step.way != Way::kJump && step.way != Way::kEnd;
    if (goes_on && is_code(end.address + end.size)) {
        arrow(end.address + end.size, "");
    }
}

void Drawer::arrows(const Item &item) {
    const Step step = step_at(listing_.program.image, item.address);
    if (!step.target) {
        return;
    }
    const auto target = resolved(listing_.program.image, *step.target);
    const bool is_call = step.way == Way::kCall;
    if (target && is_code(anchor_of(listing_, *target))) {
        arrow(anchor_of(listing_, *target), is_call ? " [style=dashed]" : "");
        return;
    }
    const std::string name = "\"" + escaped(address_text(listing_, *step.target)) + "\"";
    text_ += "    " + node(block_) + " -> " + name + " [style=dotted];\n";
}

void Drawer::arrow(std::uint32_t to, std::string_view style) {
    text_ += "    " + node(block_) + " -> " + node(to) + std::string(style) + ";\n";
}

} // namespace

std::string graph_of(const Listing &listing) { return Drawer(listing).draw(); }

} // namespace dis
