// The chapters of what the assembler does in silence.
#include "zirpa/chapters.h"

#include <array>

namespace {

constexpr std::array kChapters = std::to_array<Chapter>({
    {"bytes-before-org", Severity::kWarning,
     "Bytes are emitted above the first ORG. The first S-record then begins at the address at "
     "which the source ends, not at 0.",
     "Begin with ORG.",
     "\tNOP\n"
     "\tORG\t$10\n"
     "\tNOP\n"},
    {"address-above-ff", Severity::kWarning,
     "A byte has an address above FF, which the processor does not have.",
     "Use less memory, or another ORG.",
     "\tORG\t$FF\n"
     "\tFCB\t1,2\n"},
    {"written-twice", Severity::kWarning,
     "A byte gets a value that another line has given one already. Reserved bytes count: they are "
     "cleared.",
     "Correct an ORG.",
     "\tORG\t$10\n"
     "first\tFCB\t1,2\n"
     "\tORG\t$11\n"
     "\tNOP\n"},
    {"open-conditional", Severity::kWarning,
     "A conditional has no `#endif`. The next pass begins inside of it, so lines above it may be "
     "left out.",
     "Write `#endif`.",
     "\tORG\t0\n"
     "##if 1\n"
     "\tNOP\n"},
    {"text-after-operand", Severity::kWarning,
     "A blank ends an operand, and what follows it is a comment. This one looks as if it were to "
     "be computed.",
     "Remove the blank, or begin the comment with `;`.",
     "\tORG\t0\n"
     "\tLDA\t#5 +1\n"},
    {"undefined-in-equ", Severity::kWarning,
     "A name in the expression of EQU is not defined. It counts as 0, without a message of the "
     "assembler.",
     "Define the name, or correct it.",
     "five\tEQU\tfuor+1\n"
     "four\tEQU\t4\n"},
    {"early-address", Severity::kWarning,
     "A constant that is computed from labels is used above the line that gives it its value. "
     "There the labels counted as 0.",
     "Move the EQU line above all uses, or use the labels themselves.",
     "\tORG\t$10\n"
     "\tLDA\t#size\n"
     "text\tFCS\t\"abc\"\n"
     "end\n"
     "size\tEQU\tend-text\n"},
    {"early-constant", Severity::kWarning,
     "A constant is used above the line that gives it its value, and has another value there.",
     "Move the EQU line above all uses.",
     "\tORG\t0\n"
     "\tLDA\t#two\n"
     "two\tEQU\tone+1\n"
     "one\tEQU\t1\n"},
    {"unlike-c", Severity::kWarning,
     "An expression has another value than it would have in C. It is computed from left to right: "
     "only `*`, and `/` and `%` in some places, bind tighter than what is left of them.",
     "Write parentheses.",
     "\tORG\t0\n"
     "\tLDA\t#1+7%4\n"},
    {"tab-escape", Severity::kWarning, "`\\t` in a text is a vertical tab, not a horizontal one.",
     "Write the code by FCB: a horizontal tab is 9.",
     "\tORG\t0\n"
     "\tFCS\t\"a\\tb\"\n"},
    {"two-digit-escape", Severity::kWarning,
     "A backslash takes one digit. The digits after it are text.", "Write the code by FCB.",
     "\tORG\t0\n"
     "\tFCS\t\"a\\10b\"\n"},
    {"quote-as-character", Severity::kWarning,
     "A text begins with a quote, which is taken as its first character: there is no empty text.",
     "Leave FCS out for an empty text; write a quote as `\\\"`.",
     "\tORG\t0\n"
     "\tFCS\t\"\"\"\n"},
    {"register-name", Severity::kWarning,
     "A label or constant has the name of a register, so no expression can use it: there the "
     "register is read.",
     "Give it another name.",
     "\tORG\t0\n"
     "X\tNOP\n"},
    {"array-without-listing", Severity::kWarning, "The C array stays empty without a listing.",
     "Give `--listing` too.", ""},
    {"byte-order-mark", Severity::kWarning,
     "The source begins with a byte-order mark. Its bytes count as blanks, so what begins the "
     "first line is no label.",
     "Save the source as UTF-8 without a byte-order mark.", "\357\273\277\tORG\t0\n"},
    {"invisible-character", Severity::kWarning,
     "A character that can't be seen stands in a line. Most count as blanks; some end the line.",
     "Remove it, or write a blank.",
     "\tORG\t0\n"
     "\tLDA\t#5\302\240+1\n"},
    {"unused-label", Severity::kWarning,
     "Nothing refers to a label. It is not shown unless it is asked for by `--warn` or `--deny`.",
     "Remove it.",
     "\tORG\t0\n"
     "start\tNOP\n"},
    {"single-hash-if", Severity::kWarning,
     "`#if` with one hash opens no conditional, so its `#endif` ends another one. Where lines are "
     "not left out, it is an error.",
     "Write `##if`.",
     "#ifdef none\n"
     "#if 1\n"
     "#endif\n"
     "\tORG\t0\n"},
    {"idle-option", Severity::kWarning, "An option is accepted but has no effect.", "Leave it out.",
     ""},
    {"end-with-comment", Severity::kWarning,
     "END with something after it that is no name. The last pass goes on below it, although the "
     "others have ended.",
     "Write END alone, or with the start label; a comment goes on a line of its own.",
     "\tORG\t0\n"
     "\tNOP\n"
     "\tEND\t; all\n"},
    {"dropped-text", Severity::kWarning,
     "Something stands right after a complete operand of FCS, ORG or EQU. It is not read.",
     "Put a blank before a comment. FCS takes one text, ORG and EQU one value.",
     "\tORG\t0\n"
     "\tFCS\t\"ab\",0\n"},
    {"tested-name", Severity::kWarning,
     "A conditional asks by `#ifdef` or its like for a name that a label or EQU defines. In the "
     "last pass the name is undefined then.",
     "Ask for names of `#define` or `--define` alone.",
     "\tORG\t0\n"
     "#ifdef start\n"
     "#endif\n"
     "start\tNOP\n"},
    {"late-size", Severity::kWarning,
     "RMB needs a size that is known above it: when addresses are laid out, the name has no value "
     "yet, so nothing is reserved then.",
     "Define the name by EQU, or above this line.",
     "\tORG\t0\n"
     "\tRMB\tlate\n"
     "\tNOP\n"
     "late\n"},
});

} // namespace

std::span<const Chapter> warning_chapters() { return kChapters; }
