// Two numbers tell where a line stands: ifdepth, how many conditionals are open, and skipping, the
// depth of the one whose branch is not taken, with everything inside it. A word inside a skipped
// region only counts the depth; the word of that very depth may end the skipping. Which branch of a
// conditional has been taken is kept by depth.
#include "as/asCond.h"

#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asWatch.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/scan.h"
#include "util/ahead.h"
#include "util/text.h"
#include "util/wrap.h"

#include <cstring>
#include <functional>
#include <string_view>
#include <vector>

std::int32_t ifdepth = 0;
std::int32_t skipping = 0;

namespace {

// What has happened in a conditional.
enum BranchState : std::int32_t { kNoBranchTaken = 0, kBranchTaken = 1, kElseSeen = 2 };

// States by depth, from 1. Depths beyond the deepest nesting get entries too, so that "#else" and
// "#elif" there find one.
std::vector<std::int32_t> ifsatisfied;

std::int32_t &satisfied() {
    const auto index = static_cast<std::size_t>(ifdepth);
    if (ifsatisfied.size() <= index) {
        ifsatisfied.resize(index + 1, kNoBranchTaken);
    }
    return ifsatisfied[index];
}

// ---- The operand words of a line ----

// A copy of the rest of the line, split at blanks: names and expressions are read up to a NUL,
// while the line itself has to stay whole for the listing. After the copy there is room for a look
// ahead.
struct OperandWords {
    std::array<char, kConditionalTextLimit + kLookAhead> text{};
    int column = 0;         // of the copy's start in the line, 0-based
    char *first = nullptr;  // the name or expression; may be empty
    char *second = nullptr; // the value; may be empty

    int column_of(const char *word) const { return column + static_cast<int>(word - text.data()); }
};
OperandWords words;

char *after_blanks(char *p) { return p + (skip_blanks(p) - p); }

// Ends the word at p; returns the start of the next.
char *end_word(char *p) {
    p += skip_word(p) - p;
    if (*p != '\0') {
        *p++ = '\0';
    }
    return after_blanks(p);
}

void read_words() {
    const std::size_t length = strnlen(Col_Ptr, kConditionalTextLimit);
    std::memcpy(words.text.data(), Col_Ptr, length);
    std::memset(&words.text[length], 0, kLookAhead);
    words.column = static_cast<int>(Col_Ptr - Line_Ptr);
    words.first = after_blanks(words.text.data());
    words.second = end_word(words.first);
    end_word(words.second);
}

std::int64_t evaluate(const char *word) { return evalexp(word, 1, words.column_of(word)); }

// The symbol named by the first word, entered as undefined if it is new; null, reported, if that
// can't be done.
Symbol *named_symbol() {
    Symbol *symbol = getsym(words.first);
    if (symbol == nullptr) {
        symbol = putsym(words.first, 0, realline, SYM_CONDITIONAL | SYM_UNDEFINED, kNameKind,
                        nullptr, kNoData);
        if (symbol == nullptr) {
            Error("Bad preproc");
        }
    }
    return symbol;
}

// A test enters a name that is new, marked as met by a test first: the final pass begins with such
// names undefined, as pass 0 has met them.
bool name_is_defined() {
    const Symbol *symbol = named_symbol();
    if (Pass2 != 0 && watcher != nullptr && symbol != nullptr) {
        watcher->reference(ReferenceKind::kTest, words.first, *symbol);
    }
    return symbol != nullptr && symbol->has(SYM_DEFINED);
}

// ---- The words ----

// A line that starts skipping is listed first, because it would not be listed any more afterwards.
// Quirk (skipping-line): with the address of the line before it, which other conditional words
// lack.
void start_skipping() {
    if (skipping == 0) {
        as_write_listline(false);
    }
    skipping = ifdepth;
}

// Opens a conditional. True when its test is to be made.
bool open_conditional(const char *too_deep) {
    ++ifdepth;
    if (ifdepth > kDeepestConditional) {
        Error(too_deep);
        return false;
    }
    if (skipping != 0) {
        return false;
    }
    satisfied() = kNoBranchTaken;
    return true;
}

void choose_branch(bool taken) {
    if (taken) {
        satisfied() = kBranchTaken;
    } else {
        start_skipping();
    }
}

void do_if() {
    if (open_conditional("#if too deeply nested")) {
        choose_branch(low_32(evaluate(words.first)) != 0);
    }
}

void do_ifdef() {
    if (open_conditional("#if too deeply nested")) {
        choose_branch(name_is_defined());
    }
}

void do_ifndef() {
    if (open_conditional("#ifndef too deeply nested")) {
        choose_branch(!name_is_defined());
    }
}

// True when a branch word belongs to a conditional that was opened inside a skipped region:
// whatever its branches would be, none is taken.
bool is_inside_skipped() { return skipping != 0 && skipping < ifdepth; }

void do_elif() {
    if (is_inside_skipped()) {
        return;
    }
    if (ifdepth == 0) {
        Error("#elif with no #if");
        return;
    }
    if (satisfied() == kElseSeen) {
        Error("#elif after #else");
    }
    // Quirk (elif-name): a name is tested, as by "#ifdef"; an expression is not computed.
    if (!name_is_defined()) {
        start_skipping();
    } else if (satisfied() == kNoBranchTaken) {
        skipping = 0;
        satisfied() = kBranchTaken;
    } else {
        skipping = ifdepth;
    }
}

void do_else() {
    if (is_inside_skipped()) {
        return;
    }
    if (ifdepth == 0) {
        Error("#else with no #if");
        return;
    }
    if (satisfied() == kElseSeen) {
        Error("#else after #else");
    }
    // A second "#else" skips, whatever the first has done: after it, a branch counts as taken.
    skipping = satisfied() != kNoBranchTaken ? ifdepth : 0;
    satisfied() = kElseSeen;
}

// Only the depth goes down inside a skipped region; the state of the conditional around it is still
// in its place.
void do_endif() {
    if (skipping != 0) {
        --ifdepth;
        // The conditional that was skipped is the one that ends here.
        if (skipping > ifdepth) {
            skipping = 0;
        }
    } else if (ifdepth == 0) {
        Error("#endif with no #if");
    } else {
        --ifdepth;
    }
}

void make_defined(Symbol &symbol) {
    symbol.flags &= ~SYM_UNDEFINED;
    symbol.flags |= SYM_DEFINED | SYM_CONDITIONAL;
    symbol.definition_line = realline;
    if (*words.second != '\0' && IsCommentChar(*words.second) == 0) {
        symbol.value = signed_32(evaluate(words.second));
        symbol.segment = absolute_segment();
    }
}

// Quirk (duplicate-define): a duplicate is a warning here and an error for EQU.
void check_duplicate(const Symbol &symbol) {
    if (symbol.definition_line == realline) {
        return;
    }
    vpWarning("symbol '%s' previously defined at line %d", symbol.name, symbol.definition_line);
    if (*words.second != '\0' && symbol.value != evaluate(words.second)) {
        vpError("symbol '%s' redefined at line %d", symbol.name, realline);
    }
}

void do_define() {
    if (skipping != 0) {
        return;
    }
    if (std::string_view(words.first).find_first_of("()") != std::string_view::npos) {
        // Quirk (igored): the spelling, which tools that read messages know.
        Warning("Macro Expansions is NOT supported, 'define' igored");
        return;
    }
    Symbol *symbol = named_symbol();
    if (symbol == nullptr) {
        return;
    }
    if (symbol->has(SYM_DEFINED)) {
        symbol->flags |= SYM_MULTIPLE;
    } else {
        make_defined(*symbol);
    }
    if (Pass2 != 0 && watcher != nullptr) {
        watcher->definition(DefinitionKind::kDefine, *symbol);
    }
    if (symbol->has(SYM_MULTIPLE)) {
        check_duplicate(*symbol);
    }
}

int carry_out(int token) {
    switch (token) {
    case DIR_IF: do_if(); return 1;
    case DIR_IFDEF: do_ifdef(); return 1;
    case DIR_IFNDEF: do_ifndef(); return 1;
    case DIR_ELIF: do_elif(); return 1;
    case DIR_ELSE: do_else(); return 1;
    case DIR_ENDIF: do_endif(); return 1;
    case DIR_COND_DEFINE: do_define(); return 1;
    case DIR_ERROR:
        if (skipping == 0) {
            Error("Message Directive");
        }
        return 1;
    default: return 0;
    }
}

} // namespace

// Quirk (left-open): once in a run, so that what a pass leaves open goes on in the next.
void init_as_conditional_handling() {
    ifdepth = 0;
    skipping = 0;
    ifsatisfied.clear();
}

int column_of_conditional_word(const char *position) {
    const std::less<> is_before;
    const bool is_in_copy = !is_before(position, words.text.data()) &&
                            is_before(position, words.text.data() + words.text.size());
    return is_in_copy ? words.column + static_cast<int>(position - words.text.data()) : -1;
}

int DoCond(int token) {
    read_words();
    const int result = carry_out(token);
    if (watcher != nullptr) {
        watcher->conditional(token);
    }
    return result;
}
