// A listed line is address, bytes and the line as it was read. It is written after the line has
// been carried out, since only then its bytes are known; so its messages, which are written at
// once, stand above it. The name of a file follows its first line for the same reason.
#include "as/asListing.h"

#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "target/emit.h"
#include "target/encode.h"
#include "util/format.h"

#include <algorithm>
#include <string_view>

int listing_on = 0;
int uncond_listing_on = 0;

namespace {

// Bytes of a listing line.
constexpr std::size_t kColumns = 6;
constexpr std::size_t kLineNumberWidth = 4;
constexpr std::string_view kEmptyColumns = "                  ";
static_assert(kEmptyColumns.size() == 3 * kColumns);

// Lines are composed where they stand in the output; each of these writes at a position and returns
// the one after it.

char *write_text(char *end, std::string_view text) {
    return std::copy(text.begin(), text.end(), end);
}

char *write_byte_columns(char *end, std::size_t first) {
    char *columns_end = write_text(end, kEmptyColumns);
    for (std::size_t i = first; i < std::min(first + kColumns, code_i); ++i) {
        end = hex_byte(end + 1, Code[i]);
    }
    return columns_end;
}

// No directive chooses words; they would be for data that is wider than a byte.
char *write_word_columns(char *end, std::size_t first) {
    for (std::size_t i = first; i < first + kColumns; i += 2) {
        if (i < code_i) {
            *end++ = ' ';
            end = hex_byte(hex_byte(end, Code[i]), Code[i + 1]);
        } else {
            end = write_text(end, "     ");
        }
    }
    return write_text(end, "   ");
}

char *write_columns(char *end, std::size_t first) {
    return Byte_Extension != 0 ? write_byte_columns(end, first) : write_word_columns(end, first);
}

// The address, or the value of a constant, and the bytes after it.
char *write_address_and_bytes(char *end) {
    if (pending_listLC != 0) {
        return write_columns(hex_byte(end, listLC), 0);
    }
    if (IsEquDirective != 0) {
        // Quirk (equ-low-byte): the value has 32 bits, but one column.
        return write_text(hex_byte(end, Code[1]), kEmptyColumns);
    }
    return write_columns(write_text(end, "  "), 0);
}

char *write_line_number(char *end) {
    NumberText text;
    const std::string_view digits = decimal_text(text, listline);
    *end++ = ' ';
    for (std::size_t length = digits.size(); length < kLineNumberWidth; ++length) {
        *end++ = ' ';
    }
    return write_text(write_text(end, digits), ". ");
}

// Quirk (blank-row): a count of 12, 18 or more full rows is followed by one line of blanks.
void put_continuation_lines() {
    std::size_t first = kColumns;
    do {
        char *line = listfile.room(kRoomLimit);
        char *end = write_columns(write_text(line, "    "), first);
        *end++ = '\n';
        listfile.add(end);
        first += kColumns;
    } while (code_i >= first);
}

// The text brings its own line end. A constant has no bytes to go on with.
void put_line() {
    char *line = listfile.room(kRoomLimit);
    listfile.add(write_line_number(write_address_and_bytes(line)));
    listfile.put(Line.view());
    const bool is_value = pending_listLC == 0 && IsEquDirective != 0;
    if (code_i > kColumns && !is_value) {
        put_continuation_lines();
    }
}

void put_file_header() {
    newuse = 0;
    listfile.put({"---- File: \"", getCurrentFileInfo(-1)->name, "\"\n"});
}

} // namespace

void begin_listing(const std::string &name) {
    put_banner(listfile);
    listfile.put({"\n", kNotice, "\n\n", "\nFile: ", name, "\n"});
    listing_on = 1;
}

void end_listing() {
    if (Errors != 0) {
        listfile.put("\n\n****** Total Errors: ");
        listfile.put_decimal(Errors);
        listfile.put('\n');
    }
}

void write_wanted_line(bool is_skipped) {
    if (O_symdebug != 0 && isinstruction != 0 && O_compiler_generated_input == 0) {
        asm_write_sd_exec(Line_no, 1, listLC);
    }
    if (O_list == 0 || listing_on == 0 || Pass2 == 0) {
        return;
    }
    if (is_skipped && uncond_listing_on == 0) {
        return;
    }
    put_line();
    if (newuse != 0) {
        put_file_header();
    }
}

void listing_new_run() {
    listing_on = 0;
    listing_new_pass();
}

void listing_new_pass() { uncond_listing_on = 0; }
