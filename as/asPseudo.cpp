// An operation may be a directive on every line, so directives have a table of places. The tables
// of conditional words are searched from front to back: few lines hold a hash sign.
#include "as/asPseudo.h"

#include "as/asData.h"
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
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
    {nullptr,   DIR_NONE,    0, nullptr},
};

// Quirk (two-hashes): the first word holds its hash sign, so that the if with an expression is
// written "##if".
const DirectiveEntry macro_pure[] = {
    {"#if",     DIR_IF,          0, nullptr},
    {"else",    DIR_ELSE,        0, nullptr},
    {"endif",   DIR_ENDIF,       0, nullptr},
    {"elif",    DIR_ELIF,        0, nullptr},
    {"define",  DIR_COND_DEFINE, 0, nullptr},
    {"error",   DIR_ERROR,       0, nullptr},
    {"ifdef",   DIR_IFDEF,       0, nullptr},
    {"ifndef",  DIR_IFNDEF,      0, nullptr},
    {nullptr,   DIR_NONE,        0, nullptr},
};

const DirectiveEntry macro_native[] = {
    {".if",     DIR_IF,     0, nullptr},
    {".else",   DIR_ELSE,   0, nullptr},
    {".endif",  DIR_ENDIF,  0, nullptr},
    {".elseif", DIR_ELIF,   0, nullptr},
    {".ifdef",  DIR_IFDEF,  0, nullptr},
    {".ifndef", DIR_IFNDEF, 0, nullptr},
    {".error",  DIR_ERROR,  0, nullptr},
    {nullptr,   DIR_NONE,   0, nullptr},
};
// clang-format on

int default_entry_seen = 0;
std::uint32_t defaultentryLC = 0;
int entry_is_defined = 0;
std::int64_t entryLC = 0;

namespace {

constexpr int kCarriedOut = 2;
constexpr int kFailed = -1;

// The first row whose word stands at p, or null.
const DirectiveEntry *find_directive(const DirectiveEntry *table, const char *p) {
    // The words begin with lower-case letters, or with marks that hold this bit anyway.
    const int first = *p | 0x20;
    for (; table->name != nullptr; ++table) {
        if (*table->name == first && namecomparei(p, table->name)) {
            return table;
        }
    }
    return nullptr;
}

constexpr std::size_t kDirectives = std::size(pseudo_zirpa) - 1;

constexpr WordTable<kDirectives, 5> kDirectiveWords(pseudo_zirpa, &DirectiveEntry::name);

// The directive at the scan position, which moves to the operand: past the word and the blanks
// after it, line ends included. Null if there is none; the scan position then stays.
const DirectiveEntry *take_directive() {
    const Word word = word_at(Col_Ptr);
    const std::size_t row = kDirectiveWords.find(word.key);
    if (row == kDirectives) {
        return nullptr;
    }
    Col_Ptr = skip_blanks(word.end);
    return &pseudo_zirpa[row];
}

// A conditional word of a table at p: its number, with position after it, or 0.
int find_conditional(const DirectiveEntry *table, const char *p, const char *&position) {
    const DirectiveEntry *word = find_directive(table, p);
    if (word == nullptr) {
        return DIR_NONE;
    }
    position = skipnonblanc(p);
    return static_cast<int>(word->token);
}

} // namespace

std::uint32_t GetPseudoToken(const char *word) {
    const DirectiveEntry *directive = find_directive(pseudo_zirpa, word);
    return directive == nullptr ? DIR_NONE : directive->token;
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
