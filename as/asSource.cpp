// The sequence of file switches is a list of steps, one for each file that is entered or left; a
// step holds the file that is current after it. Passes 0 and 1 append to the list as files are
// opened and end, the final pass walks along it. The position in each file's text is kept with the
// file, so that rewinding is all that the final pass needs.
#include "as/asSource.h"

#include "as/asDiag.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "util/input.h"
#include "util/path.h"
#include "util/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

std::string AsmStartDirectory;
std::string AsmCurrentDirectory;
int source_stack_ptr = -1;
int pplevel = -1;
std::vector<int> file_entry_index;
std::vector<std::string> include_stack;
int newuse = 0;
int endflag = 0;

namespace {

// The texts read in this run, under the names by which they were opened.
struct LoadedFile {
    std::string opened_name;
    std::string pathname; // absolute
    FileText text;
};
std::deque<LoadedFile> loaded_files;

FileEntry *file_being_read = nullptr; // of the current step; null outside the source

std::string absolute_path(const std::string &name) {
    if (PathHasRoot(name.c_str())) {
        return name;
    }
    std::string path;
    makePathAbsoluteUX(path, name.c_str());
    return path;
}

// The file of that name, read at the first call for it; null when it cannot be read.
// Pipes serve as sources too, and can be read only once.
const LoadedFile *load(const std::string &name) {
    for (const LoadedFile &file : loaded_files) {
        if (file.opened_name == name) {
            return &file;
        }
    }
    FileText text;
    if (!read_file(name.c_str(), text)) {
        return nullptr;
    }
    loaded_files.push_back({name, absolute_path(name), std::move(text)});
    return &loaded_files.back();
}

// The directory of the current file joined to name; empty when no file is open.
std::string beside_current_file(const std::string &name) {
    if (source_stack_ptr < 0) {
        return {};
    }
    std::string directory;
    PathFromPathName(directory, getCurrentFileInfo(-1)->pathname.c_str());
    return directory + "/" + name;
}

std::string in_include_directory(const std::string &name) {
    bool from_start_directory = false;
    const int index = match_include(name.c_str(), from_start_directory);
    if (index < 0) {
        return {};
    }
    const std::string &directory = include_stack[static_cast<std::size_t>(index)];
    const std::string start = from_start_directory ? AsmStartDirectory + "/" : std::string();
    return start + directory + "/" + name;
}

// Opens the first of the places where name may be; name becomes the place. A failure that says
// nothing about the file, such as too many open files, ends the search: going on could find another
// file of the same name.
const LoadedFile *open_source(std::string &name) {
    const LoadedFile *file = load(name);
    if (file != nullptr || PathHasRoot(name.c_str()) || is_passing_failure(errno)) {
        return file;
    }
    for (const auto &place_of : {beside_current_file, in_include_directory}) {
        const std::string place = place_of(name);
        if (place.empty()) {
            continue;
        }
        file = load(place);
        if (file != nullptr) {
            name = place;
            return file;
        }
        if (is_passing_failure(errno)) {
            return nullptr;
        }
    }
    return nullptr;
}

// The files of the table up to the depth of the stack, which are those on it as long as each file
// opens one other at most.
bool is_on_stack(const std::string &name) {
    for (int i = 0; i <= source_stack_ptr && i <= file_entry_ptr; ++i) {
        if (file_entry[static_cast<std::size_t>(i)].pathname == name) {
            return true;
        }
    }
    return false;
}

// The file that is current after a step of the sequence, -1: no file.
int file_at_step(int step) {
    if (step < 0 || step >= static_cast<int>(file_entry_index.size())) {
        return -1;
    }
    return file_entry_index[static_cast<std::size_t>(step)];
}

void record_step(int step, int file) {
    const auto index = static_cast<std::size_t>(step);
    if (file_entry_index.size() <= index) {
        file_entry_index.resize(index + 1, -1);
    }
    file_entry_index[index] = file;
}

FileEntry *file_of_step(int step) {
    const int file = file_at_step(step);
    return file < 0 ? nullptr : &file_entry[static_cast<std::size_t>(file)];
}

// Makes the file of the current step the one that is read. Once the last file has been left,
// reports name no file of the stack any more, whatever the step says.
void select_file() {
    file_being_read = file_of_step(pplevel);
    place_file = source_stack_ptr < 0 ? -1 : file_at_step(pplevel);
}

// Takes the next step of the recorded sequence. Only here is the line kept with the file that is
// left, so only the final pass resumes that file's numbers.
int replay_push() {
    if (FileEntry *file = file_of_step(pplevel); file != nullptr) {
        file->saved_line = Line_no;
    }
    Line_no = 0;
    ++source_stack_ptr;
    ++pplevel;
    select_file();
    newuse = 1;
    return 1;
}

// Makes a file that has been read the current one, as a new entry of the table even if it has been
// entered before: the entry holds how far this inclusion has been read.
void enter_file(const LoadedFile &file) {
    FileEntry entry;
    entry.pathname = file.pathname;
    entry.name = FilenameFromPath(file.opened_name.c_str());
    entry.text = &file.text;
    entry.saved_line = Line_no;
    file_entry.push_back(std::move(entry));
    newuse = 1;
    ++source_stack_ptr;
    ++pplevel;
    ++file_entry_ptr;
    record_step(pplevel, file_entry_ptr);
    select_file();
    Line_no = 0;
}

// The size of the next piece of a file: up to a line feed, kLineReadLimit bytes or the end.
inline std::size_t piece_size(const FileEntry &file) {
    const std::size_t left = std::min(file.text->size - file.position, kLineReadLimit);
    return size_with_line_feed(file.rest(), left);
}

// Reads the next piece of a file into Line. Only a text with a NUL needs a look at where the line
// ends before it.
bool read_piece(FileEntry &file) {
    const FileText &text = *file.text;
    if (file.position == text.size) {
        return false;
    }
    if (text.holds_nul) {
        const std::size_t size = piece_size(file);
        Line.assign(file.rest(), size);
        file.position += size;
    } else {
        file.position += Line.take_line(file.rest(), text.size - file.position);
    }
    return true;
}

std::string start_directory(const char *invocation) {
    // An invocation name without a separator stays whole.
    const char *separator = StringHasPath(invocation);
    return separator == nullptr ? std::string(invocation) : std::string(invocation, separator);
}

} // namespace

// ---- A run and its passes ----

void source_new_run(const char *invocation) {
    AsmStartDirectory = start_directory(invocation);
    AsmCurrentDirectory = getMyDirectory();
    loaded_files.clear();
    init_as_include_stack();
    place_new_run();
    source_new_pass();
}

void source_new_pass() {
    place_new_pass();
    source_new_counts();
    newuse = 0;
    source_stack_ptr = -1;
    pplevel = -1;
    file_entry_index.clear();
    file_being_read = nullptr;
}

void source_rewind() {
    for (FileEntry &file : file_entry) {
        file.position = 0;
    }
    source_stack_ptr = -1;
    pplevel = -1;
    place_file = -1;
    file_being_read = nullptr;
}

void source_new_counts() {
    place_new_counts();
    endflag = 0;
}

void provide_source(const char *name, std::string_view text) {
    loaded_files.push_back({name, absolute_path(name), copy_text(text)});
}

// ---- The stack of files ----

int push_source(const char *name) {
    if (source_stack_ptr > kSourceStackTop) {
        vpFatal("To many input files, source stack exhausted");
    }
    if (Pass2 != 0) {
        return replay_push();
    }
    if (std::strlen(name) > kSourceNameLimit) {
        Error("(F1034)");
        errno = ENAMETOOLONG;
        return 0;
    }
    std::string opened = name;
    const LoadedFile *file = open_source(opened);
    if (file == nullptr) {
        return 0;
    }
    if (is_on_stack(opened)) {
        Warning("Recursion in file stack, file ignored");
        return 1;
    }
    enter_file(*file);
    return 1;
}

int pop_source() {
    --source_stack_ptr;
    ++pplevel;
    // The step two back is the parent only when the file being left has opened no other itself;
    // otherwise it is a file already at its end, and the rest of the outer files is not read.
    if (Pass2 == 0) {
        record_step(pplevel, file_at_step(pplevel - 2));
    }
    select_file();
    if (file_being_read != nullptr) {
        Line_no = file_being_read->saved_line;
    }
    newuse = 1;
    endflag = 0;
    return source_stack_ptr >= 0 ? 1 : 0;
}

// ---- Lines ----

bool read_source_line() {
    // The file that included the one at its end goes on, if there is one.
    while (file_being_read == nullptr || !read_piece(*file_being_read)) {
        if (pop_source() == 0) {
            return false;
        }
    }
    count_line();
    scan_from_start();
    const std::size_t length = Line.length();
    if (length > kLineWarningLimit) {
        // Quirk (long-line): the spelling, and a limit three below the room for a line.
        Warning("Source line is to long");
    }
    // A source with the line ends of another system is read as if it had this one's.
    if (length >= 2 && Line.begin()[length - 2] == '\r') {
        Line.end_in_line_feed();
    }
    return true;
}

std::string_view next_source_line() {
    if (file_being_read == nullptr || endflag != 0) {
        return {};
    }
    return {file_being_read->rest(), piece_size(*file_being_read)};
}

void skip_source_line(std::size_t size) {
    file_being_read->position += size;
    count_line();
}

// ---- Directories ----

const char *GetAsmStartDirectory() {
    return AsmStartDirectory.empty() ? nullptr : AsmStartDirectory.c_str();
}

const char *GetAsmCurrentDirectory() {
    return AsmCurrentDirectory.empty() ? nullptr : AsmCurrentDirectory.c_str();
}

void init_as_include_stack() { include_stack.clear(); }

void push_include(const char *path) {
    if (include_stack.size() >= kIncludeDirectoryLimit) {
        vpError("Include stack is exhausted, '%s' is ignored", path);
        return;
    }
    std::string directory;
    copyquotedopt(directory, path);
    if (directory.empty()) {
        Warning("Pathname should be quoted, option ignored");
        return;
    }
    include_stack.push_back(std::move(directory));
}

// A directory that begins with a dot is meant from where the program was started, any other from
// the working directory.
int match_include(const char *name, bool &from_start_directory) {
    for (std::size_t i = 0; i < include_stack.size(); ++i) {
        const std::string &directory = include_stack[i];
        from_start_directory = directory[0] == '.';
        const std::string start = from_start_directory ? AsmStartDirectory + "\\" : std::string();
        // Quirk (include-backslash): the probe joins with "\" although the file is then opened with
        // "/", so both files must be there.
        if (can_open((start + directory + "\\" + name).c_str())) {
            return static_cast<int>(i);
        }
        if (is_passing_failure(errno)) {
            return -1;
        }
    }
    return -1;
}

bool is_source_file(const Destination &destination) {
    return std::any_of(loaded_files.begin(), loaded_files.end(), [&](const LoadedFile &file) {
        return file.text.is_regular && destination.is_file(file.text.identity);
    });
}
