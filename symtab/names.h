// The names of the assembly: how their records are stored and found, whatever they mean.
//
// A record is made once, is never moved and lives until the end of the run, so the rest of the
// program may keep pointers to it. It is reached in two ways: through the blocks that hold the
// records in the order of their creation, and through an index by name. The 256 chains keep only
// the order in which the table is printed, and are made for that. What a record says, and when it
// may change, is decided in symtab/symtab.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

struct Segment;

// The table holds 199 blocks of 200 names; one name more ends the run.
inline constexpr std::size_t kSymbolsPerBlock = 200;
inline constexpr std::size_t kSymbolBlockLimit = 199;
inline constexpr std::size_t kSymbolChains = 256;

// The first and the last eight bytes of a name as numbers; they may overlap. With the length they
// say all of a name of at most sixteen bytes.
struct NameEnds {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    bool operator==(const NameEnds &) const = default;
};

// Fills a cache line, so that a look-up touches one; only a long name's text is looked at, too.
struct alignas(64) Symbol {
    const char *name = nullptr; // NUL-terminated, owned by the table; upper case with nocase
    NameEnds name_ends;
    std::uint32_t name_length = 0;
    std::uint32_t flags = 0;          // SymbolFlag
    std::int32_t definition_line = 0; // realline of the definition; 1 for -D, 0 while undefined
    std::int32_t value = 0;
    std::int32_t first_reference_line = 0; // Line_no of the first use ahead of any definition
    std::int32_t element_count = 0;        // data elements at the label; -1 for names without data
    std::int32_t file = -1;                // index of the file entry it was created in; -1: no file
    std::uint16_t element_size = 0;        // bytes of one element
    std::int16_t bit_size = -1; // signed width class of a constant's value; -1: no constant
    Segment *segment = nullptr; // null: no segment

    bool has(std::uint32_t bits) const { return (flags & bits) != 0; }
    std::string_view name_view() const { return {name, name_length}; }
};
static_assert(sizeof(Symbol) == 64);

// What entering a name gives.
struct EnteredName {
    Symbol *symbol;
    bool is_new; // all of the record but its name is still to be filled in
};

// ---- State owned here; emptied by init_as_symbol_table ----

// The chains in print order; filled by link_chains.
extern std::array<std::vector<const Symbol *>, kSymbolChains> symheads;
extern std::vector<std::vector<Symbol>> symlistptr; // the blocks, in order of creation
extern std::size_t symlistcnt;                      // blocks handed out
extern std::size_t symcnt;                          // records used in the current block

// ---- Functions ----

// Empties the table, but for one fresh block.
void init_as_symbol_table();

// Puts all records into the chains: the chain of a name is the sum of the codes of its leading
// symbol characters, modulo 256, and a chain is in the order of creation.
void link_chains();

// Releases the table at the end of the run.
void closesym();

// The record whose stored name is exactly this one, or null. While case does not count, names are
// stored and looked for in upper case.
Symbol *find_name(std::string_view name);

// The same, with a fresh record for a name that has none yet. Ends the run when the table is full.
EnteredName enter_name(std::string_view name);
