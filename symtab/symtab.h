// The symbol table: every name of the assembly, for the whole run and across all passes.
//
// Pass 1 gives labels their values, the final pass defines them again and checks that they have not
// moved. Names are found through an index; the 256 chains of symheads keep the order in which the
// table is printed: by hash value, then by creation.
#pragma once

#include "util/output.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct Segment;

// The table holds 199 blocks of 200 names; one name more ends the run.
inline constexpr std::size_t kSymbolsPerBlock = 200;
inline constexpr std::size_t kSymbolBlockLimit = 199;
inline constexpr std::size_t kSymbolChains = 256;

// Kind and element count with which names are created that have no data.
inline constexpr int kNameKind = 32;
inline constexpr std::int32_t kNoData = -1;

// Bits of a symbol's flags.
enum SymbolFlag : std::uint32_t {
    SYM_DEFINED = 0x1,
    SYM_MULTIPLE = 0x2,     // defined again
    SYM_EXTERNAL = 0x4,     // has no segment
    SYM_OPEN_8 = 0x8,       // tested by defsym only, like the next two open bits
    SYM_VALUE_MARK = 0x10,  // exempt from the phase check
    SYM_UNDEFINED = 0x20,   // entered by a reference
    SYM_ABSOLUTE = 0x40,    // constant given by EQU
    SYM_DEBUG = 0xFFFFFF80, // debug-information name: every bit from 0x80 up
    SYM_OPEN_100 = 0x100,
    SYM_OPEN_200 = 0x200,
    SYM_CONDITIONAL = 0x400, // entered by conditional assembly
    SYM_REDEFINABLE = 0x1000,
    SYM_FORWARD = 0x2000, // referred to before its definition in passes 0 and 1
};

// Fills a cache line, so that a look-up touches one.
struct alignas(64) Symbol {
    const char *name = nullptr;  // NUL-terminated, owned by the table; upper case with nocase
    std::uint64_t name_hash = 0; // its place in the index
    std::uint32_t name_length = 0;
    std::uint32_t flags = 0;
    std::int32_t definition_line = 0; // realline of the definition; 1 for -D, 0 while undefined
    std::int32_t value = 0;
    std::int32_t first_reference_line = 0; // Line_no of the first use ahead of any definition
    std::int32_t element_count = 0; // data elements behind the label; -1 for names without data
    std::int32_t file = -1;         // index of the file entry it was created in, -1: none
    std::uint16_t element_size = 0; // bytes of one element
    std::int16_t bit_size = -1;     // signed width class of a constant's value, -1: none
    Segment *segment = nullptr;
    Symbol *next = nullptr; // next in the chain

    bool has(std::uint32_t bits) const { return (flags & bits) != 0; }
    std::string_view name_view() const { return {name, name_length}; }
};
static_assert(sizeof(Symbol) == 64);

// ---- State owned here; emptied by init_as_symbol_table ----

extern std::array<Symbol *, kSymbolChains> symheads; // heads of the chains, in print order
extern std::size_t symlistcnt;                       // blocks handed out
extern std::size_t symcnt;                           // records used in the current block

// ---- Functions ----

// Empties the table.
void init_as_symbol_table();

// Creates a record and returns it, or reports "(F1024)" and returns none if the name exists. The
// name is taken up to its first blank. The kind and file arguments are not used.
Symbol *putsym(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
               int kind, const char *file, std::int32_t count);

// The record whose whole name equals the leading run of symbol characters, or none.
Symbol *getsym(std::string_view name);

// The record of a name as valid_sym reads it, entered as undefined if it is new.
Symbol *lookup(std::string_view name);

// As lookup, for a reference from an expression: notes forward references.
Symbol *refsym(std::string_view name);

// Defines a name as valid_sym reads it; the final pass compares instead, and with check set reports
// a value that has moved.
void defsym(std::string_view name, std::int64_t value, int check);

// In pass 1, enters a debug-information name: the text up to its first colon.
void addstabsym(std::string_view text, std::int32_t value);

// Prints the table. The header differs between the listing and standard output.
void symwrite(OutputFile &stream);

// The place of the type records of symbols with data (element count above 0), which follow the
// debug records of the final pass. This target has no types to tell, so nothing is written.
void symdebugwrite(std::string &stream);

// Before the final pass: makes the names of conditional assembly undefined again.
void prep_undefine();

// Releases the table at the end of the run.
void closesym();
