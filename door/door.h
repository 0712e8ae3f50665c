// The door: the one way for other programs to use the assembler and to be told what it finds.
//
// A run assembles one source, from a file or from memory, with the options of the command line. Its
// outputs go to files, to memory or nowhere, and nothing is printed. While it goes on, a listener
// is told of reports, lines, names, conditional blocks and expressions, in the order of the source.
// Runs follow each other in one process, never side by side: the assembler keeps one state.
//
// Units: lines count from 1. Columns count bytes from 1, and the last one is part of the place; a
// place without a column has 0 for both, and the column after the last character of a line is where
// something is missing. Addresses are those of the location counter, 32 bits.
//
// Lifetimes: what is told is valid until the listener returns. A Run's texts must live until run()
// returns; a Result owns what it holds.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace door {

// A piece of one line of the source.
struct Place {
    int line = 0; // 0: of no line
    int first = 0;
    int last = 0;

    bool has_column() const { return first > 0; }
};

enum class Kind { kError, kWarning, kFatal };

// A report of the assembler.
struct Report {
    Kind kind;
    std::string_view id;   // stable: it never changes its meaning
    std::string_view text; // as the assembler prints it
    std::string_view file; // as it was named for the run
    Place place;
    std::string_view source; // the text of the line, without its line end
    // False for an error that the assembler neither prints nor counts, since a phase error has come
    // before it.
    bool is_counted;
};

enum class LineKind {
    kEmpty,
    kComment,     // nothing but a comment
    kSkipped,     // in a conditional block that is not taken
    kConditional, // a conditional word
    kLabel,       // a label alone
    kInstruction,
    kDirective,
    kDebugger, // for a debugger
    kFaulty,   // no operation is known
};

// A line of the source, after all that is told of it. Lines that are read as the continuation of
// another are not told.
struct Line {
    int line;
    LineKind kind;
    std::string_view source;
    std::uint32_t address; // of the first byte
    std::uint64_t size;    // bytes
    // The bytes, but no more than kBytesOfLine, and none for those that are reserved.
    std::span<const std::uint8_t> bytes;
    bool is_reserved; // all bytes are 0 because none is given
    // The first line after which addresses are others than those that were laid out: a phase error
    // comes from here.
    bool displaces;
    Place label; // empty where there is none; likewise below
    Place operation;
    Place operand; // up to the blank after it
};

// Bytes of a line that are told at most; no line but a reserving one has more.
inline constexpr std::size_t kBytesOfLine = 4096;

// How a name has got its value.
enum class NameKind {
    kLabel,
    kConstant, // EQU
    kDefine,   // #define
    kOption,   // -D
};

struct Definition {
    NameKind kind;
    std::string_view name; // as it is stored: in upper case where case does not count
    Place place;
    std::int32_t value;
    bool is_tested; // a conditional has asked for it before
};

// What a name is used for.
enum class Use { kValue, kTest, kStart };

struct Reference {
    Use use;
    std::string_view name;
    Place place;
    std::int32_t value; // at this line
    bool is_defined;
    int definition; // line, 0: no line
};

// A branch of a conditional, when the word that ends it has been met.
struct Block {
    std::string_view word; // as it is written, without hashes
    int first;             // line of that word
    int last;              // line of the word that ends it; 0: left open
    bool is_taken;
};

// An expression that is more than a number or a name.
struct Expression {
    Place place;
    std::string_view text;
    std::int64_t value;
};

// A file that could not be used.
struct Failure {
    enum class Kind { kRead, kCreate, kWrite };
    Kind kind;
    std::string name;
    std::string reason;
};

enum class Outputs { kFiles, kMemory, kNowhere };

struct Run {
    std::vector<std::string> options;     // as on the command line, one word each
    std::string source;                   // the file, or what stands for the text
    std::optional<std::string_view> text; // instead of the file
    Outputs outputs = Outputs::kFiles;
    // More bytes than these are not reserved at once; who waits for an answer can't wait for all
    // that a slip of the finger reserves. 0: as many as the assembler allows.
    std::int64_t most_reserved = 0;
};

enum class OutputKind { kRecords, kListing, kArray, kScript };

struct Output {
    OutputKind kind;
    std::string name;
    std::string bytes; // of an output to memory
};

struct Result {
    bool has_run = false;       // all passes have been made
    std::uint64_t errors = 0;   // all of them, also those that the assembler does not count
    std::uint64_t warnings = 0; // with or without -w
    int status = 0;             // what the assembler would have ended with
    std::vector<Failure> failures;
    std::vector<Output> outputs; // those that were made; after a failure the listing alone
    std::string symbols;         // the symbol table, where it would have been printed
};

// Who is told. A function that is not set is not called. None throws.
struct Listener {
    std::function<void(const Report &)> report;
    std::function<void(const Line &)> line;
    std::function<void(const Definition &)> definition;
    std::function<void(const Reference &)> reference;
    std::function<void(const Block &)> block;
    std::function<void(const Expression &)> expression;
    // After the last line and before the outputs get their names. True: the run has failed,
    // whatever the assembler says.
    std::function<bool()> end;
};

// Assembles.
Result run(const Run &run, const Listener &listener);

// ---- The language ----

// The words that stand in the place of an operation, in upper case; those of conditional assembly
// have the hash that is their own.
std::vector<std::string_view> instructions();
std::vector<std::string> directives();
std::vector<std::string> conditional_words();

// What may stand as the operand of an instruction, with n for a value: as "#n" or "A,CC". Nothing
// for instructions without an operand and for other words.
std::vector<std::string> operands_of(std::string_view instruction);

// The names of the registers, in upper case.
std::vector<std::string_view> registers();

// The fields of a line, empty where it lacks them: as those of a Line, for lines that are not told.
struct LineFields {
    Place label;
    Place operation;
    Place operand;
    bool is_conditional; // the operation has the hash of conditional assembly
};

LineFields fields_of(std::string_view line);

// Bytes of a line that are read at once; what is beyond counts as a line of its own.
inline constexpr std::size_t kLongestLine = 4095;

// What an opcode stands for; of instructions that share one, the first in the table.
struct Opcode {
    std::string_view mnemonic; // empty: no instruction has the opcode
    std::string operand;       // as in operands_of; empty: none
    bool has_byte = false;     // a byte follows: the n of the operand
    bool is_branch = false;    // that byte is the distance from the next instruction to n
};

const Opcode &opcode(std::uint8_t code);

const char *version();

// Every identifier of a report, in the order of docs/diagnostics.md.
std::vector<std::string_view> identifiers();

// ---- Characters ----

// As the assembler classes and compares them.
bool is_digit(char ch);
bool begins_name(char ch);       // a letter or "_"
bool is_name_character(char ch); // one of these, a digit, "$" or "."
unsigned digit_value(char ch);   // 0 to 15 of a hexadecimal digit; more for any other character
std::string upper(std::string_view text);

// Whether a value that begins with this name is read as a register.
bool is_register(std::string_view name);

// ---- Files ----

// Writes a file besides the outputs of a run, as these are written: under its name there is the old
// file or the whole new one. The kept files, which a run has read or written, are not overwritten.
// Nothing when all is well, else what has failed.
std::optional<Failure> write_file(const std::string &name, std::string_view bytes,
                                  const std::vector<std::string> &kept);

// Writes all bytes to an open descriptor, or reads all there are from it. False when that fails;
// errno tells why.
bool write_all(int descriptor, std::string_view bytes);
bool read_all(int descriptor, std::string &bytes);

} // namespace door
