// Three structures grow with the table: blocks of records, pieces of memory that hold the names'
// texts, and the index. Nothing is ever taken out of any of them, so all are filled from their
// ends, and the index needs no marks for deleted places.
#include "symtab/names.h"

#include "as/asOptions.h"
#include "as/asStreams.h"
#include "as/asWatch.h"
#include "util/buffer.h"
#include "util/memory.h"
#include "util/text.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>

std::array<std::vector<const Symbol *>, kSymbolChains> symheads;
std::vector<std::vector<Symbol>> symlistptr;
std::size_t symlistcnt = 0;
std::size_t symcnt = 0;

namespace {

// ---- Blocks ----

constexpr int kOverflowStatus = 255;

[[noreturn]] void end_on_overflow() {
    if (watcher != nullptr) {
        static constexpr const char *kText = "(F1010) Symbol table overflow";
        watcher->report(ReportKind::kFatal, kText, kText, true);
    }
    standard_output.put("(F1010) Symbol table overflow\nTerminated due to fatal error(s)");
    end_run(kOverflowStatus);
}

// The first record of each block. There are fewer blocks, but a byte that numbers one is a place in
// here whatever it is, so that the compiler sees nothing to check.
std::array<Symbol *, 256> block_records{};

// A block has room for all of its records from the start, so that they never move.
void add_block() {
    if (symlistptr.size() >= kSymbolBlockLimit) {
        end_on_overflow();
    }
    try {
        symlistptr.emplace_back().reserve(kSymbolsPerBlock);
    } catch (const std::bad_alloc &) {
        end_on_overflow();
    }
    block_records[symlistcnt] = symlistptr.back().data();
    symlistcnt = symlistptr.size();
    symcnt = 0;
}

Symbol *next_record() {
    if (symcnt == kSymbolsPerBlock) {
        add_block();
    }
    ++symcnt;
    return &symlistptr.back().emplace_back();
}

// ---- Texts of the names ----

// Names are stored one after the other in pieces. Small ones: the first touches no page more.
constexpr std::size_t kNamePieceSize = buffer_size(1024);
std::vector<std::unique_ptr<char[]>> name_pieces;
std::size_t name_piece_left = 0;
char *name_piece_end = nullptr;

// Stores a name, NUL-terminated.
const char *store_name(std::string_view name) {
    const std::size_t size = name.size() + 1;
    if (size > name_piece_left) {
        const std::size_t piece_size = std::max(size, kNamePieceSize);
        name_pieces.push_back(make_room(piece_size));
        name_piece_end = name_pieces.back().get() + piece_size;
        name_piece_left = piece_size;
    }
    char *stored = name_piece_end - name_piece_left;
    *std::copy(name.begin(), name.end(), stored) = '\0';
    name_piece_left -= size;
    return stored;
}

// ---- Names as numbers ----

// A name as it is stored, its ends and its hash.
struct Key {
    std::string_view name;
    NameEnds ends;
    std::uint64_t hash;
};

// A piece of the name as a number.
template <typename Piece> std::uint64_t piece_at(const char *text) {
    Piece piece = 0;
    std::memcpy(&piece, text, sizeof piece);
    return piece;
}

constexpr std::size_t kPiece = sizeof(std::uint64_t);
constexpr std::size_t kLongestByEnds = 2 * kPiece;

// The ends of a name of less than four bytes: its bytes, of which some may be taken twice.
inline NameEnds ends_of_short(std::string_view name) {
    if (name.empty()) {
        return {};
    }
    const std::uint64_t bytes = piece_at<std::uint8_t>(name.data()) << 16U |
                                piece_at<std::uint8_t>(name.data() + name.size() / 2) << 8U |
                                piece_at<std::uint8_t>(name.data() + name.size() - 1);
    return {bytes, bytes};
}

// Two halves of four bytes, which may overlap, make an end, so that names of less than eight bytes
// take the same way as all others.
inline NameEnds ends_of(std::string_view name) {
    constexpr std::size_t kHalf = kPiece / 2;
    if (name.size() < kHalf) {
        return ends_of_short(name);
    }
    const std::size_t distance = name.size() < kPiece ? 0 : kHalf;
    const char *first = name.data();
    const char *last = name.data() + name.size() - kHalf;
    return {piece_at<std::uint32_t>(first) | piece_at<std::uint32_t>(first + distance) << 32U,
            piece_at<std::uint32_t>(last - distance) | piece_at<std::uint32_t>(last) << 32U};
}

// Takes eight bytes of the name at a time, the last eight overlapping those before them. The upper
// bits, which give the place in the index, depend on all of the name.
//
// Fast path: it earns 15 % of the time of the symbols workload of the benchmark and 5 % of that of
// the large one. To measure it again, take the characters one by one: for each, hash = (hash ^
// character) * 0x100000001B3, and a multiplication by kMultiplier at the end.
inline std::uint64_t name_hash(std::string_view name, const NameEnds &ends) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = (name.size() ^ ends.first) * kMultiplier;
    hash ^= hash >> 32U;
    for (std::size_t i = kPiece; i + kPiece < name.size(); i += kPiece) {
        hash = (hash ^ piece_at<std::uint64_t>(name.data() + i)) * kMultiplier;
        hash ^= hash >> 32U;
    }
    return (hash ^ ends.last) * kMultiplier;
}

std::string folded_name; // the name of a key while case does not count

[[gnu::noinline]] std::string_view fold(std::string_view name) {
    folded_name.assign(name);
    std::transform(folded_name.begin(), folded_name.end(), folded_name.begin(), to_upper);
    return folded_name;
}

inline Key stored_key(std::string_view name) {
    const NameEnds ends = ends_of(name);
    return {name, ends, name_hash(name, ends)};
}

inline Key key_of(std::string_view name) {
    return stored_key(O_symbol_case_sensitive == 0 ? fold(name) : name);
}

inline bool has_name(const Symbol &symbol, const Key &key) {
    return symbol.name_ends == key.ends && symbol.name_length == key.name.size() &&
           (key.name.size() <= kLongestByEnds || symbol.name_view() == key.name);
}

// ---- The index ----

// A record's block and its place in the block, in two bytes: an index of pointers, four times as
// large, falls out of the processor's caches and takes 17 % more time on the symbols workload.
using RecordNumber = std::uint16_t;
constexpr RecordNumber kFree = 0xFFFF;
static_assert(kSymbolBlockLimit < 256 && kSymbolsPerBlock <= 256);

inline Symbol *record(RecordNumber number) { return &block_records[number >> 8U][number & 0xFFU]; }

RecordNumber last_record() {
    return static_cast<RecordNumber>((symlistcnt - 1) << 8U | (symcnt - 1));
}

// An open-addressing table, a power of two large and at most half full: a search goes on from its
// first place until it meets the name or a free place, which is never far.
constexpr unsigned kFirstIndexBits = 9;
std::vector<RecordNumber> symbol_index;
unsigned index_shift = 0; // from a hash to a place, in bits

std::size_t first_place(std::uint64_t hash) {
    return static_cast<std::size_t>(hash >> index_shift);
}

std::size_t next_place(std::size_t place) { return (place + 1) & (symbol_index.size() - 1); }

// Enters a record by the hash of its stored spelling, which folds to itself unless it was stored
// before case ceased to count. Quirk (d-before-nocase): such a name is not found any more.
void insert_into_index(RecordNumber number, std::uint64_t hash) {
    std::size_t place = first_place(hash);
    while (symbol_index[place] != kFree) {
        place = next_place(place);
    }
    symbol_index[place] = number;
}

void grow_index() {
    std::vector<RecordNumber> old(symbol_index.size() * 4, kFree);
    old.swap(symbol_index);
    index_shift -= 2;
    for (const RecordNumber number : old) {
        if (number != kFree) {
            insert_into_index(number, stored_key(record(number)->name_view()).hash);
        }
    }
}

// Enters the record created last.
void add_to_index(std::uint64_t hash) {
    const std::size_t records = (symlistcnt - 1) * kSymbolsPerBlock + symcnt;
    if (records * 2 > symbol_index.size()) {
        grow_index();
    }
    insert_into_index(last_record(), hash);
}

inline Symbol *find(const Key &key) {
    // A place is always within the index.
    const RecordNumber *index = symbol_index.data();
    std::size_t place = first_place(key.hash);
    while (index[place] != kFree) {
        Symbol *symbol = record(index[place]);
        if (has_name(*symbol, key)) {
            return symbol;
        }
        place = next_place(place);
    }
    return nullptr;
}

bool chains_are_linked = false;

// A run that prints no table touches no chain.
void unlink_chains() {
    if (chains_are_linked) {
        symheads.fill({});
        chains_are_linked = false;
    }
}

// Printed tables depend on this sum, which is all that it is good for: names of one program often
// share it.
std::size_t chain_of(std::string_view name) {
    unsigned sum = 0;
    for (const char ch : name) {
        if (!is_symbol_char(ch)) {
            break;
        }
        sum += static_cast<unsigned char>(ch);
    }
    return sum % kSymbolChains;
}

Symbol *add(const Key &key) {
    Symbol *symbol = next_record();
    symbol->name = store_name(key.name);
    symbol->name_length = static_cast<std::uint32_t>(key.name.size());
    symbol->name_ends = key.ends;
    add_to_index(key.hash);
    return symbol;
}

} // namespace

Symbol *find_name(std::string_view name) { return find(key_of(name)); }

EnteredName enter_name(std::string_view name) {
    const Key key = key_of(name);
    Symbol *symbol = find(key);
    return symbol != nullptr ? EnteredName{symbol, false} : EnteredName{add(key), true};
}

void link_chains() {
    unlink_chains();
    for (const std::vector<Symbol> &block : symlistptr) {
        for (const Symbol &symbol : block) {
            symheads[chain_of(symbol.name_view())].push_back(&symbol);
        }
    }
    chains_are_linked = true;
}

void init_as_symbol_table() {
    closesym();
    symbol_index.assign(std::size_t{1} << kFirstIndexBits, kFree);
    index_shift = 64 - kFirstIndexBits;
    add_block();
}

void closesym() {
    unlink_chains();
    symlistptr.clear();
    symlistcnt = 0;
    symcnt = 0;
    symbol_index.clear();
    name_pieces.clear();
    name_piece_left = 0;
    name_piece_end = nullptr;
}
