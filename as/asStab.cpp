// The word at a fixed column says what follows at another; what does not fit is a warning at most,
// because the program itself does not depend on it. The compiler writes these lines,
// so they keep to their columns.
//
// A line that ends in "+" goes on in the next one. Only types and symbols go on; their records take
// the further lines as they are.
#include "as/asStab.h"

#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "expr/evaluate.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "util/number.h"
#include "util/text.h"
#include "util/wrap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

// Fixed columns of a ".stab" line, 0-based.
constexpr std::size_t kKeywordColumn = 6;
constexpr std::size_t kSymbolKindColumn = 10;
constexpr std::size_t kOperandColumn = 11;
constexpr std::size_t kSymbolOperandColumn = 12;

constexpr int kDecimal = 10;

// The text of the line from a column on; empty where the line is too short.
const char *from_column(std::size_t column) { return Line_Ptr + std::min(column, Line.length()); }

bool is_keyword(const char *word) {
    return std::strncmp(from_column(kKeywordColumn), word, std::strlen(word)) == 0;
}

// Takes the text up to the next colon, and the colon.
std::string take_field(const char *&p) {
    std::string field;
    p = extracttoskip(field, p, ':');
    if (*p == ':') {
        ++p;
    }
    return field;
}

// The operand from a column on, without its leading blanks and its line end.
std::string operand_text(std::size_t column) {
    std::string text;
    nlstrcpy(text, skipblanc(from_column(column)));
    return text;
}

std::int32_t decimal_field(const std::string &field) {
    std::uint32_t value = 0;
    (void)base_to_number(field.c_str(), value, kDecimal);
    return static_cast<std::int32_t>(value);
}

// Copies the continuation lines of the current line to the records as they are.
void copy_continuation_lines() {
    while (line_divided(Line_Ptr) && as_read_line() != 0) {
        add_debug_text(Line.view());
    }
}

void process_function() {
    const std::string text = operand_text(kOperandColumn);
    const char *p = text.c_str();
    const Symbol *function = getsym(take_field(p));
    std::array<std::int32_t, 3> numbers{};
    for (std::int32_t &number : numbers) {
        number = decimal_field(take_field(p));
    }
    std::array<std::int64_t, 3> addresses{};
    for (std::int64_t &address : addresses) {
        const std::string name = take_field(p);
        const Symbol *label = getsym(name);
        if (label == nullptr) {
            vpWarning("Debug label '%s' is missing", name.c_str());
            return;
        }
        address = label->value;
    }
    // The third label stands after the function, the record names its last byte.
    addresses[2] = wrap_subtract(addresses[2], 1);
    asm_write_sd_function(function == nullptr ? std::string_view() : function->name_view(), numbers,
                          addresses);
}

void process_statement() {
    const char *p = skipblanc(from_column(kOperandColumn));
    std::string line;
    const char *comma = extracttoskip(line, p, ',');
    std::int32_t line_number = 0;
    std::int32_t count = 0;
    // Quirk (stmt-blank): only nothing at all is a missing part; a blank there is read as a faulty
    // expression.
    if (!line.empty() && *comma == ',' && !is_line_end(comma[1])) {
        line_number = decimal_field(line);
        count = signed_32(evalexp(comma + 1, 1));
    }
    asm_write_sd_exec(line_number, count, LC);
}

void process_type() {
    std::string text;
    nlstrcpy(text, from_column(kOperandColumn));
    begin_type_record(text);
    if (line_divided(Line_Ptr)) {
        copy_continuation_lines();
    } else {
        add_debug_text("\n");
    }
}

void process_local_symbol(const char *p) {
    std::array<std::string, 3> fields;
    for (std::string &field : fields) {
        field = take_field(p);
    }
    const std::int32_t number = decimal_field(take_field(p));
    asm_write_sd_local_symbol(fields, number, p);
}

// Functions ("F", "f") have no record of their own here: "func" lines give theirs. But the fields
// are read for their warnings.
void process_global_or_static_symbol(char kind, const char *p) {
    const std::string first = take_field(p);
    const std::string name = take_field(p);
    std::uint32_t line_number = 0;
    if (ascii_to_number(take_field(p).c_str(), line_number) != 0) {
        Warning("Warning: Bad line number in symdebug info");
    }
    const auto line = static_cast<std::int32_t>(line_number);
    if (kind == 'V') {
        asm_write_sd_global_symbol(first, name, line, p);
    }
    if (kind != 'v' && kind != 'f') {
        return;
    }
    const Symbol *symbol = getsym(name);
    if (symbol == nullptr) {
        vpWarning("Symbol '%s:%s' is missing", first.c_str(), name.c_str());
    }
    if (kind == 'v') {
        asm_write_sd_static_symbol(first, name, symbol == nullptr ? 0 : symbol->value, line, p);
    }
}

void process_symbol() {
    const char kind = *from_column(kSymbolKindColumn);
    const std::string text = operand_text(kSymbolOperandColumn);
    switch (kind) {
    case 'L': process_local_symbol(text.c_str()); break;
    case 'V':
    case 'F':
    case 'v':
    case 'f': process_global_or_static_symbol(kind, text.c_str()); break;
    // Quirk (sym-without-kind): the kind is a NUL then, at which the message ends.
    default: vpError("Unidentified symbol type '%c'", kind); break;
    }
    copy_continuation_lines();
}

} // namespace

void ProcessStab() {
    if (is_keyword("init") || is_keyword("dir") || is_keyword("file")) {
        // The C source and its directory appear in no record.
        return;
    }
    if (is_keyword("func")) {
        process_function();
    } else if (is_keyword("stmt") || is_keyword("expr") || is_keyword("exec")) {
        process_statement();
    } else if (is_keyword("type")) {
        process_type();
    } else if (is_keyword("sym")) {
        process_symbol();
    } else {
        Warning("Unrecognized '.stab'-entry");
    }
}
