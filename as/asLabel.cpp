// The label's text is not copied: it starts the line, so its length says it all.
//
// The last seen label is another thing: data that follow a label on lines of their own belong to it
// still, so its name outlives its line, until another label, an instruction with an operand or ORG
// comes.
#include "as/asLabel.h"

#include "as/asPlace.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "target/scan.h"

int label = 0;
int IsEqu = 0;
int IsEquDirective = 0;
int pending_listLC = 0;
std::uint32_t listLC = 0;

std::string_view last_seen_label;
std::uint32_t last_seen_label_value = 0;
std::uint32_t last_seen_label_offset = 0;

namespace {

std::size_t label_length = 0; // characters of the label, which starts the line

} // namespace

int IsLabel() {
    if (valid_sym() == 0) {
        return 0;
    }
    label_length = yytext.size();
    lookahead(':'); // one that is right there may end the label
    return 1;
}

std::string_view label_name() { return {Line_Ptr, label_length}; }

void resetLabel() {
    last_seen_label = {};
    last_seen_label_value = 0;
    last_seen_label_offset = 0;
}

void SetLastLabel(std::string_view name, std::uint32_t value) {
    last_seen_label = name;
    last_seen_label_value = value;
    last_seen_label_offset = 0;
}

void define_label(std::uint32_t value) {
    const Symbol *symbol = defsym(label_name(), value, 1);
    SetLastLabel(symbol->name_view(), value);
}

void define_directive_label() {
    if (label != 0) {
        define_label(LC);
        IsEqu = 1; // the line assembler would define it at the address before the directive
    }
}

void label_new_run() {
    resetLabel();
    label_new_pass();
}

void label_new_pass() { listLC = 0; }
