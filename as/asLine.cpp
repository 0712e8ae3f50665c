// Each step looks at what the steps before it have left: Line_Done says that nothing more is to be
// done with the line, label that the line begins with one, and mp which instruction it holds. So a
// step that finds the line done does nothing, and assaline can be read as the list of its steps.
//
// An error ends its line through Error, but Error leaves Line_Done alone once it has begun to
// swallow reports. A step after which the line must not go on whatever has been reported (a faulty
// label, a word that is no operation) sets Line_Done itself.
#include "as/asLine.h"

#include "as/asCond.h"
#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asRead.h"
#include "as/asStab.h"
#include "target/encode.h"
#include "target/location.h"
#include "target/optab.h"
#include "target/scan.h"
#include "util/ahead.h"
#include "util/text.h"

#include <cstring>

namespace {

// Coders from 1 to this one read operands.
constexpr std::uint16_t kLastOperandCoder = 127;

void done_without_address() {
    Line_Done = 1;
    pending_listLC = 0;
}

// ---- The steps of a line, in their order ----

void begin_statement() {
    mp->coder = kNoCoder;
    dotLC = LC;
    pending_listLC = 1;
}

// Carries out a conditional word, which counts on every line, also while lines are skipped. The
// word stands after any characters that count as blanks; field is the line's first after blanks and
// tabs. True when the line is done with that.
bool conditional_word(const char *field) {
    const char *p = skipblanc(field);
    const int token = is_conditional_macro_directive(p);
    if (token == 0) {
        return false;
    }
    Col_Ptr = p;
    return DoCond(token) != 0;
}

// Quirk (indented-comment): a comment in the first column has no address in the listing, one after
// blanks has.
bool is_empty_or_comment() {
    return *Line_Ptr == '\n' || *Line_Ptr == '\0' || IsCommentChar(*Line_Ptr) != 0;
}

// Pass 0 takes such a line for an ordinary one, whose label is faulty.
bool is_debugger_line(int pass) {
    return pass != 0 && *Line_Ptr == '.' && std::strncmp(Line_Ptr, ".stab", 5) == 0;
}

// Records a debugger line, or skips it together with its continuation lines. False when the source
// ends inside. Kept apart from the way of all other lines.
[[gnu::noinline]] bool debugger_line(int pass) {
    if (pass == 2 && O_symdebug != 0) {
        ProcessStab();
    } else {
        while (line_divided(Line_Ptr)) {
            if (as_read_line() == 0) {
                Error("Read Error: Possibly last line continuation");
                return false;
            }
        }
    }
    Line_Done = 1;
    return true;
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

// The blanks after the label; a line that ends there, or goes on with a comment, is done.
void skip_to_operation() {
    if (Line_Done == 0 && SkipSpace() != nullptr && IsCommentChar(*Col_Ptr) != 0) {
        Line_Done = 1;
    }
}

// In pass 0 only constants are defined, and a constant needs a label. Quirk (equ-of-labels): no
// label has an address yet, so a constant made of labels is computed with 0 for them, and anew only
// at its line in the final pass. Quirk (equ-after-end): END is not carried out either, so constants
// after it count.
void constants_only() {
    if (Line_Done == 0 && label != 0 && isPseudoEqu() != 0) {
        DoEqu(0);
    }
}

// The operation field: a directive is carried out at once, an instruction is left in mp.
void operation_field() {
    if (Line_Done != 0) {
        return;
    }
    if (PseudoOp() != 0) {
        Line_Done = 1;
    } else if (ZIRPA_getmnem(mp) == 0) {
        Error("Illegal mnemonic");
        Line_Done = 1;
    }
}

// Data after an instruction belongs to no label any more.
void forget_label_of_data() {
    if (mp->coder >= 1 && mp->coder <= kLastOperandCoder) {
        resetLabel();
    }
}

// Defines the label unless a directive has done so. It takes the location from before the line's
// directive has changed it.
void define_line_label(std::uint32_t location) {
    if (label != 0 && IsEqu == 0) {
        define_label(location);
        pending_listLC = 1;
    }
}

// Quirk (faulty-label): an error of the label leaves out the instruction, while a directive has
// been carried out before.
void instruction() {
    if (Line_Done == 0) {
        SkipSpace();
        CodeLine();
        Line_Done = 1;
    }
}

// A line with a label, an operation or both.
void statement(int pass, const char *field) {
    const std::uint32_t location = LC;
    label_field(field);  // 4
    skip_to_operation(); // 5
    if (pass == 0) {
        constants_only(); // 6
        return;
    }
    listLC = LC;
    operation_field();           // 7
    forget_label_of_data();      // 8
    define_line_label(location); // 9
    instruction();               // 10
}

} // namespace

void assaline(int pass) {
    begin_statement(); // 1
    const char *field = skip_blanks_and_tabs(Line_Ptr);
    if (conditional_word(field) || is_true_level() == 0 || is_empty_or_comment()) { // 2
        done_without_address();
    } else if (is_debugger_line(pass)) { // 3
        if (!debugger_line(pass)) {
            return;
        }
    } else {
        statement(pass, field);
        return;
    }
    if (pass != 0) {
        listLC = LC; // as in a line with a statement
    }
}

int Skip_Delimiter() {
    const char delimiter = *Col_Ptr++;
    if (delimiter == ',') {
        return 0;
    }
    Error("Bad delimiter");
    Line_Done = 1;
    return 1;
}
