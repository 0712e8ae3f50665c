// The chapters of what the assembler reports, and of files that can't be used.
#include "zirpa/chapters.h"

#include <array>

namespace {

constexpr std::array kChapters = std::to_array<Chapter>({
    {"bad-label", Severity::kError,
     "A line begins with something that can't be the name of a label. What begins in the first "
     "column is read as a label, or as a word of conditional assembly.",
     "Give the label a name of letters, digits, `$`, `.` and `_` that begins with a letter or `_`, "
     "or put a blank before what is no label.",
     "\tORG\t0\n"
     "2nd\tNOP\n"},
    {"unknown-instruction", Severity::kError,
     "The word in the place of the operation is neither an instruction nor a directive.",
     "Correct the word. An instruction that begins the line is read as a label: put a blank before "
     "it.",
     "\tORG\t0\n"
     "\tLDXA\t#5\n"},
    {"multiple-definition", Severity::kError,
     "A label is defined on two lines, so it has no one address.", "Give one of them another name.",
     "\tORG\t0\n"
     "loop\tNOP\n"
     "loop\tNOP\n"},
    {"phase-error", Severity::kError,
     "A label has another address now than it had when addresses were laid out, because a line "
     "above it has another length now. All references to it are wrong.",
     "Look at the line that is named: mostly its size depends on a name that is known further down "
     "only.",
     "\tORG\t0\n"
     "\tRMB\tsize\n"
     "first\tNOP\n"
     "size\tNOP\n"},
    {"long-line", Severity::kWarning,
     "A line has more than 4093 characters. What is beyond 4095 is read as a line of its own.",
     "Break the line.", ""},
    {"bad-operand", Severity::kError,
     "An instruction lacks its operand, or has one that can't be read.",
     "Write one of the operands that the instruction takes, without blanks: a blank ends it.",
     "\tORG\t0\n"
     "\tCLR\n"},
    {"bad-operand-syntax", Severity::kError,
     "The operand of a branch can't be read, or FCS has no text in double quotes.",
     "A branch takes an address alone. A text stands between double quotes, of which the second "
     "one is easily forgotten.",
     "\tORG\t0\n"
     "\tFCS\t\"text\n"},
    {"addressing-mode", Severity::kError,
     "The instruction has no form for an operand of that kind.",
     "Use a form that it has, or load the value into a register first.",
     "\tORG\t0\n"
     "\tSTA\t#5\n"},
    {"branch-addressing-mode", Severity::kError,
     "A branch takes an address alone: neither a value with `#` nor a register.",
     "Write the label to branch to.",
     "\tORG\t0\n"
     "loop\tBRA\t#loop\n"},
    {"bad-register-pair", Severity::kError,
     "TFR and EXG take two registers with a comma between them.",
     "Name two of A, CC, X, Y and SP, without blanks.",
     "\tORG\t0\n"
     "\tTFR\tA\n"},
    {"register-combination", Severity::kError,
     "The processor has no instruction for these two registers.",
     "Go by way of memory, or by a register that both of them know.",
     "\tORG\t0\n"
     "\tTFR\tA,X\n"},
    {"value-out-of-range", Severity::kError,
     "A value does not fit into its byte. The low 8 bits would be taken.",
     "Use a value from -256 to 255, or take a byte of it: `value&$FF`.",
     "\tORG\t0\n"
     "\tFCB\t1,300,2\n"},
    {"word-out-of-range", Severity::kWarning,
     "A value does not fit into a word of 16 bits. No directive of this language has words.",
     "Nothing is to be done: no source draws this.", ""},
    {"branch-out-of-reach", Severity::kError,
     "A branch goes at most 128 bytes back or 127 bytes on, counted from the instruction after it.",
     "Use JMP, or branch to a JMP that is near.",
     "\tORG\t0\n"
     "loop\tNOP\n"
     "\tRMB\t140\n"
     "\tBRA\tloop\n"},
    {"branch-to-next", Severity::kError,
     "A branch to the next instruction, which this processor allows.",
     "Nothing is to be done: no source draws this.", ""},
    {"bad-decimal-digit", Severity::kError,
     "A decimal number has something in it that is no digit.",
     "Correct the number. Hexadecimal numbers begin with `$`.",
     "\tORG\t0\n"
     "\tLDA\t#12a4\n"},
    {"bad-hexadecimal-digit", Severity::kError,
     "A number after `$` has something in it that is no hexadecimal digit, or no digit at all.",
     "Correct the number.",
     "\tORG\t0\n"
     "\tLDA\t#$1G\n"},
    {"bad-binary-digit", Severity::kError,
     "A number after `%` has a digit other than 0 and 1, or no digit at all.",
     "Correct the number.",
     "\tORG\t0\n"
     "\tLDA\t#%102\n"},
    {"missing-parenthesis", Severity::kError,
     "A parenthesis is not closed, or something inside it can't be read.",
     "Close it, and look at what stands in it: registers and missing operators are reported so "
     "too.",
     "\tORG\t0\n"
     "\tLDA\t#(1+2\n"},
    {"unexpected-parenthesis", Severity::kError, "A parenthesis is closed that was not opened.",
     "Remove it, or open it where it begins.",
     "\tORG\t0\n"
     "\tLDA\t#1+2)\n"},
    {"operand-expected", Severity::kError,
     "An operator stands where a value is to begin. Only `-`, `~` and `!` may.",
     "Write the value that is missing, or remove the operator.",
     "\tORG\t0\n"
     "\tLDA\t#+5\n"},
    {"missing-operator", Severity::kError, "Two values stand next to each other.",
     "Write the operator between them.",
     "one\tEQU\t1\n"
     "\tORG\t0\n"
     "\tLDA\t#one'A'\n"},
    {"unterminated-expression", Severity::kError,
     "An expression ends where a value is to follow: after an operator, or before it has begun.",
     "Write the value. A blank ends an expression, so there is none in it.",
     "\tORG\t0\n"
     "\tLDA\t#1+\n"},
    {"illegal-character", Severity::kError, "A character has no meaning in an expression.",
     "Remove it. Characters as values stand in single quotes: `'A'`.",
     "\tORG\t0\n"
     "\tLDA\t#@17\n"},
    {"reserved-word", Severity::kError,
     "The name of a register stands in an expression. Registers have no value there, and a symbol "
     "of that name can't be reached.",
     "Give the symbol another name than A, X, Y, CC or SP.",
     "\tORG\t0\n"
     "\tLDA\t#1+X\n"},
    {"undefined-name", Severity::kError, "A name is used that no line defines.",
     "Define it as a label, or by EQU; or correct it. Case counts, unless `--compatibility nocase` "
     "is given.",
     "\tORG\t0\n"
     "\tLDA\t#cuont\n"
     "count\tEQU\t5\n"},
    {"undefined-expression", Severity::kError,
     "An expression of a conditional has an undefined name that can't be told.",
     "Define all names above the conditional.", ""},
    {"division-by-zero", Severity::kError, "The right side of a division is 0.",
     "Correct it. A remainder by 0 is not reported, but stops the expression too.",
     "\tORG\t0\n"
     "\tLDA\t#8/0\n"},
    {"less-or-greater", Severity::kError,
     "`<` and `>` are read, but nothing is computed from them.",
     "Use `<=` and `>=`, with a value one less or one more.",
     "\tORG\t0\n"
     "\tLDA\t#1<2\n"},
    {"equ-without-label", Severity::kError,
     "EQU gives a value to the name that begins its line, and there is none.",
     "Write the name in the first column.", "\tEQU\t5\n"},
    {"already-defined", Severity::kError,
     "A name that has a value already gets the same value again. By `#define` it is a warning.",
     "Remove one of the two.",
     "five\tEQU\t5\n"
     "five\tEQU\t5\n"},
    {"changed-value", Severity::kError, "A name that has a value already gets another one.",
     "Give one of them another name: a constant has one value.",
     "size\tEQU\t5\n"
     "size\tEQU\t6\n"},
    {"forward-constant", Severity::kWarning,
     "A name is used above the line that gives it its value by EQU.",
     "Move the EQU line up, ahead of all uses.",
     "two\tEQU\tone\n"
     "one\tEQU\t1\n"},
    {"forward-reference", Severity::kError,
     "The address of an ORG must be known above it: it decides on all addresses below.",
     "Use a number, or a name that is defined above.",
     "\tORG\tstart\n"
     "start\tNOP\n"},
    {"bad-reservation", Severity::kError,
     "RMB reserves 1 byte or more, and its size must be known above it.", "Correct the size.",
     "\tORG\t0\n"
     "\tRMB\t0\n"},
    {"bad-delimiter", Severity::kError, "Something other than a comma separates values.",
     "Write commas between values, and a blank before a comment.",
     "\tORG\t0\n"
     "\tFCB\t1;2\n"},
    {"bad-constant-delimiter", Severity::kError, "Something stands right after the size of RMB.",
     "Put a blank before a comment.",
     "\tORG\t0\n"
     "\tRMB\t3,4\n"},
    {"non-ascii-character", Severity::kWarning,
     "A text holds bytes that are not ASCII. They are taken as they are, so one character may be "
     "several bytes.",
     "Write ASCII, or give the bytes by FCB.",
     "\tORG\t0\n"
     "\tFCS\t\"a\303\251b\"\n"},
    {"undefined-start", Severity::kWarning,
     "The name after END is not defined, so the program has no start address by it.",
     "Define the label, or correct its name.",
     "\tORG\t0\n"
     "start\tNOP\n"
     "\tEND\tsrart\n"},
    {"second-start", Severity::kWarning, "A second END gives another start address.",
     "Nothing is to be done: no source draws this.", ""},
    {"if-too-deep", Severity::kError, "Conditionals are nested deeper than 19.",
     "Nest less: conditions can be combined by `&&`.", ""},
    {"ifndef-too-deep", Severity::kError, "Conditionals by `#ifndef` are nested deeper than 19.",
     "Nest less.", ""},
    {"elif-without-if", Severity::kError, "`#elif` stands outside of any conditional.",
     "Remove it, or write the conditional above it.", "#elif name\n"},
    {"elif-after-else", Severity::kError, "`#elif` stands below the `#else` of its conditional.",
     "Move it above `#else`.",
     "#define yes\n"
     "##if 1\n"
     "#else\n"
     "#elif yes\n"
     "#endif\n"},
    {"else-without-if", Severity::kError, "`#else` stands outside of any conditional.",
     "Remove it, or write the conditional above it. An expression is tested by `##if`, with two "
     "hashes.",
     "\tORG\t0\n"
     "#else\n"},
    {"else-after-else", Severity::kError, "A conditional has a second `#else`.",
     "Remove one of them, or close the inner conditional first.",
     "##if 1\n"
     "#else\n"
     "#else\n"
     "#endif\n"},
    {"endif-without-if", Severity::kError, "`#endif` stands outside of any conditional.",
     "Remove it. An expression is tested by `##if`, with two hashes: `#if` opens nothing.",
     "\tORG\t0\n"
     "#endif\n"},
    {"error-directive", Severity::kError,
     "The source itself says that something is wrong, by `#error`.", "Read its text.",
     "#ifndef MODEL\n"
     "#error choose a model\n"
     "#endif\n"},
    {"macro-definition", Severity::kWarning,
     "`#define` with parameters. There are no macros, so the line is ignored.",
     "Write the expression where it is used, or a constant by EQU.", "#define twice(x) x+x\n"},
    {"bad-conditional-name", Severity::kError,
     "A name of a conditional can't be entered. Another error of the line is always reported "
     "first.",
     "Correct the name.", ""},
    {"debug-entry", Severity::kWarning, "A line for debuggers has a keyword that is not known.",
     "Look at the compiler that has written the line.", ".stab foo 1\n"},
    {"debug-label", Severity::kWarning, "A line for debuggers names a label that is not defined.",
     "Look at the compiler that has written the line.", ".stab func f:1:2:3:one:two:three\n"},
    {"debug-symbol", Severity::kWarning, "A line for debuggers names a symbol that is not defined.",
     "Look at the compiler that has written the line.", ".stab sym v one:two:3:rest\n"},
    {"debug-symbol-type", Severity::kError, "A line for debuggers has an unknown kind of symbol.",
     "Look at the compiler that has written the line.", ".stab sym q one:two:3:rest\n"},
    {"debug-line-number", Severity::kWarning,
     "A line for debuggers has a line number that can't be read.",
     "Look at the compiler that has written the line.", ".stab sym V one:two:x:rest\n"},
    {"open-continuation", Severity::kError, "The source ends in a line that is to go on.",
     "Write the line that is missing.", ".stab type abc+\n"},
    {"output-refused", Severity::kError,
     "An output would overwrite the source, another output or the messages, or can't be created.",
     "Choose another name by `--output`, or another directory.", ""},
    {"no-listing", Severity::kWarning, "The listing can't be created. `output-refused` says why.",
     "Choose another name or directory.", ""},
    {"no-array", Severity::kWarning, "The C array can't be created. `output-refused` says why.",
     "Choose another name or directory.", ""},
    {"too-many-directories", Severity::kError, "More than 21 directories are given by `--include`.",
     "Leave them out: no source includes another.", ""},
    {"empty-directory", Severity::kWarning, "A directory given by `--include` has no name.",
     "Leave it out: no source includes another.", ""},
    {"too-many-files", Severity::kError, "Sources are nested too deeply.",
     "Nothing is to be done: a source is one file.", ""},
    {"recursive-file", Severity::kWarning, "A source includes itself.",
     "Nothing is to be done: a source is one file.", ""},
    {"file-not-found", Severity::kError, "A source that is included does not exist.",
     "Nothing is to be done: a source is one file.", ""},
    {"too-many-names", Severity::kError, "The source has more than 39,800 names.",
     "Use fewer: lines need no labels that nothing refers to.", ""},
    {"old-directive", Severity::kWarning, "A directive of another dialect.",
     "Nothing is to be done: no word of this language leads to it.", ""},
    {"unimplemented-directive", Severity::kWarning, "A directive of another dialect.",
     "Nothing is to be done: no word of this language leads to it.", ""},
    {"direct-page", Severity::kError,
     "A directive of another dialect has a value that does not fit.",
     "Nothing is to be done: no word of this language leads to it.", ""},
    {"internal-symbol-size", Severity::kError,
     "A fault of the assembler itself, in registering data.", "Report it, with the source.", ""},
    {"internal-coder", Severity::kError, "A fault of the assembler itself, in choosing an encoder.",
     "Report it, with the source.", ""},
    {"internal-size", Severity::kError, "A fault of the assembler itself, in checking a size.",
     "Report it, with the source.", ""},
    {"internal-definition", Severity::kError,
     "A fault of the assembler itself, in defining a name.", "Report it, with the source.", ""},
    {"internal-symbol", Severity::kError, "A fault of the assembler itself, in entering a name.",
     "Report it, with the source.", ""},
    {"long-file-name", Severity::kError, "The name of the source is longer than 256 characters.",
     "Use a shorter path.", ""},
    {"cannot-read", Severity::kError,
     "The source can't be read. The reason is the operating system's.",
     "Correct the name, or the rights of the file.", ""},
    {"cannot-write", Severity::kError,
     "An output could not be written to its end. No output stays but the listing.",
     "Make room, or choose another place.", ""},
});

} // namespace

std::span<const Chapter> report_chapters() { return kChapters; }
