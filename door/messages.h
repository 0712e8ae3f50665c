// The messages of the assembler: a row for each gives its identifier, and how its place in the line
// is found. The texts stand where they are raised; tests hold this table against them.
#pragma once

#include <span>
#include <string_view>

namespace door {

// Where a report points.
enum class Where {
    kLine,        // nowhere in particular
    kFirstWord,   // the line's first characters up to a blank
    kLabel,       // the name that the line defines
    kOperation,   // the word of the operation
    kOperand,     // the operand, or the operation where there is none
    kValue,       // the value that ends at the scan position
    kOffset,      // the token at which the check of the expression has stopped
    kUndefined,   // the name that is not defined
    kDigit,       // the number with a faulty digit
    kHere,        // the character at the scan position
    kBefore,      // the character before it
    kDivisor,     // what stands after the last division
    kConditional, // the conditional word
};

struct Message {
    std::string_view format;
    std::string_view id;
    Where where;
};

std::span<const Message> messages();

// The row of a report. The format of a faulty expression begins with the text of its own.
const Message &message_of(std::string_view format, std::string_view text);

} // namespace door
