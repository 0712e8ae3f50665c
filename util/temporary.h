// A temporary file: it holds an output until the output is whole and can take its name.
//
// Whoever looks at the output's own name, make above all, then finds the old file or the new one,
// never a piece. The file lies beside the output, since a file can be renamed within a file system
// only. Nothing but SIGKILL leaves one behind: signals that end the process remove it first.
#pragma once

#include <cstddef>
#include <string>

// As many can exist at a time: enough for the outputs of a run.
inline constexpr std::size_t kMostTemporaryFiles = 8;

class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { remove(); }

    // Creates an empty file in a directory, which is empty or ends in a slash. Returns a descriptor
    // open for writing, or -1; the caller closes it.
    int create(const std::string &directory);

    bool exists() const { return !name_.empty(); }

    // Gives the file, where there is one, its lasting name, in place of whatever has that name.
    // Where the name is not to be taken away (one file mounted over another, a directory in which
    // nobody deletes the files of others), the file of that name gets the bytes. Returns false when
    // neither can be done; the temporary file is gone in any case.
    bool publish(const char *path);

    // Deletes the file, if there is one.
    void remove();

  private:
    void forget();

    std::string name_; // empty: no file
    int slot_ = -1;    // place in the table of names to remove
};
