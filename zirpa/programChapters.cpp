// The chapters of what dis and diff say of the files that they read.
#include "zirpa/chapters.h"

#include <array>

namespace {

constexpr std::array kChapters = std::to_array<Chapter>({
    {"unknown-format", Severity::kError,
     "The file holds neither S-records nor a script nor a C array.",
     "If it is a plain image, say at which address it begins: `--base '$10'`. `--from` names the "
     "format where it can't be seen.",
     ""},
    {"bad-record", Severity::kError,
     "A line of S-records does not begin with `S` and a digit other than 4, or has something in it "
     "that is no hexadecimal digit.",
     "Make the file again; transfers that change characters are the usual reason.", ""},
    {"record-length", Severity::kError,
     "The length in an S-record is not the number of bytes that follow it, or is none that a "
     "record "
     "of this type can have.",
     "Make the file again: the line has been cut, or joined with another one.", ""},
    {"record-checksum", Severity::kError,
     "The checksum of an S-record is not that of its bytes, so one of them is wrong.",
     "Make the file again. Who has changed a byte by hand puts the checksum that is named at the "
     "end "
     "of the line.",
     ""},
    {"record-count", Severity::kError,
     "A record of type S5 or S6 counts the data records, and there are more or fewer of them.",
     "Make the file again: a line is missing, or there twice.", ""},
    {"record-order", Severity::kError,
     "A header (S0) comes after other records, or something else than debug records comes after "
     "the "
     "end record (S7, S8, S9).",
     "Two files that have been joined are to be read one by one.", ""},
    {"cut-file", Severity::kError,
     "The file ends too early: without an end record, or within an array.",
     "Make the file again. S-records end with one of type S7, S8 or S9.", ""},
    {"set-twice", Severity::kError,
     "A byte is given twice. No source says which of the two is meant, and not every loader takes "
     "the same.",
     "Look at the `ORG` lines of the source; `zirpa check` warns of them.", ""},
    {"address-beyond-ffff", Severity::kError,
     "A byte or the start of the program has an address beyond FFFF. Programs of this processor "
     "end "
     "at FF, and nothing is read from beyond FFFF.",
     "Give another `--base`, or cut the file.", ""},
    {"bad-command", Severity::kError,
     "A line of a script is not a command that sets or clears memory.",
     "Remove it. Only the lines above the first command may hold any text.", ""},
    {"bad-array", Severity::kError,
     "An array is something else than numbers from 0 to 255 with commas between them, in braces.",
     "Leave the array alone in the file; comments may stay.", ""},
    {"bad-hint", Severity::kError, "A line of a file with hints can't be read.",
     "A line holds `code`, `data`, `string`, `table` or `label` and its operand, and comments "
     "begin "
     "with `;`. Addresses are `$1C`, `0x1C` or `28`.",
     ""},
    {"bad-symbols", Severity::kError, "A file that is to hold a symbol table does not.",
     "Give what `zirpa build --symbols` prints, or a listing made with it.", ""},
    {"not-reproduced", Severity::kError,
     "With `--verify`: the source does not assemble to the bytes that it was made of. Nothing is "
     "written.",
     "This is a fault of the program. Please report it with the file.", ""},
});

} // namespace

std::span<const Chapter> program_chapters() { return kChapters; }
