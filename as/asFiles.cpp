#include "as/asFiles.h"

#include "as/asCommand.h"
#include "as/asDiag.h"
#include "as/asList.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asOutput.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "util/path.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include <sys/stat.h>
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

// What a path leads to: an existing file, or a name in an existing directory. Files that are not
// regular hold nothing that could be lost.
struct Identity {
    bool is_regular_or_new = false;
    dev_t device = 0;
    ino_t inode = 0;
    std::string name; // of a file that does not exist yet

    bool operator==(const Identity &other) const {
        return is_regular_or_new && other.is_regular_or_new && device == other.device &&
               inode == other.inode && name == other.name;
    }
};

std::string directory_of(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

[[noreturn]] void refuse_output(const std::string &name) {
    vpFatal("Cannot create output fil '%s'", name.c_str());
}

// Goes on only if a look-up has failed because there is no such file. After any other failure it is
// not known what an output would overwrite.
void expect_absence(int error, const std::string &name) {
    if (error != ENOENT && error != ENOTDIR && error != ELOOP && error != ENAMETOOLONG) {
        refuse_output(name);
    }
}

// Follows a symbolic link that leads to no existing file; other paths stay as they are.
std::string follow_dangling_links(const std::string &name) {
    constexpr int kMostLinks = 40;
    std::array<char, 4096> target{};
    std::string path = name;
    for (int i = 0; i < kMostLinks; ++i) {
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length <= 0) {
            if (errno != EINVAL) { // what EINVAL tells about is no link
                expect_absence(errno, name);
            }
            break;
        }
        const std::string link(target.data(), static_cast<std::size_t>(length));
        if (PathHasRoot(link.c_str())) {
            path = link;
        } else {
            path = directory_of(path).append("/").append(link);
        }
    }
    return path;
}

Identity identify(const std::string &path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        return {S_ISREG(status.st_mode), status.st_dev, status.st_ino, {}};
    }
    expect_absence(errno, path);
    const std::string target = follow_dangling_links(path);
    if (stat(directory_of(target).c_str(), &status) != 0) {
        expect_absence(errno, path);
        return {};
    }
    const std::size_t slash = target.rfind('/');
    return {true, status.st_dev, status.st_ino,
            slash == std::string::npos ? target : target.substr(slash + 1)};
}

// Ends the run if an output is the source or the same file as an output before it.
void refuse_colliding_outputs(const std::vector<std::string> &names) {
    std::vector<Identity> taken;
    for (const std::string &name : names) {
        const Identity identity = identify(name);
        bool collides = identity.is_regular_or_new && identity.name.empty() &&
                        is_source_file(identity.device, identity.inode);
        for (const Identity &other : taken) {
            collides = collides || identity == other;
        }
        if (collides) {
            refuse_output(name);
        }
        taken.push_back(identity);
    }
}

// ---- Creation ----

// Fills the names; returns the base of the listing's and the C array's.
std::string derive_names(const char *file) {
    File_name = FilenameFromPath(file);
    FileTitle = File_name;
    RemoveExtension(FileTitle);
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

bool replace_file(OutputFile &file, const std::string &name) {
    delete_output(name.c_str());
    return file.create(name.c_str());
}

void create_listing() {
    if (!replace_file(listfile, List_name)) {
        Warning("Can't create listfile");
        O_list = 0;
    }
}

void create_array_file() {
    const bool created = replace_file(algofile, array_name);
    algofilecount = 0;
    // Kept: without a listing the array stays empty, because it is the listing that is asked for
    // here.
    if (!listfile.is_open() || !created) {
        Warning("Can't create C output file");
        O_cout = 0;
        return;
    }
    algofile.put("const unsigned char algo[] = {\n");
}

void create_outputs() {
    if (!objectfile.create(Object_name.c_str())) {
        refuse_output(Object_name);
    }
    if (O_list != 0) {
        create_listing();
    }
    if (O_cout != 0) {
        create_array_file();
    }
    (void)replace_file(zirpafile, zirpafilename);
}

void put_banner(OutputFile &out) {
    out.put({kProgramName, " - ", kProcessorName, " Absolute crossassembler, Version ", kVersion});
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
    std::vector<std::string> names = {Object_name};
    if (O_list != 0) {
        List_name = base + ".lst";
        names.push_back(List_name);
    }
    if (O_cout != 0) {
        array_name = base + "_cout.c";
        names.push_back(array_name);
    }
    names.push_back(zirpafilename);
    refuse_colliding_outputs(names);
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

void abandon_outputs() {
    if (objectfile.is_open()) {
        objectfile.discard();
        delete_output(Object_name.c_str());
    }
    listfile.close();
    algofile.close();
    zirpafile.close();
}

void CloseDown() {
    if (O_cout != 0) {
        end_array();
    }
    algofile.close();
    putout();
    outrecinit(kEndRecord16, entry_address());
    putout();
    if (O_symdebug != 0) {
        objectfile.put({"SX:C:s:", startsymname, "\n", symdebfile});
        symdebfile.clear();
    }
    zirpafile.close();
    if (Errors == 0) {
        objectfile.close();
    } else {
        // The end record is not written, so that the file is not taken for whole if it can't be
        // deleted.
        objectfile.discard();
        delete_output(Object_name.c_str());
        if (listfile.is_open()) {
            listfile.put("\n\n****** Total Errors: ");
            listfile.put_decimal(Errors);
            listfile.put('\n');
        }
    }
    listfile.close();
    closesym();
}

bool report_write_failures() {
    struct Output {
        const OutputFile &file;
        const std::string &name;
    };
    const std::array<Output, 4> outputs = {{{objectfile, Object_name},
                                            {listfile, List_name},
                                            {algofile, array_name},
                                            {zirpafile, zirpafilename}}};
    bool any_failed = false;
    for (const Output &output : outputs) {
        if (output.file.has_failed()) {
            standard_output.put({kProgramName, ": Can't write '", output.name, "'\n"});
            any_failed = true;
        }
    }
    if (any_failed) {
        delete_output(Object_name.c_str());
    }
    return any_failed;
}
