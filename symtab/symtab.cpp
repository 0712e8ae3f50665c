// Ahead of the final pass the first definition gives the value and any further one spoils the name;
// in the final pass all of them compare. Which of these applies is read from the pass and the flags
// alone, so whoever creates a record decides by its first flags what may become of it.
#include "symtab/symtab.h"

#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asStreams.h"
#include "as/asWatch.h"
#include "util/bitsize.h"
#include "util/text.h"

#include <algorithm>

std::int16_t forwardref = 0;

namespace {

std::string_view up_to_blank(std::string_view text) {
    return text.substr(0, static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isblanc) -
                                                   text.begin()));
}

std::string_view leading_run(std::string_view text) {
    return text.substr(
        0, static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_symbol_char) -
                                    text.begin()));
}

// Names without a place, among them all that are met by a reference first, belong to "abs".
Segment *segment_of_new(std::uint32_t flags) {
    if ((flags & SYM_EXTERNAL) != 0) {
        return nullptr;
    }
    return (flags & SYM_UNDEFINED) != 0 ? absolute_segment() : current_seg;
}

// The bit size is that of the value which a constant is created with.
Symbol *fill_in(Symbol *symbol, std::int32_t value, std::int32_t line, std::uint32_t flags,
                std::int32_t count) {
    symbol->definition_line = line;
    symbol->value = value;
    symbol->segment = segment_of_new(flags);
    symbol->flags = flags;
    symbol->element_count = count;
    symbol->file = current_file_index();
    symbol->bit_size = static_cast<std::int16_t>((flags & SYM_ABSOLUTE) != 0 ? bitsize(value) : -1);
    return symbol;
}

// A name that so far was referred to only gets its line here.
void compare_in_final_pass(Symbol &symbol, std::int64_t value, int check) {
    if (symbol.definition_line == 0) {
        symbol.definition_line = realline;
    }
    if (symbol.has(SYM_MULTIPLE)) {
        Error("Multiple definition");
    } else if (!symbol.has(SYM_VALUE_MARK | SYM_ABSOLUTE) && check != 0 && symbol.value != value) {
        // Quirk (high-labels): the stored value is signed, so it never equals an address from
        // $80000000 on.
        phase_error = 1;
        Error("Phase error between passes");
    }
}

void store_definition(Symbol &symbol, std::int64_t value) {
    symbol.value = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    symbol.flags |= SYM_DEFINED;
    symbol.definition_line = realline;
}

// A name becomes defined from undefined. Defining it again makes it multiply defined, which
// replaces all that was known of it and is not undone by any later definition.
void define_before_final_pass(Symbol &symbol, std::int64_t value) {
    if (symbol.has(SYM_MULTIPLE)) {
        return;
    }
    if (symbol.has(SYM_UNDEFINED)) {
        symbol.flags &= ~SYM_UNDEFINED;
        store_definition(symbol, value);
    } else if (symbol.has(SYM_DEFINED | SYM_EXTERNAL)) {
        symbol.flags = SYM_MULTIPLE;
    } else if (!symbol.has(SYM_OPEN_8 | SYM_OPEN_100 | SYM_OPEN_200)) {
        Error("(F1023)");
    } else {
        store_definition(symbol, value);
    }
}

} // namespace

Symbol *putsym(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
               int /*kind*/, const char * /*file*/, std::int32_t count) {
    return putname(up_to_blank(name), value, line, flags, count);
}

Symbol *putname(std::string_view name, std::int32_t value, std::int32_t line, std::uint32_t flags,
                std::int32_t count) {
    const EnteredName entered = enter_name(name);
    if (!entered.is_new) {
        Error("(F1024)");
        return nullptr;
    }
    return fill_in(entered.symbol, value, line, flags, count);
}

Symbol *getsym(std::string_view name) { return find_name(leading_run(name)); }

// A name that is referred to before it is defined gets its record here, so that the definition
// finds out that there has been a reference.
Symbol *lookup(std::string_view name) {
    const EnteredName entered = enter_name(name);
    return entered.is_new ? fill_in(entered.symbol, 0, 0, SYM_UNDEFINED, 0) : entered.symbol;
}

// What a forward reference is depends on the pass. Before the final pass it is a name that has no
// definition yet; in the final pass all have one, and it is a name that is defined further down.
Symbol *refsym(std::string_view name) {
    Symbol *symbol = lookup(name);
    note_reference(name, *symbol);
    return symbol;
}

void note_reference(std::string_view name, Symbol &symbol) {
    if (Pass2 != 0) {
        if (symbol.definition_line > realline) {
            forwardref = 1;
        }
        if (watcher != nullptr) {
            watcher->reference(ReferenceKind::kValue, name, symbol);
        }
    } else if (symbol.flags == SYM_UNDEFINED) {
        // Exactly these: a name that is marked already, or that a test has entered, stays as it is.
        symbol.flags |= SYM_FORWARD;
        symbol.first_reference_line = Line_no;
        forwardref = 1;
    }
}

const Symbol *defsym(std::string_view name, std::int64_t value, int check) {
    Symbol *symbol = lookup(name);
    if (Pass2 != 0) {
        if (watcher != nullptr) {
            watcher->definition(DefinitionKind::kLabel, *symbol);
        }
        compare_in_final_pass(*symbol, value, check);
    } else {
        define_before_final_pass(*symbol, value);
    }
    return symbol;
}

// In the order of the chains, which is that of the names' character codes summed up: tools compare
// tables line by line, so the order stays.
void symwrite(OutputFile &stream) {
    bool header_due = true;
    link_chains();
    for (const std::vector<const Symbol *> &chain : symheads) {
        for (const Symbol *symbol : chain) {
            if (header_due) {
                // Quirk (table-heads): the two headers differ by three blanks.
                stream.put(&stream == &standard_output
                               ? "\n--\tSYMBOL TABLE:\n--\tVALUE   \tSYMBOL \n"
                               : "\n--\tSYMBOL TABLE:\n--\tVALUE\tSYMBOL \n");
                header_due = false;
            }
            stream.put('\t');
            stream.put_hex(static_cast<std::uint32_t>(symbol->value), 4);
            stream.put('\t');
            stream.put(symbol->name_view());
            stream.put('\n');
        }
    }
}

void symdebugwrite(std::string & /*stream*/) {}

void prep_undefine() {
    for (std::vector<Symbol> &block : symlistptr) {
        for (Symbol &symbol : block) {
            // Quirk (tested-names): a name that a test has met first loses every definition here,
            // and only "#define" can define it anew. The flags of a debug-information name hold
            // this bit too.
            if (symbol.has(SYM_CONDITIONAL)) {
                symbol.flags = SYM_CONDITIONAL | SYM_UNDEFINED;
            }
        }
    }
}

void addstabsym(std::string_view text, std::int32_t value) {
    if (Pass2 == 0) {
        (void)putsym(text.substr(0, text.find(':')), value, realline, SYM_DEBUG, 0, nullptr, 0);
    }
}
