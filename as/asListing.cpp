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

#include <algorithm>
#include <array>
#include <string_view>

int listing_on = 0;
int uncond_listing_on = 0;

namespace {

// Bytes of a listing line.
constexpr std::size_t kColumns = 6;
constexpr unsigned kLineNumberWidth = 4;
constexpr std::string_view kEmptyColumns = "                  ";
static_assert(kEmptyColumns.size() == 3 * kColumns);

void put_byte_columns(std::size_t first) {
    std::array<char, kEmptyColumns.size()> text;
    char *end = text.data();
    for (std::size_t i = first; i < std::min(first + kColumns, code_i); ++i) {
        *end++ = ' ';
        end = hex_byte(end, Code[i]);
    }
    std::fill(end, text.data() + text.size(), ' ');
    listfile.put(std::string_view(text.data(), text.size()));
}

// No directive chooses words; they would be for data that is wider than a byte.
void put_word_columns(std::size_t first) {
    for (std::size_t i = first; i < first + kColumns; i += 2) {
        if (i < code_i) {
            listfile.put(' ');
            listfile.put_hex_byte(Code[i]);
            listfile.put_hex_byte(Code[i + 1]);
        } else {
            listfile.put("     ");
        }
    }
    listfile.put("   ");
}

void put_columns(std::size_t first) {
    if (Byte_Extension != 0) {
        put_byte_columns(first);
    } else {
        put_word_columns(first);
    }
}

// The text brings its own line end.
void put_number_and_text() {
    listfile.put(' ');
    listfile.put_decimal(listline, kLineNumberWidth);
    listfile.put(". ");
    listfile.put(Line.view());
}

// Quirk (blank-row): a count of 12, 18 or more full rows is followed by one line of blanks.
void put_continuation_lines() {
    std::size_t first = kColumns;
    do {
        listfile.put("    ");
        put_columns(first);
        listfile.put('\n');
        first += kColumns;
    } while (code_i >= first);
}

void put_line() {
    const bool is_value = pending_listLC == 0 && IsEquDirective != 0;
    if (is_value) {
        // Quirk (equ-low-byte): the value has 32 bits, but one column.
        listfile.put_hex_byte(Code[1]);
        listfile.put(kEmptyColumns);
        put_number_and_text();
        return;
    }
    if (pending_listLC != 0) {
        listfile.put_hex_byte(listLC);
    } else {
        listfile.put("  ");
    }
    put_columns(0);
    put_number_and_text();
    if (code_i > kColumns) {
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

void as_write_listline(bool is_skipped) {
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
