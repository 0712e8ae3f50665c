#include "as/asPseudo.h"

#include "as/asData.h"
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "expr/expr.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/operand.h"
#include "target/scan.h"
#include "util/path.h"
#include "util/text.h"
#include "util/wrap.h"

#include <array>
#include <iterator>

// clang-format off
constexpr DirectiveEntry pseudo_zirpa[] = {
    {"org",     DIR_ORG,     0},
    {"equ",     DIR_EQU,     0},
    {"rmb",     DIR_RESERVE, 0},
    {"fcb",     DIR_BYTES,   0},
    {"fcs",     DIR_STRING,  0},
    {"end",     DIR_END,     0},
    {nullptr,   DIR_NONE,    0},
};

// Quirk (two-hashes): the first word holds its hash sign, so that the if with an expression is
// written "##if".
const DirectiveEntry macro_pure[] = {
    {"#if",     DIR_IF,          0},
    {"else",    DIR_ELSE,        0},
    {"endif",   DIR_ENDIF,       0},
    {"elif",    DIR_ELIF,        0},
    {"define",  DIR_COND_DEFINE, 0},
    {"error",   DIR_ERROR,       0},
    {"ifdef",   DIR_IFDEF,       0},
    {"ifndef",  DIR_IFNDEF,      0},
    {nullptr,   DIR_NONE,        0},
};

const DirectiveEntry macro_native[] = {
    {".if",     DIR_IF,     0},
    {".else",   DIR_ELSE,   0},
    {".endif",  DIR_ENDIF,  0},
    {".elseif", DIR_ELIF,   0},
    {".ifdef",  DIR_IFDEF,  0},
    {".ifndef", DIR_IFNDEF, 0},
    {".error",  DIR_ERROR,  0},
    {nullptr,   DIR_NONE,   0},
};
// clang-format on

std::uint32_t MC6809_anticipated_dp = 0;
int default_entry_seen = 0;
std::uint32_t defaultentryLC = 0;
int entry_is_defined = 0;
std::int64_t entryLC = 0;

namespace {

constexpr int kCarriedOut = 2;
constexpr int kFailed = -1;

std::uint32_t find_directive(const DirectiveEntry *table, const char *word) {
    // Words begin with lower-case letters or with marks that hold this bit anyway.
    const int first = *word | 0x20;
    for (const DirectiveEntry *entry = table; entry->name != nullptr; ++entry) {
        if (*entry->name == first && namecomparei(word, entry->name)) {
            return entry->token;
        }
    }
    return DIR_NONE;
}

// Characters of each word of pseudo_zirpa.
constexpr int kDirectiveLength = 3;

// The directive number of the word at the scan position, which moves behind the word and the blanks
// that follow (line ends included); or 0.
std::uint32_t directive_at_scan_position() {
    const std::uint32_t token = GetPseudoToken(Col_Ptr);
    if (token != DIR_NONE) {
        Col_Ptr = skipblanc(skip_blanks_and_tabs(Col_Ptr + kDirectiveLength));
    }
    return token;
}

// Such a word, in either case, as a number. Lower-case letters hold the bit that is set
// here, and no other character becomes one by it but the upper-case letter.
constexpr std::uint32_t packed_word(const char *word) {
    static_assert(kDirectiveLength == 3);
    const auto code = [=](int i) -> std::uint32_t { return static_cast<unsigned char>(word[i]); };
    return (code(0) << 16U | code(1) << 8U | code(2)) | 0x202020U;
}

// A word of the table, and its number.
struct PackedDirective {
    std::uint32_t word = 0;
    std::uint32_t token = DIR_NONE;
};

// The one place at which a word can stand: a factor that leaves them apart was found by trying.
constexpr std::size_t place_of(std::uint32_t word) { return word * 0x9E3779B1U >> 29U; }

consteval std::array<PackedDirective, 8> place_directives() {
    std::array<PackedDirective, 8> places{};
    for (const DirectiveEntry *entry = pseudo_zirpa; entry->name != nullptr; ++entry) {
        const std::uint32_t word = packed_word(entry->name);
        PackedDirective &place = places[place_of(word)];
        if (place.word != 0) {
            throw "two words in one place";
        }
        place = {word, entry->token};
    }
    return places;
}

constexpr std::array<PackedDirective, 8> kPlacedDirectives = place_directives();

// The letters with which these words begin, a bit each by the low bits that both cases share.
constexpr std::uint32_t initial_bit(char ch) { return 1U << (static_cast<unsigned>(ch) & 31U); }

consteval std::uint32_t initials() {
    std::uint32_t bits = 0;
    for (const DirectiveEntry &entry : pseudo_zirpa) {
        bits |= entry.name != nullptr ? initial_bit(*entry.name) : 0;
    }
    return bits;
}

constexpr std::uint32_t kInitials = initials();

// A conditional word of a table at p: its number, with position behind it, or 0.
int find_conditional(const DirectiveEntry *table, const char *p, const char *&position) {
    const std::uint32_t token = find_directive(table, p);
    if (token != DIR_NONE) {
        position = skipnonblanc(p);
    }
    return static_cast<int>(token);
}

// ---- Directives of other dialects ----

int do_include() {
    pending_listLC = 0;
    resetLabel();
    std::string name;
    copyFname(name, Col_Ptr);
    if (push_source(name.c_str()) == 0) {
        vpFatal("File '%s' not found", name.c_str());
    }
    newuse = 1;
    return kCarriedOut;
}

void warn_old_fashioned(const char *word, const char *instead) {
    vpWarning("Old fashioned directive: '%s', use '%s' instead", word, instead);
}

int do_listing_word(std::uint32_t token) {
    switch (token) {
    case DIR_LIST:
        warn_old_fashioned("LIST", "OPTION LIST");
        listing_on = O_list != 0 ? 1 : listing_on;
        break;
    case DIR_LISTCOND:
        warn_old_fashioned("LISTCOND", "OPTION LISTCOND");
        uncond_listing_on = 1;
        break;
    case DIR_NOLIST:
        warn_old_fashioned("NOLIST", "OPTION NOLIST");
        listing_on = O_list != 0 ? 0 : listing_on;
        break;
    default:
        warn_old_fashioned("NOLISTCOND", "OPTION NOLISTCOND");
        uncond_listing_on = 0;
        break;
    }
    return 1;
}

int do_unimplemented() {
    Warning("Unimplemented assembler directive, ignored");
    return kFailed;
}

int do_unimplemented_module_word(std::uint32_t token) {
    if (token == DIR_DEFINE) {
        warn_old_fashioned("DEFINE or XDEF", "EXPORT");
    } else if (token == DIR_EXTERN) {
        warn_old_fashioned("EXTERN or XREF", "IMPORT");
    }
    resetLabel();
    return do_unimplemented();
}

int do_set_direct_page() {
    ClearOp(opnd1);
    if (ppexpr(opnd1, 1) != 0) {
        return kFailed;
    }
    if (!isblanc(*Col_Ptr)) {
        return fail("Bad constant delimiter");
    }
    if (opnd1.value > 255) {
        return fail("DPR register is 8 bits");
    }
    MC6809_anticipated_dp = low_32(opnd1.value);
    return kCarriedOut;
}

} // namespace

// Most words are instructions: the directives' initials rule most of them out at once. A text may
// end behind any of its characters.
std::uint32_t GetPseudoToken(const char *word) {
    if ((kInitials & initial_bit(word[0])) == 0 || isblanc(word[1])) {
        return DIR_NONE;
    }
    const std::uint32_t packed = packed_word(word);
    const PackedDirective &directive = kPlacedDirectives[place_of(packed)];
    return directive.word == packed && isblanc(word[kDirectiveLength]) ? directive.token : DIR_NONE;
}

int PseudoOp() {
    const std::uint32_t token = directive_at_scan_position();
    return token == DIR_NONE ? 0 : do_directive(token);
}

int do_directive(std::uint32_t token) {
    switch (token) {
    case DIR_INCLUDE: return do_include();
    case DIR_LIST:
    case DIR_LISTCOND:
    case DIR_NOLIST:
    case DIR_NOLISTCOND: return do_listing_word(token);
    case DIR_ORG: return DoOrg();
    case DIR_EQU: return DoEqu(0);
    case DIR_SET: return DoEqu(1);
    case DIR_END: return DoEnd();
    case DIR_BYTES: return do_define_data();
    case DIR_RESERVE: return do_reserve_memory(1);
    case DIR_STRING: return do_define_characters('"', 0);
    case 24:
    case 25:
    case 26:
    case DIR_DEFINE:
    case 28:
    case DIR_EXTERN:
    case 30:
    case 31:
    case 32:
    case 33:
    case 34:
    case 36:
    case 37: return do_unimplemented_module_word(token);
    case 52:
    case 54:
    case 55:
    case 56:
    case 57:
    case 58: return do_unimplemented();
    case DIR_SETDP: return do_set_direct_page();
    default: return kFailed;
    }
}

int isPseudoEqu() { return directive_at_scan_position() == DIR_EQU ? 1 : 0; }

int find_conditional_word(const char *&position) {
    const char *p = position;
    if (O_directive_style_pure != 0 && *p == '#') {
        p = skipblanc(p + 1);
        if (const int token = find_conditional(macro_pure, p, position); token != 0) {
            return token;
        }
    }
    if (O_directive_style_native != 0) {
        if (const int token = find_conditional(macro_native, p, position); token != 0) {
            return token;
        }
    }
    if (O_directive_style_gnu != 0 && *p == '.') {
        // The words have a dot of their own, so a match needs two, as in "..if".
        return find_conditional(macro_native, skipblanc(p + 1), position);
    }
    return 0;
}

int DoOrg() {
    resetLabel();
    ClearOp(opnd1);
    if (ppexpr(opnd1, 1) != 0) {
        return kFailed;
    }
    if (opnd1.forward_references != 0) {
        return fail("Forward reference");
    }
    // Quirk (directive-tail): whatever follows the expression is not looked at, as with EQU.
    putout();
    LC = low_32(opnd1.value);
    listLC = LC;
    if (default_entry_seen == 0) {
        default_entry_seen = 1;
        defaultentryLC = LC;
    }
    outrecinit(record_type, LC);
    define_directive_label();
    return kCarriedOut;
}

int DoEnd() {
    if (Pass2 == 0 || isblanc(*Col_Ptr)) {
        endflag = 1;
        return 1;
    }
    std::string name;
    extractsizedname(name, Col_Ptr, kNameLimit);
    if (name.empty()) {
        // Quirk (end-operand): the final pass goes on after such a line, a comment after END
        // included, although pass 1 has stopped there.
        return 1;
    }
    const Symbol *symbol = getsym(name);
    if (symbol == nullptr || symbol->has(SYM_UNDEFINED)) {
        // Quirk (start-wording): the text says the opposite of what is wrong. The name is as END
        // has it, also where case does not count and the table holds it in upper case.
        vpWarning("start symbol '%s' is defined", name.c_str());
    } else if (entry_is_defined == 0) {
        entryLC = symbol->value;
        entry_is_defined = 1;
    } else if (entryLC != symbol->value) {
        Warning("Program entry defined, END <address> ignored");
    }
    endflag = 1;
    return 1;
}

void pseudo_new_run() {
    default_entry_seen = 0;
    defaultentryLC = 0;
    entry_is_defined = 0;
    entryLC = 0;
    pseudo_new_pass();
}

void pseudo_new_pass() { MC6809_anticipated_dp = 0; }
