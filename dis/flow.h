// What is code: whatever can be reached from where the program starts.
//
// A path goes from one instruction to the next, and to where branches, jumps and calls lead. It
// ends with a jump, a return, an opcode that no instruction has, or where the program has no more
// bytes. Where a register says where a jump leads, only people know; hints name such addresses.
// What is not reached is data. Of two instructions that would share a byte, the one that is reached
// first stays.
#pragma once

#include "dis/hints.h"
#include "dis/program.h"
#include "door/door.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace dis {

// How an instruction goes on.
enum class Way {
    kNext,
    kBranch, // to the next instruction or to the target
    kCall,   // to the target, and then to the next instruction
    kJump,   // to the target alone
    kEnd,    // nobody knows where
};

// An instruction.
struct Step {
    const door::Opcode *opcode = nullptr; // null: there is none
    std::uint8_t operand = 0;             // its byte, if it has one
    std::uint32_t size = 0;               // 1 or 2 bytes
    Way way = Way::kEnd;
    // Where it leads, as the source says it: for branches the distance goes on beyond FF and below
    // 0.
    std::optional<std::int32_t> target;
};

Step step_at(const Image &image, std::uint32_t address);

// The address of the image that is meant: the target itself, or what 8 bits make of it.
std::optional<std::uint32_t> resolved(const Image &image, std::int32_t target);

// What is known of a byte.
enum class Cell : std::uint8_t {
    kEmpty,   // not part of the program
    kUnknown, // not reached
    kData,    // these three by hints
    kText,
    kTable, // addresses of code
    kCode,  // an opcode
    kOperand,
};

struct Flow {
    std::vector<Cell> cells;           // by address
    std::vector<std::uint8_t> breaks;  // by address; 1: data of a hint begins, or has just ended
    std::vector<std::uint32_t> starts; // of paths that nothing leads to
};

Flow follow(const Program &program, const Hints &hints);

} // namespace dis
