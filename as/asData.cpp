// All three define the line's label first, at the location where their bytes begin, then emit, and
// then register the size with the last seen label. Pass 1 goes the same way, because the bytes that
// are not emitted yet still move the location counter.
#include "as/asData.h"

#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "expr/evaluate.h"
#include "expr/record.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/reloc.h"
#include "util/text.h"
#include "util/wrap.h"

std::int64_t reservation_limit = std::int64_t{1} << 32U;

namespace {

constexpr int kFailed = -1;

// In the final pass, adds data to what is registered for the last seen label, if there is one.
void register_size(std::int32_t count, std::uint16_t element_size) {
    if (Pass2 == 0 || last_seen_label.empty()) {
        return;
    }
    Symbol *symbol = getsym(last_seen_label);
    if (symbol == nullptr) {
        Error("RegisterSymSize failed");
        return;
    }
    // The first directive sets the type of the data, those after it make it longer.
    if (last_seen_label_offset == 0) {
        symbol->element_count = count;
        symbol->element_size = element_size;
        last_seen_label_offset = static_cast<std::uint32_t>(count) * std::uint32_t{element_size};
    } else {
        symbol->element_count = signed_32(wrap_add(symbol->element_count, count));
    }
}

// A byte that is written plainly, and where its text ends; null where none stands.
struct PlainByte {
    unsigned value;
    const char *end;
};

PlainByte two_hex_digits(const char *p) {
    const unsigned high = digit_value(p[0]);
    const unsigned low = digit_value(p[1]);
    return {high << 4U | low, (high | low) < 16 ? p + 2 : nullptr};
}

// A number may have more digits than fit; they are left to the expression.
PlainByte decimal_digits(const char *p) {
    unsigned value = 0;
    const char *end = p;
    for (; is_digit(*end) && end < p + 3; ++end) {
        value = value * 10 + digit_value(*end);
    }
    return {value, end != p && value <= 0xFF ? end : nullptr};
}

// Emits a byte that is written as "$" and two digits or in decimal, as most data are, with a blank
// or a comma after it. False, and nothing done, for any other item.
//
// Fast path: without it the data workload takes 19 % more processor time. To measure it again,
// return false at once.
bool plain_byte() {
    const PlainByte byte = *Col_Ptr == '$' ? two_hex_digits(Col_Ptr + 1) : decimal_digits(Col_Ptr);
    if (byte.end == nullptr || !has_class(*byte.end, kClassOperandEnd)) {
        return false;
    }
    Col_Ptr = byte.end;
    ebyte(byte.value);
    return true;
}

// Emits the value of an expression. False after an error.
bool data_expression() {
    return ppexpr(opnd1, 1) == 0 && do_reloc_cmd(opnd1, REL_CMD_OFF_8, LC) == 0;
}

// The byte that a character after a backslash stands for.
char escaped(char ch) {
    switch (ch) {
    case 'b': return 8;
    case 'n': return 10;
    case 'r': return 13;
    // Quirk (vertical-tab): a vertical tab, not a horizontal one.
    case 't': return 11;
    // Quirk (one-digit): a digit is a code of its own, and the next one is text.
    default: return is_digit(ch) ? static_cast<char>(ch - '0') : ch;
    }
}

// Takes one character of a string and emits it. False when the text has ended.
bool string_character() {
    char ch = *Col_Ptr;
    if (ch == '\0') {
        return false;
    }
    ++Col_Ptr;
    if (ch == '\\') {
        if (*Col_Ptr == '\0') {
            return false;
        }
        ch = escaped(*Col_Ptr++);
    } else if (static_cast<unsigned char>(ch) >= 128) {
        Warning("Illegal ASCII character");
    }
    ebyte(static_cast<unsigned char>(ch));
    return true;
}

} // namespace

int do_define_data() {
    define_directive_label();
    std::int32_t count = 0;
    ClearOp(opnd1);
    while (true) {
        if (!plain_byte() && !data_expression()) {
            return kFailed;
        }
        ++count;
        const char delimiter = *Col_Ptr;
        if (isblanc(delimiter)) {
            break;
        }
        if (delimiter != ',') {
            return fail("Bad delimiter");
        }
        ++Col_Ptr;
    }
    Byte_Extension = 1;
    register_size(count, 1);
    return 1;
}

int do_define_characters(char delimiter, int terminate) {
    define_directive_label();
    if (*Col_Ptr != delimiter) {
        return fail("Bad operand syntax");
    }
    ++Col_Ptr;
    std::int32_t count = 0;
    // Quirk (first-character): the first character is content even when it is the delimiter.
    // Quirk (unclosed-text): the line feed is content too, so a text that is not closed emits it.
    do {
        if (!string_character()) {
            break;
        }
        ++count;
    } while (*Col_Ptr != delimiter && *Col_Ptr != '\0');
    if (*Col_Ptr == '\0') {
        return fail("Bad operand syntax");
    }
    // Quirk (directive-tail): whatever follows the text is not looked at.
    if (terminate != 0) {
        ebyte(0);
    }
    register_size(count, 1);
    return Pass2 != 0 ? 2 : 1;
}

int do_reserve_memory(int unit) {
    define_directive_label();
    ClearOp(opnd1);
    if (ppexpr(opnd1, 1) != 0) {
        return kFailed;
    }
    if (!isblanc(*Col_Ptr)) {
        return fail("Bad constant delimiter");
    }
    const std::int64_t bytes = wrap_multiply(unit, opnd1.value);
    // More than the address space can't be meant.
    if (bytes < 1 || bytes > reservation_limit) {
        return fail("Undetermined size for reservation of storage");
    }
    register_size(signed_32(opnd1.value), static_cast<std::uint16_t>(unit));
    emit_zeros(static_cast<std::uint64_t>(bytes));
    return kFailed;
}
