// The outputs differ in little: where the name comes from, whether an option asks for them, what is
// written ahead and at the end. A row of kOutputs says so, and each step of a run is a loop over
// the rows. The order of the steps is what the rows can't say:
//
// - All names are looked up before the first file is created, so that a refused run touches
// nothing.
// - The outputs that accompany the result are closed and published first. The result comes last,
// and
//   only when all is well: its being there tells a makefile that the others are there too.
// - What fails later than its creation is remembered in the file itself and reported once, after
// all
//   files are closed, since closing may fail as well.
#include "as/asOutputs.h"

#include "as/asCommand.h"
#include "as/asDebug.h"
#include "as/asDiag.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "as/asStreams.h"
#include "as/asWatch.h"
#include "symtab/symtab.h"
#include "target/carray.h"
#include "target/emit.h"
#include "target/location.h"
#include "target/script.h"
#include "target/srecord.h"
#include "util/path.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <unistd.h>

std::string File_name;
std::string FileTitle;
std::string Object_name;
std::string List_name;
std::string zirpafilename;

namespace {

constexpr std::size_t kOpenfilesNameLimit = 1023;

std::string array_name; // the C array file

// ---- The outputs ----

std::uint32_t entry_address() {
    if (entry_is_defined != 0) {
        return static_cast<std::uint32_t>(entryLC);
    }
    return default_entry_seen != 0 ? defaultentryLC : LC;
}

void end_object_file() {
    end_srecords(entry_address());
    if (O_symdebug != 0) {
        write_debug_part();
    }
}

// Where an output's name comes from.
enum class Naming {
    kOption, // the name given with -o itself; else the source's title and the suffix
    kTitle,  // the title of the name given with -o, else of the source, and the suffix
    kSource, // always the source's title and the suffix
};

// What isn't given doesn't apply: an output without an option is always wanted, one without a
// writer takes nothing.
struct Output {
    OutputFile &file;
    std::string &name;
    Naming naming;
    const char *suffix;
    // What the run is for: it ends when this can't be created. An old file keeps its owner and
    // mode. It appears last, when all is well, and is deleted otherwise.
    bool is_result = false;
    std::int16_t *option = nullptr;                  // cleared when the output can't be created
    const OutputFile *companion = nullptr;           // an output without which this one stays empty
    void (*warn)() = nullptr;                        // reports either; goes with an option
    void (*begin)() = nullptr;                       // when the file is created
    void (*head)(const std::string &name) = nullptr; // before the final pass
    ByteWriter byte_writer = nullptr;
    RecordWriter record_writer = nullptr;
    void (*tail)() = nullptr; // after the final pass

    bool is_wanted() const { return option == nullptr || *option != 0; }
};

// In the order in which the outputs are created and their failures reported.
constexpr std::array<Output, kOutputFiles> kOutputs = {{
    {.file = objectfile,
     .name = Object_name,
     .naming = Naming::kOption,
     .suffix = ".s19",
     .is_result = true,
     .record_writer = put_srecord,
     .tail = end_object_file},
    {.file = listfile,
     .name = List_name,
     .naming = Naming::kTitle,
     .suffix = ".lst",
     .option = &O_list,
     .warn = [] { Warning("Can't create listfile"); },
     .head = begin_listing,
     .tail = end_listing},
    // Quirk (array-needs-listing): without a listing the array stays empty, because it is the
    // listing that is asked for when the array is created.
    {.file = algofile,
     .name = array_name,
     .naming = Naming::kTitle,
     .suffix = "_cout.c",
     .option = &O_cout,
     .companion = &listfile,
     .warn = [] { Warning("Can't create C output file"); },
     .begin = begin_array,
     .byte_writer = put_array_value,
     .tail = end_array},
    // Quirk (script-name): after the source even with -o, where simulators look for it.
    {.file = zirpafile,
     .name = zirpafilename,
     .naming = Naming::kSource,
     .suffix = ".fmem",
     .head = begin_script,
     .record_writer = put_script_lines},
}};
static_assert(kOutputs.size() <= kMostTemporaryFiles);

// ---- Names ----

void derive_names(const char *file) {
    File_name = FilenameFromPath(file);
    FileTitle = File_name;
    RemoveExtension(FileTitle);
    std::string title = FileTitle;
    if (O_oflag != 0) {
        title = FilenameFromPath(OutputTitle.c_str());
        RemoveExtension(title);
    }
    for (const Output &output : kOutputs) {
        output.name = (output.naming == Naming::kTitle ? title : FileTitle) + output.suffix;
        if (output.naming == Naming::kOption && O_oflag != 0) {
            output.name = OutputTitle;
        }
    }
}

// ---- Outputs that must not be the same file ----

void tell_failure(FailureKind kind, const Output &output, const char *reason) {
    if (watcher != nullptr) {
        watcher->failure(kind, output.name.c_str(), reason);
    }
}

[[noreturn]] void refuse(const Output &output, const char *reason) {
    tell_failure(FailureKind::kCreate, output, reason);
    vpFatal("Cannot create output fil '%s'", output.name.c_str());
}

bool is_standard_stream(const Destination &destination) {
    constexpr std::array kStreams = {STDOUT_FILENO, STDERR_FILENO};
    return std::any_of(kStreams.begin(), kStreams.end(), [&](int stream) {
        const auto file = regular_file(stream);
        return file && destination.is_file(*file);
    });
}

// Why an output can't go where its name leads to; null if it can. The earlier ones have their
// place.
const char *obstacle(const Output &output, const std::vector<const Destination *> &earlier) {
    Destination &destination = output.file.destination();
    const OldFile old_file = output.is_result ? OldFile::kRewritten : OldFile::kReplaced;
    if (!destination.look_up(output.name, old_file)) {
        return std::strerror(errno);
    }
    if (is_source_file(destination)) {
        return "it is the source";
    }
    // Messages would overwrite it.
    if (is_standard_stream(destination)) {
        return "messages go there";
    }
    const bool is_taken =
        std::any_of(earlier.begin(), earlier.end(),
                    [&](const Destination *other) { return destination.is_same_file(*other); });
    return is_taken ? "another output goes there" : nullptr;
}

// Ends the run if an output is the same file as the source, a standard stream or an output before
// it.
void refuse_colliding_outputs() {
    std::vector<const Destination *> earlier;
    for (const Output &output : kOutputs) {
        if (!output.is_wanted() || output.file.is_diverted()) {
            continue;
        }
        if (const char *reason = obstacle(output, earlier); reason != nullptr) {
            refuse(output, reason);
        }
        earlier.push_back(&output.file.destination());
    }
}

// ---- Creation ----

// Goes on without an output that can't be created, unless it is the result.
void create(const Output &output) {
    const bool created = output.file.create();
    if (!created) {
        const char *reason = std::strerror(errno);
        if (output.is_result) {
            refuse(output, reason);
        }
        tell_failure(FailureKind::kCreate, output, reason);
    }
    if (created && (output.companion == nullptr || output.companion->is_open())) {
        if (output.begin != nullptr) {
            output.begin();
        }
        emit_to(output.byte_writer, output.record_writer);
    } else if (output.option != nullptr) {
        output.warn();
        *output.option = 0;
    }
}

// ---- Close-down ----

// A run that is watched keeps nothing of a failure but the listing: nobody is to take a script or
// an array for good.
bool is_result(const Output &output) {
    return output.is_result || (watcher != nullptr && &output.file != &listfile);
}

// A watcher counts the errors that the program loses sight of too.
bool has_errors() { return watcher != nullptr ? watcher->has_failed() : Errors != 0; }

bool any_has_failed() {
    return std::any_of(kOutputs.begin(), kOutputs.end(),
                       [](const Output &output) { return output.file.has_failed(); });
}

bool all_is_well() { return !has_errors() && !any_has_failed(); }

// Applies an action to the results, or to all other outputs. The S-record file comes last.
template <typename Action> void for_each(bool results, Action action) {
    for (std::size_t i = kOutputs.size(); i-- > 0;) {
        if (is_result(kOutputs[i]) == results) {
            action(kOutputs[i].file);
        }
    }
}

void close_side_outputs() {
    for_each(false, [](OutputFile &file) { file.close(); });
}

} // namespace

void outputs_new_run() {
    abandon_outputs();
    File_name.clear();
    FileTitle.clear();
    for (const Output &output : kOutputs) {
        output.file.divert({});
        output.file.destination().forget();
        output.file.forget_failure();
        output.name.clear();
    }
}

void divert_outputs(const std::array<Sink, kOutputFiles> &sinks) {
    for (std::size_t i = 0; i < kOutputs.size(); ++i) {
        kOutputs[i].file.divert(sinks[i]);
    }
}

std::array<std::string, kOutputFiles> names_of_outputs() {
    std::array<std::string, kOutputFiles> names;
    for (std::size_t i = 0; i < kOutputs.size(); ++i) {
        if (kOutputs[i].is_wanted()) {
            names[i] = kOutputs[i].name;
        }
    }
    return names;
}

int openfiles(const char *file) {
    if (std::strlen(file) > kOpenfilesNameLimit || push_source(file) == 0) {
        return 0;
    }
    derive_names(file);
    refuse_colliding_outputs();
    for (const Output &output : kOutputs) {
        if (output.is_wanted()) {
            create(output);
        }
    }
    return 1;
}

void write_headers() {
    for (const Output &output : kOutputs) {
        if (output.is_wanted() && output.head != nullptr) {
            output.head(output.name);
        }
    }
}

void CloseDown() {
    for (const Output &output : kOutputs) {
        if (output.is_wanted() && output.tail != nullptr) {
            output.tail();
        }
    }
    close_side_outputs();
    // What the buffers hold is not worth writing after errors. Closing may fail as well.
    if (!has_errors()) {
        for_each(true, [](OutputFile &file) { file.finish(); });
    }
    if (all_is_well()) {
        for_each(true, [](OutputFile &file) { file.publish(); });
    }
    if (!all_is_well()) {
        for_each(true, [](OutputFile &file) { file.withdraw(); });
    }
    closesym();
}

bool report_write_failures() {
    for (const Output &output : kOutputs) {
        if (output.file.has_failed()) {
            tell_failure(FailureKind::kWrite, output, std::strerror(output.file.failure()));
            standard_output.put({kProgramName, ": Can't write '", output.name, "'\n"});
        }
    }
    return any_has_failed();
}

void close_outputs() {
    if (watcher != nullptr) {
        abandon_outputs();
        return;
    }
    close_side_outputs();
    for_each(true, [](OutputFile &file) { file.close(); });
}

void abandon_outputs() {
    close_side_outputs();
    for_each(true, [](OutputFile &file) {
        if (file.is_open()) {
            file.withdraw();
        }
    });
}
