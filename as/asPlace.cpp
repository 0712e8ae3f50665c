// The line is copied out of the file's text, so that it can end in NULs of its own: whatever reads
// a line may then look a few characters ahead without asking where the line ends.
#include "as/asPlace.h"

#include <algorithm>

LineBuffer Line;
const char *Col_Ptr = Line_Ptr;
int Line_no = 0;
int realline = 0;
int listline = 0;

std::deque<FileEntry> file_entry;
int file_entry_ptr = -1;
int place_file = -1;

void LineBuffer::assign(const char *text, std::size_t size) {
    const std::size_t taken = std::min(size, kLineReadLimit);
    std::memcpy(text_.data(), text, taken);
    terminate(taken);
    // A NUL ends the text of a line, as it would have ended a string that was read into a buffer.
    terminate(std::strlen(text_.data()));
}

std::size_t LineBuffer::take_line(const char *text, std::size_t size) {
    const std::size_t taken =
        copy_with_line_feed(text_.data(), text, std::min(size, kLineReadLimit));
    terminate(taken);
    return taken;
}

void LineBuffer::end_in_line_feed() {
    text_[length_ - 2] = '\n';
    terminate(length_ - 1);
}

const FileEntry *getCurrentFileInfo(int n) {
    // Reports that come before the first file or after the last one name the main file.
    const int index = n < 0 ? std::max(place_file, 0) : n;
    return index <= file_entry_ptr ? &file_entry[static_cast<std::size_t>(index)] : nullptr;
}

void place_new_run() {
    place_new_pass();
    Line.assign("", 0);
    scan_from_start();
}

void place_new_pass() {
    place_new_counts();
    file_entry.clear();
    file_entry_ptr = -1;
    place_file = -1;
}

void place_new_counts() {
    Line_no = 0;
    realline = 0;
    listline = 0;
}
