#include "as/asDebug.h"

#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOutput.h"
#include "as/asPlace.h"
#include "as/asRead.h"
#include "expr/expr.h"
#include "symtab/symtab.h"
#include "target/location.h"
#include "util/format.h"
#include "util/number.h"
#include "util/text.h"
#include "util/wrap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

namespace {

// Fixed columns of a ".stab" line, 0-based.
constexpr std::size_t kKeywordColumn = 6;
constexpr std::size_t kSymbolKindColumn = 10;
constexpr std::size_t kOperandColumn = 11;
constexpr std::size_t kSymbolOperandColumn = 12;

constexpr int kDecimal = 10;
// Digits of a symbol's value in a record.
constexpr unsigned kValueDigits = 8;

void append(std::initializer_list<std::string_view> parts) {
    for (const std::string_view part : parts) {
        symdebfile.append(part);
    }
}

// Writes a mark and a field's text; returns the position behind them.
char *put_field(char *text, char mark, std::string_view field) {
    *text++ = mark;
    return std::copy(field.begin(), field.end(), text);
}

std::string_view current_file() { return getCurrentFileInfo(-1)->name; }

std::string_view current_segment() {
    return current_seg == nullptr ? std::string_view() : current_seg->name;
}

std::string decimal(std::int64_t value) {
    NumberText text;
    return std::string(decimal_text(text, value));
}

std::string hex_value(std::int64_t value) {
    NumberText text;
    return std::string(hex_text(text, static_cast<std::uint64_t>(value), kValueDigits));
}

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
        symdebfile.append(Line.view());
    }
}

void process_function() {
    const std::string text = operand_text(kOperandColumn);
    const char *p = text.c_str();
    const Symbol *function = getsym(take_field(p));
    std::array<std::string, 3> numbers;
    for (std::string &number : numbers) {
        number = decimal(decimal_field(take_field(p)));
    }
    std::array<const Symbol *, 3> labels{};
    for (const Symbol *&found : labels) {
        const std::string name = take_field(p);
        found = getsym(name);
        if (found == nullptr) {
            vpWarning("Debug label '%s' is missing", name.c_str());
            return;
        }
    }
    append({"SY:C:f:", current_file(), ":", current_segment(), ":",
            function == nullptr ? std::string_view() : function->name_view(), ":", numbers[0], ":",
            numbers[1], ":", numbers[2], ":", hex_value(labels[0]->value), ":",
            hex_value(labels[1]->value), ":", hex_value(wrap_subtract(labels[2]->value, 1)), "\n"});
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
    append({"ST:", current_file(), ":", text});
    if (line_divided(Line_Ptr)) {
        copy_continuation_lines();
    } else {
        symdebfile += '\n';
    }
}

void process_local_symbol(const char *p) {
    std::array<std::string, 3> fields;
    for (std::string &field : fields) {
        field = take_field(p);
    }
    const std::string number = decimal(decimal_field(take_field(p)));
    append({"SY:C:S:L:", current_file(), ":", current_segment(), ":", fields[0], ":", fields[1],
            ":", fields[2], ":", number, ":", p, "\n"});
}

void process_global_or_static_symbol(char kind, const char *p) {
    const std::string first = take_field(p);
    const std::string name = take_field(p);
    std::uint32_t line_number = 0;
    if (ascii_to_number(take_field(p).c_str(), line_number) != 0) {
        Warning("Warning: Bad line number in symdebug info");
    }
    const std::string line = decimal(static_cast<std::int32_t>(line_number));
    std::string value;
    if (kind == 'v' || kind == 'f') {
        const Symbol *symbol = getsym(name);
        if (symbol == nullptr) {
            vpWarning("Symbol '%s:%s' is missing", first.c_str(), name.c_str());
        }
        value = hex_value(symbol == nullptr ? 0 : symbol->value) + ":";
    }
    if (kind == 'v' || kind == 'V') {
        append({"SY:C:S:", std::string_view(&kind, 1), ":", current_file(), ":", current_segment(),
                ":", first, ":", name, ":", value, line, ":", p, "\n"});
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

void reserve_debug_records(int lines) {
    constexpr std::size_t kUsualFields = 24; // bytes behind the file's name
    constexpr std::size_t kMostReserved = std::size_t{1} << 24U;
    const std::size_t usual =
        static_cast<std::size_t>(lines) * (current_file().size() + kUsualFields);
    symdebfile.reserve(std::min(usual, kMostReserved));
}

void asm_write_sd_exec(int line, std::int32_t count, std::uint32_t address) {
    NumberText number;
    // Behind the file's name: line, count, segment and address, each with its mark.
    std::array<char, 4 * NumberText().size() + kSegmentNameLimit> fields;
    char *end = put_field(fields.data(), ':', decimal_text(number, line));
    end = put_field(end, ':', decimal_text(number, count));
    end = put_field(end, ':', current_segment());
    end = put_field(end, ':', hex_text(number, address, 1));
    *end++ = '\n';
    append({"SY:C:X:", current_file(), text_between(fields.data(), end)});
}

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
