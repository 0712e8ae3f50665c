#include "as/asLine.h"

#include "as/asCond.h"
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/encode.h"
#include "target/optab.h"
#include "target/scan.h"
#include "util/text.h"

#include <cstring>

int label = 0;
int IsEqu = 0;
int IsEquDirective = 0;
int pending_listLC = 0;
std::uint32_t listLC = 0;

std::string last_seen_label;
std::uint32_t last_seen_label_value = 0;
std::uint32_t last_seen_label_offset = 0;

namespace {

constexpr std::uint16_t kLastOperandCoder = 127;

std::size_t label_length = 0; // characters of the label, which starts the line

void done_without_address() {
    Line_Done = 1;
    pending_listLC = 0;
}

bool is_line_text_end(char ch) { return ch == '\n' || ch == '\0'; }

// Carries out a conditional word, on every line, also while lines are skipped. The word stands
// behind any characters that count as blanks; field is the line's first behind blanks and tabs.
void conditional_word(const char *field) {
    const char *p = skipblanc(field);
    const int token = is_conditional_macro_directive(p);
    if (token != 0) {
        Col_Ptr = p;
        if (DoCond(token) != 0) {
            done_without_address();
        }
    }
}

bool is_debugger_line() { return *Line_Ptr == '.' && std::strncmp(Line_Ptr, ".stab", 5) == 0; }

// Skips a debugger line together with its continuation lines. False when the source ends inside.
bool skip_debugger_line() {
    while (line_divided(Line_Ptr)) {
        if (as_read_line() == 0) {
            Error("Read Error: Possibly last line continuation");
            return false;
        }
    }
    Line_Done = 1;
    return true;
}

bool debugger_line(int pass) {
    if (pass == 2 && O_symdebug != 0) {
        ProcessStab();
        Line_Done = 1;
        return true;
    }
    return skip_debugger_line();
}

// The label field, or the blanks in its place up to the operation at field.
void label_field(const char *field) {
    if (isblanc(*Line_Ptr)) {
        Col_Ptr = field;
    } else if (IsLabel() != 0) {
        label = 1;
    } else {
        Error("Illegal label");
        Line_Done = 1;
    }
}

// The fields ahead of the operation. False when the source ended within a debugger line.
bool leading_fields(int pass) {
    // Quirk (indented-comment): a comment in the first column has no address in the listing, one
    // after blanks has.
    if (is_line_text_end(*Line_Ptr) || IsCommentChar(*Line_Ptr) != 0) {
        done_without_address();
        return true;
    }
    const char *field = skip_blanks_and_tabs(Line_Ptr);
    conditional_word(field);
    if (is_true_level() == 0) {
        done_without_address();
        return true;
    }
    if (Line_Done != 0) {
        return true;
    }
    if (pass == 0 && isblanc(*Line_Ptr)) {
        // Without a label there is no constant to define.
        Line_Done = 1;
        return true;
    }
    if (pass != 0 && is_debugger_line()) {
        return debugger_line(pass);
    }
    label_field(field);
    return true;
}

// In pass 0 only constants are defined. Quirk (equ-of-labels): no label has an address yet, so a
// constant made of labels is computed with 0 for them, and anew only at its line in the final pass.
// Quirk (equ-after-end): END is not carried out either, so constants after it count.
void constants_only() {
    if (Line_Done == 0 && isPseudoEqu() != 0) {
        DoEqu(0);
    }
}

// The operation field: a directive is carried out at once, an instruction is left in mp.
void operation_field() {
    if (PseudoOp() != 0) {
        Line_Done = 1;
    } else if (ZIRPA_getmnem(mp) == 0) {
        Error("Illegal mnemonic");
        Line_Done = 1;
    }
}

void define_label(std::uint32_t value) {
    const std::string_view name = label_name();
    defsym(name, value, 1);
    pending_listLC = 1;
    SetLastLabel(name, value);
}

} // namespace

void assaline(int pass) {
    mp->coder = kNoCoder;
    dotLC = LC;
    pending_listLC = 1;
    const std::uint32_t label_value = LC;
    if (!leading_fields(pass)) {
        return;
    }
    if (Line_Done == 0 && SkipSpace() != nullptr && IsCommentChar(*Col_Ptr) != 0) {
        Line_Done = 1;
    }
    if (pass == 0) {
        constants_only();
        return;
    }
    listLC = LC;
    if (Line_Done != 0 && label == 0) {
        return;
    }
    if (Line_Done == 0) {
        operation_field();
    }
    if (mp->coder >= 1 && mp->coder <= kLastOperandCoder) {
        resetLabel();
    }
    // The label takes the location from before the line's directive has changed it.
    if (label != 0 && IsEqu == 0) {
        define_label(label_value);
    }
    // Quirk (faulty-label): an error of the label leaves out the instruction; a directive has been
    // carried out above.
    if (Line_Done == 0) {
        SkipSpace();
        CodeLine();
        Line_Done = 1;
    }
}

int IsLabel() {
    if (valid_sym() == 0) {
        return 0;
    }
    label_length = yytext.size();
    lookahead(':');
    return 1;
}

std::string_view label_name() { return {Line_Ptr, label_length}; }

int Skip_Delimiter() {
    const char delimiter = *Col_Ptr++;
    if (delimiter == ',') {
        return 0;
    }
    Error("Bad delimiter");
    Line_Done = 1;
    return 1;
}

const char *SkipSpace() {
    if (isblanc(*Col_Ptr)) {
        Col_Ptr = skip_blanks_and_tabs(Col_Ptr);
    }
    if (is_line_text_end(*Col_Ptr)) {
        Line_Done = 1;
        return nullptr;
    }
    return Col_Ptr;
}

void resetLabel() {
    last_seen_label.clear();
    last_seen_label_value = 0;
    last_seen_label_offset = 0;
}

void SetLastLabel(std::string_view name, std::uint32_t value) {
    last_seen_label = name;
    last_seen_label_value = value;
    last_seen_label_offset = 0;
}

void define_directive_label() {
    if (label != 0) {
        const std::string_view name = label_name();
        defsym(name, LC, 1);
        SetLastLabel(name, LC);
        IsEqu = 1;
    }
}

void line_new_run() {
    resetLabel();
    line_new_pass();
}

void line_new_pass() { listLC = 0; }
