// The destination of an output: what its name leads to, and how a file gets there.
//
// A regular file comes into being beside its place and takes it when it is whole. What can't be
// replaced is written where it is: devices, pipes and sockets; a file with further names, which see
// its new bytes too; the files of others; a file that somebody has handed over as an open
// descriptor; and every file in a directory in which none can be created.
#pragma once

#include "util/descriptor.h"
#include "util/temporary.h"

#include <string>

// What becomes of a file that has the output's name already.
enum class OldFile {
    kRewritten, // it gets other bytes: a link to it is followed, owner and mode stay
    kReplaced,  // a new file takes its place, or that of the link
};

class Destination {
  public:
    // Finds out what a name leads to, without touching anything. Returns false when that can't be
    // found out.
    bool look_up(const std::string &name, OldFile old_file);

    // As if no name had been looked up.
    void forget();

    // Whether it leads to the same file as another name does, which need not exist yet. What is no
    // regular file holds nothing that could be lost, and is never the same.
    bool is_same_file(const Destination &other) const;
    bool is_file(FileIdentity identity) const;

    // Begins the output. Returns a descriptor open for writing, which the caller closes, or -1 when
    // the output cannot be created.
    int open();

    // Whether the output lies beside its place, where all is as it was until it is published.
    bool is_beside() const { return temporary_.exists(); }

    // Gives the output, which is closed, its name. Returns false when that fails.
    bool publish() { return temporary_.publish(path_.c_str()); }

    // Deletes the output, or what is to be replaced by it, from its place; a file that can't be
    // deleted is emptied. A link to a file is deleted, and the file emptied.
    void withdraw();

  private:
    enum class Kind {
        kUnknown,
        kNew,     // nothing yet
        kRegular, // a regular file
        kStream,  // device, pipe or socket
        kOther,   // a directory
    };

    bool follow_links();
    bool look_up_directory();
    void note(const struct stat &status);
    int open_to_rewrite();
    int open_to_replace();
    int open_temporary_like_old();

    std::string name_;
    std::string path_; // where the output goes: the end of the links that are followed
    OldFile old_file_ = OldFile::kRewritten;
    Kind kind_ = Kind::kUnknown;
    bool is_link_ = false;        // the name is that of a link
    bool is_handed_over_ = false; // the path is that of somebody's open descriptor
    struct stat old_ {};          // of the old file; of its directory where there is none
    std::string new_name_;        // of a new file, in its directory
    TemporaryFile temporary_;
};
