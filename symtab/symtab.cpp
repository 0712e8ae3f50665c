#include "symtab/symtab.h"

#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asOutput.h"
#include "as/asPlace.h"
#include "expr/expr.h"
#include "util/bitsize.h"
#include "util/buffer.h"
#include "util/memory.h"
#include "util/text.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

std::array<Symbol *, kSymbolChains> symheads{};
std::size_t symlistcnt = 0;
std::size_t symcnt = 0;

namespace {

// A block has room for kSymbolsPerBlock records from the start, so that they never move.
std::vector<std::vector<Symbol>> symlistptr;
std::array<Symbol *, kSymbolChains> symtails{}; // last record of each chain

// A record in two bytes, so that the index stays small: its block's number and its own in the
// block.
using RecordNumber = std::uint16_t;
constexpr RecordNumber kNoRecord = 0xFFFF;
static_assert(kSymbolBlockLimit < 256 && kSymbolsPerBlock <= 256);

Symbol *record(RecordNumber number) { return &symlistptr[number >> 8U][number & 0xFFU]; }

// The index: an open-addressing table of records, a power of two large and at most half full. A
// record's place is given by the upper bits of its hash, which depend on all of the name.
constexpr unsigned kFirstIndexBits = 8;
std::vector<RecordNumber> symbol_index;
unsigned index_shift = 0; // from a hash to a place, in bits
std::size_t indexed_symbols = 0;

// Names are stored one behind the other in pieces. Small ones: the first touches no page more.
constexpr std::size_t kNamePieceSize = buffer_size(1024);
std::vector<std::unique_ptr<char[]>> name_pieces;
std::size_t name_piece_left = 0;
char *name_piece_end = nullptr;

std::string folded_name; // a name being looked up while case does not count

constexpr int kOverflowStatus = 255;

[[noreturn]] void end_on_overflow() {
    standard_output.put("(F1010) Symbol table overflow\nTerminated due to fatal error(s)");
    end_run(kOverflowStatus);
}

std::string_view up_to_blank(std::string_view text) {
    return text.substr(0, static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isblanc) -
                                                   text.begin()));
}

std::string_view leading_run(std::string_view text) {
    return text.substr(
        0, static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_symbol_char) -
                                    text.begin()));
}

// The chain of a stored name: the sum of its leading symbol characters' codes, modulo 256.
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

// Bytes of the name as a number.
template <typename Piece> std::uint64_t piece_at(const char *text) {
    Piece piece = 0;
    std::memcpy(&piece, text, sizeof piece);
    return piece;
}

constexpr std::size_t kPiece = sizeof(std::uint64_t);

// All of a text of at most eight bytes as a number: its first and last bytes, which may overlap.
inline std::uint64_t whole_text(const char *text, std::size_t size) {
    if (size >= sizeof(std::uint32_t)) {
        return piece_at<std::uint32_t>(text) << 32U |
               piece_at<std::uint32_t>(text + size - sizeof(std::uint32_t));
    }
    if (size == 0) {
        return 0;
    }
    return piece_at<std::uint8_t>(text) << 16U | piece_at<std::uint8_t>(text + size / 2) << 8U |
           piece_at<std::uint8_t>(text + size - 1);
}

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;

// Takes eight bytes of the name at a time, the last eight overlapping those before them. Each step
// can be undone, so names of the same size of at most eight bytes have different hashes.
inline std::uint64_t index_hash(std::string_view name) {
    std::uint64_t hash = name.size();
    const char *text = name.data();
    if (name.size() <= kPiece) {
        return (hash ^ whole_text(text, name.size())) * kMultiplier;
    }
    const char *last = text + name.size() - kPiece;
    for (; text < last; text += kPiece) {
        hash = (hash ^ piece_at<std::uint64_t>(text)) * kMultiplier;
        hash ^= hash >> 32U;
    }
    return (hash ^ piece_at<std::uint64_t>(last)) * kMultiplier;
}

// Compares texts of more than eight bytes: they are too short for a call to pay.
inline bool same_long_text(const char *a, const char *b, std::size_t size) {
    const std::size_t last = size - kPiece;
    for (std::size_t i = 0; i < last; i += kPiece) {
        if (piece_at<std::uint64_t>(a + i) != piece_at<std::uint64_t>(b + i)) {
            return false;
        }
    }
    return piece_at<std::uint64_t>(a + last) == piece_at<std::uint64_t>(b + last);
}

// A name as it is stored, and its place in the index.
struct Key {
    std::string_view name;
    std::uint64_t hash;
};

[[gnu::noinline]] std::string_view fold(std::string_view name) {
    folded_name.assign(name);
    std::transform(folded_name.begin(), folded_name.end(), folded_name.begin(), to_upper);
    return folded_name;
}

inline Key key_of(std::string_view name) {
    if (O_symbol_case_sensitive == 0) {
        name = fold(name);
    }
    return {name, index_hash(name)};
}

inline bool has_name(const Symbol &symbol, const Key &key) {
    const std::size_t size = key.name.size();
    return symbol.name_hash == key.hash && symbol.name_length == size &&
           (size <= kPiece || same_long_text(symbol.name, key.name.data(), size));
}

std::size_t next_slot(std::size_t slot) { return (slot + 1) & (symbol_index.size() - 1); }

// The record whose stored name is exactly this one, or none.
inline Symbol *find(const Key &key) {
    std::size_t slot = key.hash >> index_shift;
    while (symbol_index[slot] != kNoRecord) {
        Symbol *symbol = record(symbol_index[slot]);
        if (has_name(*symbol, key)) {
            return symbol;
        }
        slot = next_slot(slot);
    }
    return nullptr;
}

// Enters a record under its stored spelling, which folds to itself unless it was stored before case
// ceased to count. Quirk (d-before-nocase): such a name is not found any more.
void insert_into_index(RecordNumber number) {
    std::size_t slot = record(number)->name_hash >> index_shift;
    while (symbol_index[slot] != kNoRecord) {
        slot = next_slot(slot);
    }
    symbol_index[slot] = number;
}

// Enters the record created last.
void add_to_index() {
    ++indexed_symbols;
    if (indexed_symbols * 2 > symbol_index.size()) {
        std::vector<RecordNumber> old(symbol_index.size() * 2, kNoRecord);
        old.swap(symbol_index);
        --index_shift;
        for (const RecordNumber number : old) {
            if (number != kNoRecord) {
                insert_into_index(number);
            }
        }
    }
    insert_into_index(static_cast<RecordNumber>((symlistcnt - 1) << 8U | (symcnt - 1)));
}

void add_block() {
    if (symlistptr.size() >= kSymbolBlockLimit) {
        end_on_overflow();
    }
    try {
        symlistptr.emplace_back().reserve(kSymbolsPerBlock);
    } catch (const std::bad_alloc &) {
        end_on_overflow();
    }
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

void append_to_chain(Symbol *symbol) {
    const std::size_t chain = chain_of(symbol->name_view());
    if (symtails[chain] == nullptr) {
        symheads[chain] = symbol;
    } else {
        symtails[chain]->next = symbol;
    }
    symtails[chain] = symbol;
}

Segment *segment_of_new(std::uint32_t flags) {
    if ((flags & SYM_EXTERNAL) != 0) {
        return nullptr;
    }
    return (flags & SYM_UNDEFINED) != 0 ? absolute_segment() : current_seg;
}

Symbol *create(const Key &key, std::int32_t value, std::int32_t line, std::uint32_t flags,
               std::int32_t count) {
    Symbol *symbol = next_record();
    symbol->name = store_name(key.name);
    symbol->name_length = static_cast<std::uint32_t>(key.name.size());
    symbol->name_hash = key.hash;
    symbol->definition_line = line;
    symbol->value = value;
    symbol->segment = segment_of_new(flags);
    symbol->flags = flags;
    symbol->element_count = count;
    symbol->file = current_file_index();
    symbol->bit_size = static_cast<std::int16_t>((flags & SYM_ABSOLUTE) != 0 ? bitsize(value) : -1);
    append_to_chain(symbol);
    add_to_index();
    return symbol;
}

void compare_in_final_pass(Symbol &symbol, std::int64_t value, int check) {
    if (symbol.definition_line == 0) {
        symbol.definition_line = realline;
    }
    if (symbol.has(SYM_MULTIPLE)) {
        Error("Multiple definition");
    } else if (!symbol.has(SYM_VALUE_MARK | SYM_ABSOLUTE) && check != 0 && symbol.value != value) {
        // Quirk (high-labels): the stored value is signed, so it never equals an address from
        // $80000000 on.
        phase_error = 1;
        Error("Phase error between passes");
    }
}

void store_definition(Symbol &symbol, std::int64_t value) {
    symbol.value = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    symbol.flags |= SYM_DEFINED;
    symbol.definition_line = realline;
}

void define_before_final_pass(Symbol &symbol, std::int64_t value) {
    if (symbol.has(SYM_MULTIPLE)) {
        return;
    }
    if (symbol.has(SYM_UNDEFINED)) {
        symbol.flags &= ~SYM_UNDEFINED;
        store_definition(symbol, value);
    } else if (symbol.has(SYM_DEFINED | SYM_EXTERNAL)) {
        symbol.flags = SYM_MULTIPLE;
    } else if (!symbol.has(SYM_OPEN_8 | SYM_OPEN_100 | SYM_OPEN_200)) {
        Error("(F1023)");
    } else {
        store_definition(symbol, value);
    }
}

} // namespace

void init_as_symbol_table() {
    closesym();
    symbol_index.assign(std::size_t{1} << kFirstIndexBits, kNoRecord);
    index_shift = 64 - kFirstIndexBits;
    add_block();
}

Symbol *putsym(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
               int /*kind*/, const char * /*file*/, std::int32_t count) {
    const Key key = key_of(up_to_blank(name));
    if (find(key) != nullptr) {
        Error("(F1024)");
        return nullptr;
    }
    return create(key, value, line, flags, count);
}

Symbol *getsym(std::string_view name) { return find(key_of(leading_run(name))); }

Symbol *lookup(std::string_view name) {
    const Key key = key_of(name);
    Symbol *symbol = find(key);
    return symbol != nullptr ? symbol : create(key, 0, 0, SYM_UNDEFINED, 0);
}

Symbol *refsym(std::string_view name) {
    Symbol *symbol = lookup(name);
    if (Pass2 != 0) {
        if (symbol->definition_line > realline) {
            forwardref = 1;
        }
    } else if (symbol->flags == SYM_UNDEFINED) {
        symbol->flags |= SYM_FORWARD;
        symbol->first_reference_line = Line_no;
        forwardref = 1;
    }
    return symbol;
}

void defsym(std::string_view name, std::int64_t value, int check) {
    Symbol *symbol = lookup(name);
    if (Pass2 != 0) {
        compare_in_final_pass(*symbol, value, check);
    } else {
        define_before_final_pass(*symbol, value);
    }
}

void addstabsym(std::string_view text, std::int32_t value) {
    if (Pass2 == 0) {
        (void)putsym(text.substr(0, text.find(':')), value, realline, SYM_DEBUG, 0, nullptr, 0);
    }
}

void symwrite(OutputFile &stream) {
    bool header_due = true;
    for (const Symbol *head : symheads) {
        for (const Symbol *symbol = head; symbol != nullptr; symbol = symbol->next) {
            if (header_due) {
                // Quirk (table-heads): the two headers differ by three blanks.
                stream.put(&stream == &standard_output
                               ? "\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n"
                               : "\n--\tSYMBOL TABLE:\n--\tVALUE\tSYMBOL \n");
                header_due = false;
            }
            stream.put('\t');
            stream.put_hex(static_cast<std::uint32_t>(symbol->value), 4);
            stream.put('\t');
            stream.put(symbol->name_view());
            stream.put('\n');
        }
    }
}

void symdebugwrite(std::string & /*stream*/) {}

void prep_undefine() {
    for (std::vector<Symbol> &block : symlistptr) {
        for (Symbol &symbol : block) {
            // Quirk (tested-names): a name that a test has met first loses every definition here,
            // and only "#define" can define it anew. The flags of a debug-information name hold
            // this bit too.
            if (symbol.has(SYM_CONDITIONAL)) {
                symbol.flags = SYM_CONDITIONAL | SYM_UNDEFINED;
            }
        }
    }
}

void closesym() {
    symheads.fill(nullptr);
    symtails.fill(nullptr);
    symlistptr.clear();
    symlistcnt = 0;
    symcnt = 0;
    symbol_index.clear();
    indexed_symbols = 0;
    name_pieces.clear();
    name_piece_left = 0;
    name_piece_end = nullptr;
}
