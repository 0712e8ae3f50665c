// The words of a table are found by their place in another one (util/words.h): any line may hold
// a directive, and where conditional words count without a hash sign, one of those, too.
#include "as/asPseudo.h"

#include "as/asData.h"
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "as/asWatch.h"
#include "expr/evaluate.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/scan.h"
#include "util/ahead.h"
#include "util/text.h"
#include "util/words.h"
#include "util/wrap.h"

#include <iterator>
#include <string>

// clang-format off
constexpr DirectiveEntry pseudo_zirpa[] = {
    {"org",     DIR_ORG,     0, DoOrg},
    {"equ",     DIR_EQU,     0, [] { return DoEqu(0); }},
    {"rmb",     DIR_RESERVE, 0, [] { return do_reserve_memory(1); }},
    {"fcb",     DIR_BYTES,   0, do_define_data},
    {"fcs",     DIR_STRING,  0, [] { return do_define_characters('"', 0); }},
    {"end",     DIR_END,     0, DoEnd},
    {"",        DIR_NONE,    0, nullptr},
};

// Quirk (two-hashes): the first word holds its hash sign, so that the if with an expression is
// written "##if".
constexpr DirectiveEntry macro_pure[] = {
    {"#if",     DIR_IF,          0, nullptr},
    {"else",    DIR_ELSE,        0, nullptr},
    {"endif",   DIR_ENDIF,       0, nullptr},
    {"elif",    DIR_ELIF,        0, nullptr},
    {"define",  DIR_COND_DEFINE, 0, nullptr},
    {"error",   DIR_ERROR,       0, nullptr},
    {"ifdef",   DIR_IFDEF,       0, nullptr},
    {"ifndef",  DIR_IFNDEF,      0, nullptr},
    {"",        DIR_NONE,        0, nullptr},
};

constexpr DirectiveEntry macro_native[] = {
    {".if",     DIR_IF,     0, nullptr},
    {".else",   DIR_ELSE,   0, nullptr},
    {".endif",  DIR_ENDIF,  0, nullptr},
    {".elseif", DIR_ELIF,   0, nullptr},
    {".ifdef",  DIR_IFDEF,  0, nullptr},
    {".ifndef", DIR_IFNDEF, 0, nullptr},
    {".error",  DIR_ERROR,  0, nullptr},
    {"",        DIR_NONE,   0, nullptr},
};
// clang-format on

int default_entry_seen = 0;
std::uint32_t defaultentryLC = 0;
int entry_is_defined = 0;
std::int64_t entryLC = 0;

namespace {

constexpr int kCarriedOut = 2;
constexpr int kFailed = -1;

constexpr std::size_t kDirectives = std::size(pseudo_zirpa) - 1;

constexpr WordTable<kDirectives, 5> kDirectiveWords(pseudo_zirpa, &DirectiveEntry::name);

// The directive at the scan position, which moves to the operand: past the word and the blanks
// after it, line ends included. Null if there is none; the scan position then stays.
inline const DirectiveEntry *take_directive() {
    const Word word = word_at(Col_Ptr);
    const std::size_t row = kDirectiveWords.find(word.key);
    if (row == kDirectives) {
        return nullptr;
    }
    Col_Ptr = skip_blanks(word.end);
    return &pseudo_zirpa[row];
}

constexpr WordTable<std::size(macro_pure) - 1, 5> kPureWords(macro_pure, &DirectiveEntry::name);
constexpr WordTable<std::size(macro_native) - 1, 5> kNativeWords(macro_native,
                                                                 &DirectiveEntry::name);

// A conditional word at p: its number, with position after it, or 0.
template <std::size_t words, unsigned bits>
int find_conditional(const WordTable<words, bits> &table, const DirectiveEntry *rows, const char *p,
                     const char *&position) {
    const Word word = word_at(p);
    const std::size_t row = table.find(word.key);
    if (row == words) {
        return DIR_NONE;
    }
    position = word.end;
    return static_cast<int>(rows[row].token);
}

} // namespace

std::uint32_t GetPseudoToken(const char *word) {
    const std::size_t row = kDirectiveWords.find(word_at(word).key);
    return row == kDirectives ? DIR_NONE : pseudo_zirpa[row].token;
}

// A word that is no directive is left where it is, to be read as a mnemonic.
int PseudoOp() {
    const DirectiveEntry *directive = take_directive();
    return directive == nullptr ? 0 : directive->handler();
}

int isPseudoEqu() {
    const DirectiveEntry *directive = take_directive();
    return directive != nullptr && directive->token == DIR_EQU ? 1 : 0;
}

int find_conditional_word(const char *&position) {
    const char *p = position;
    if (O_directive_style_pure != 0 && *p == '#') {
        p = skip_blanks(p + 1);
        if (const int token = find_conditional(kPureWords, macro_pure, p, position); token != 0) {
            return token;
        }
    }
    if (O_directive_style_native != 0) {
        if (const int token = find_conditional(kNativeWords, macro_native, p, position);
            token != 0) {
            return token;
        }
    }
    if (O_directive_style_gnu != 0 && *p == '.') {
        // The words have a dot of their own, so a match needs two, as in "..if".
        return find_conditional(kNativeWords, macro_native, skip_blanks(p + 1), position);
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
    // The bytes so far belong to the old address.
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
    // Before the final pass the name may not be known yet, and nothing is reported.
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
    if (watcher != nullptr && symbol != nullptr) {
        watcher->reference(ReferenceKind::kStart, {Col_Ptr, name.size()}, *symbol);
    }
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
}
