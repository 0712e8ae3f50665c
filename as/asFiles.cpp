#include "as/asFiles.h"

#include "as/asCommand.h"
#include "as/asDiag.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asOutput.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/location.h"
#include "util/path.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <unistd.h>

std::string File_name;
std::string FileTitle;
std::string Object_name;
std::string List_name;
std::string zirpafilename;
std::string startsymname;

namespace {

constexpr std::size_t kOpenfilesNameLimit = 1023;

std::string array_name; // the C array file

// ---- Outputs that must not be the same file ----

[[noreturn]] void refuse_output(const std::string &name) {
    vpFatal("Cannot create output fil '%s'", name.c_str());
}

// The outputs, in the order of their creation.
struct Output {
    OutputFile &file;
    const std::string &name;
    OldFile old_file;
    bool is_wanted; // until it can't be created
};

std::array<Output, 4> outputs() {
    return {{{objectfile, Object_name, OldFile::kRewritten, true},
             {listfile, List_name, OldFile::kReplaced, O_list != 0},
             {algofile, array_name, OldFile::kReplaced, O_cout != 0},
             {zirpafile, zirpafilename, OldFile::kReplaced, true}}};
}

// Ends the run if an output is the same file as the source or an output before it, or as a standard
// stream: messages would overwrite it.
void refuse_colliding_outputs() {
    const auto printed = regular_file(STDOUT_FILENO);
    const auto complained = regular_file(STDERR_FILENO);
    std::vector<const Destination *> earlier;
    for (const Output &output : outputs()) {
        if (!output.is_wanted) {
            continue;
        }
        Destination &destination = output.file.destination();
        if (!destination.look_up(output.name, output.old_file) || is_source_file(destination) ||
            (printed && destination.is_file(*printed)) ||
            (complained && destination.is_file(*complained)) ||
            std::any_of(earlier.begin(), earlier.end(), [&](const Destination *other) {
                return destination.is_same_file(*other);
            })) {
            refuse_output(output.name);
        }
        earlier.push_back(&destination);
    }
}

// ---- Creation ----

// Fills the names; returns the base of the listing's and the C array's.
std::string derive_names(const char *file) {
    File_name = FilenameFromPath(file);
    FileTitle = File_name;
    RemoveExtension(FileTitle);
    // Quirk (script-name): after the source even with -o, where simulators look for it.
    zirpafilename = FileTitle + ".fmem";
    if (O_oflag == 0) {
        Object_name = FileTitle + ".s19";
        return FileTitle;
    }
    Object_name = OutputTitle;
    std::string base = FilenameFromPath(OutputTitle.c_str());
    RemoveExtension(base);
    return base;
}

void create_listing() {
    if (!listfile.create()) {
        Warning("Can't create listfile");
        O_list = 0;
    }
}

void create_array_file() {
    const bool created = algofile.create();
    algofilecount = 0;
    // Quirk (array-needs-listing): without a listing the array stays empty, because it is the
    // listing that is asked for here.
    if (!listfile.is_open() || !created) {
        Warning("Can't create C output file");
        O_cout = 0;
        return;
    }
    algofile.put("const unsigned char algo[] = {\n");
}

void create_outputs() {
    if (!objectfile.create()) {
        refuse_output(Object_name);
    }
    if (O_list != 0) {
        create_listing();
    }
    if (O_cout != 0) {
        create_array_file();
    }
    (void)zirpafile.create();
}

void put_banner(OutputFile &out) {
    out.put({kProgramName, " - ", kProcessorName, " Absolute crossassembler, Version ", kVersion});
}

bool any_has_failed() {
    const auto all = outputs();
    return std::any_of(all.begin(), all.end(),
                       [](const Output &output) { return output.file.has_failed(); });
}

std::uint32_t entry_address() {
    if (entry_is_defined != 0) {
        return static_cast<std::uint32_t>(entryLC);
    }
    return default_entry_seen != 0 ? defaultentryLC : LC;
}

} // namespace

void files_new_run() {
    File_name.clear();
    FileTitle.clear();
    Object_name.clear();
    List_name.clear();
    array_name.clear();
    zirpafilename.clear();
    startsymname = "start";
}

int openfiles(const char *file) {
    if (std::strlen(file) > kOpenfilesNameLimit || push_source(file) == 0) {
        return 0;
    }
    const std::string base = derive_names(file);
    List_name = base + ".lst";
    array_name = base + "_cout.c";
    refuse_colliding_outputs();
    create_outputs();
    return 1;
}

void write_headers() {
    if (O_list != 0) {
        put_banner(listfile);
        listfile.put({"\n", kNotice, "\n\n", "\nFile: ", List_name, "\n"});
        listing_on = 1;
    }
    put_banner(zirpafile);
    zirpafile.put({"\n", kNotice, "\nFile: ", zirpafilename, "\n", "\n # ClearAllMemory",
                   "\n # ClearAllRegisters"});
}

void CloseDown() {
    if (O_cout != 0) {
        end_array();
    }
    putout();
    outrecinit(kEndRecord16, entry_address());
    putout();
    if (O_symdebug != 0) {
        objectfile.put({"SX:C:s:", startsymname, "\n", symdebfile});
        symdebfile.clear();
    }
    if (Errors != 0 && listfile.is_open()) {
        listfile.put("\n\n****** Total Errors: ");
        listfile.put_decimal(Errors);
        listfile.put('\n');
    }
    close_side_outputs();
    if (Errors == 0) {
        objectfile.finish();
        if (!any_has_failed()) {
            objectfile.publish();
        }
    }
    if (Errors != 0 || any_has_failed()) {
        objectfile.withdraw();
    }
    closesym();
}

bool report_write_failures() {
    for (const Output &output : outputs()) {
        if (output.file.has_failed()) {
            standard_output.put({kProgramName, ": Can't write '", output.name, "'\n"});
        }
    }
    return any_has_failed();
}
