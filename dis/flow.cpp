#include "dis/flow.h"

#include <algorithm>

namespace dis {

namespace {

// What instructions do is not in their table; these are the ones that do not go on to the next.
Way way_of(const door::Opcode &opcode) {
    if (opcode.mnemonic == "BSR" || opcode.mnemonic == "JSR") {
        return Way::kCall;
    }
    if (opcode.mnemonic == "BRA" || opcode.mnemonic == "JMP") {
        return Way::kJump;
    }
    if (opcode.mnemonic == "RTS" || opcode.mnemonic == "RTI") {
        return Way::kEnd;
    }
    return opcode.is_branch ? Way::kBranch : Way::kNext;
}

std::optional<std::int32_t> target_of(const Step &step, std::uint32_t address) {
    if (step.opcode->is_branch) {
        return static_cast<std::int32_t>(address + step.size) +
               static_cast<std::int8_t>(step.operand);
    }
    const bool leads = step.way == Way::kCall || step.way == Way::kJump;
    return leads && step.opcode->operand == "n" ? std::optional<std::int32_t>(step.operand)
                                                : std::nullopt;
}

Cell cell_of(HintKind kind) {
    return kind == HintKind::kString  ? Cell::kText
           : kind == HintKind::kTable ? Cell::kTable
                                      : Cell::kData;
}

class Follower {
  public:
    Follower(const Program &program, const Hints &hints) : program_(program), hints_(hints) {}

    Flow follow();

  private:
    void prepare();
    void start(std::uint32_t address);
    void run(std::uint32_t address);
    bool claim(std::uint32_t address, const Step &step);

    const Program &program_;
    const Hints &hints_;
    Flow flow_;
    std::vector<std::uint32_t> waiting_;
};

void Follower::prepare() {
    flow_.cells.assign(kAddresses, Cell::kEmpty);
    flow_.breaks.assign(kAddresses + 1, 0);
    for (std::uint32_t address = 0; address < kAddresses; ++address) {
        if (program_.image.holds(address)) {
            flow_.cells[address] = Cell::kUnknown;
        }
    }
    for (const Range &range : hints_.ranges) {
        flow_.breaks[range.first] = flow_.breaks[range.last + 1] = 1;
        for (std::uint32_t address = range.first; address <= range.last; ++address) {
            if (program_.image.holds(address)) {
                flow_.cells[address] = cell_of(range.kind);
            }
        }
    }
}

Flow Follower::follow() {
    prepare();
    start(start_of(program_));
    for (const std::uint32_t address : hints_.code) {
        start(address);
    }
    for (const SourceLine &line : program_.lines) {
        start(line.address);
    }
    for (std::uint32_t address = 0; address < kAddresses; ++address) {
        if (flow_.cells[address] == Cell::kTable) {
            start(program_.image.at(address));
        }
    }
    return std::move(flow_);
}

void Follower::start(std::uint32_t address) {
    if (flow_.cells[address] != Cell::kUnknown) {
        return;
    }
    waiting_.push_back(address);
    while (!waiting_.empty()) {
        const std::uint32_t next = waiting_.back();
        waiting_.pop_back();
        run(next);
    }
    if (flow_.cells[address] == Cell::kCode) {
        flow_.starts.push_back(address);
    }
}

void Follower::run(std::uint32_t address) {
    while (true) {
        const Step step = step_at(program_.image, address);
        if (!claim(address, step)) {
            return;
        }
        if (step.target) {
            if (const auto target = resolved(program_.image, *step.target)) {
                waiting_.push_back(*target);
            }
        }
        if (step.way == Way::kJump || step.way == Way::kEnd) {
            return;
        }
        address += step.size;
    }
}

bool Follower::claim(std::uint32_t address, const Step &step) {
    if (step.opcode == nullptr || flow_.cells[address] != Cell::kUnknown ||
        (step.size > 1 && flow_.cells[address + 1] != Cell::kUnknown)) {
        return false;
    }
    flow_.cells[address] = Cell::kCode;
    if (step.size > 1) {
        flow_.cells[address + 1] = Cell::kOperand;
    }
    return true;
}

} // namespace

Step step_at(const Image &image, std::uint32_t address) {
    Step step;
    const door::Opcode &opcode = door::opcode(image.at(address));
    if (!image.holds(address) || opcode.mnemonic.empty() ||
        (opcode.has_byte && !image.holds(address + 1))) {
        return step;
    }
    step.opcode = &opcode;
    step.size = opcode.has_byte ? 2 : 1;
    step.operand = opcode.has_byte ? image.at(address + 1) : std::uint8_t{0};
    step.way = way_of(opcode);
    step.target = target_of(step, address);
    return step;
}

std::optional<std::uint32_t> resolved(const Image &image, std::int32_t target) {
    for (const std::uint32_t address :
         {static_cast<std::uint32_t>(target), static_cast<std::uint32_t>(target) & 0xFFU}) {
        if (image.holds(address)) {
            return address;
        }
    }
    return std::nullopt;
}

Flow follow(const Program &program, const Hints &hints) {
    return Follower(program, hints).follow();
}

} // namespace dis
