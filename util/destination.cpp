// First the name is looked up, without a change to anything: links are followed by hand, because
// the end of the chain matters even where nothing exists yet, and because a link to somebody's open
// descriptor must not be followed as a path. What is found there decides how the file is opened.
//
// An output appears in one of two ways. By way of a temporary file, whose renaming replaces the old
// one at one moment, it is whole or not there. Where renaming would change more than the content
// (other names, owners and modes that can't be given, what is no regular file), it is written in
// place: a piece that is seen for a while is the smaller harm.
#include "util/destination.h"

#include "util/path.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr mode_t kCreationMode = 0666;
constexpr mode_t kModeBits = 07777;

// True for failures that say that there is no such file. After any other it is not known what an
// output would overwrite.
bool is_absence(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

// Empty for the working directory, else with its slash.
std::string directory_of(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

// Where the system shows the open descriptors of a process as links, they are their owner's alone;
// other links have no permissions of their own.
bool is_descriptor_link(const struct stat &link) {
    return S_ISLNK(link.st_mode) && (link.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

} // namespace

bool Destination::look_up(const std::string &name, OldFile old_file) {
    name_ = name;
    path_ = name;
    old_file_ = old_file;
    kind_ = Kind::kUnknown;
    is_link_ = false;
    is_handed_over_ = false;
    new_name_.clear();
    if (!follow_links()) {
        return false;
    }
    struct stat status {};
    if (stat(path_.c_str(), &status) == 0) {
        note(status);
    } else if (!is_absence(errno) || (errno == ENOENT && !look_up_directory())) {
        return false;
    }
    if (old_file_ == OldFile::kReplaced && kind_ != Kind::kStream && !is_handed_over_) {
        path_ = name_; // the link itself is replaced
    }
    return true;
}

// Follows symbolic links, also to a file that doesn't exist yet.
bool Destination::follow_links() {
    constexpr int kMostLinks = 40;
    std::array<char, 4096> target{};
    for (int i = 0; i < kMostLinks; ++i) {
        const ssize_t length = readlink(path_.c_str(), target.data(), target.size());
        if (length <= 0) {
            return errno == EINVAL || is_absence(errno); // EINVAL: it is not a link
        }
        is_link_ = true;
        struct stat status {};
        if (lstat(path_.c_str(), &status) != 0) {
            return false;
        }
        if (is_descriptor_link(status)) {
            is_handed_over_ = true;
            return true;
        }
        const std::string link(target.data(), static_cast<std::size_t>(length));
        path_ = PathHasRoot(link.c_str()) ? link : directory_of(path_) + link;
    }
    return true;
}

// A new file is the same as another of its name in its directory.
bool Destination::look_up_directory() {
    const std::string directory = directory_of(path_);
    if (stat(directory.empty() ? "." : directory.c_str(), &old_) != 0) {
        return is_absence(errno);
    }
    new_name_ = path_.substr(directory.size());
    kind_ = new_name_.empty() ? Kind::kUnknown : Kind::kNew;
    return true;
}

void Destination::note(const struct stat &status) {
    old_ = status;
    kind_ = S_ISREG(status.st_mode)   ? Kind::kRegular
            : S_ISDIR(status.st_mode) ? Kind::kOther
                                      : Kind::kStream;
}

bool Destination::is_file(FileIdentity identity) const {
    return kind_ == Kind::kRegular && identity_of(old_) == identity;
}

// Streams are left out: two outputs may well go to one terminal, pipe or null device.
bool Destination::is_same_file(const Destination &other) const {
    return kind_ == other.kind_ && (kind_ == Kind::kRegular || kind_ == Kind::kNew) &&
           identity_of(old_) == identity_of(other.old_) && new_name_ == other.new_name_;
}

int Destination::open() {
    return old_file_ == OldFile::kRewritten ? open_to_rewrite() : open_to_replace();
}

// The file that the name leads to is opened even where a temporary file is going to take its place:
// that is the test of whether the user may write to it. Only its being opened tells what it is,
// since another may have got the name after the look-up.
int Destination::open_to_rewrite() {
    if (kind_ == Kind::kNew) {
        const int temporary = temporary_.create(directory_of(path_));
        if (temporary >= 0) {
            return temporary;
        }
    }
    const bool is_old = kind_ != Kind::kNew && kind_ != Kind::kUnknown;
    const int creation = is_old ? 0 : O_CREAT;
    const int descriptor = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC | creation, kCreationMode);
    DescriptorGuard guard(descriptor);
    struct stat status {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
        return -1;
    }
    note(status);
    if (kind_ != Kind::kRegular) {
        return guard.release();
    }
    const int temporary = is_old ? open_temporary_like_old() : -1;
    if (temporary >= 0) {
        return temporary;
    }
    return ftruncate(descriptor, 0) == 0 ? guard.release() : -1;
}

// Opens a temporary file with the owner and mode of the old one, or returns -1 if that is one that
// has to be written where it is.
int Destination::open_temporary_like_old() {
    if (is_handed_over_ || old_.st_nlink != 1) {
        return -1;
    }
    const int descriptor = temporary_.create(directory_of(path_));
    if (descriptor < 0) {
        return -1;
    }
    struct stat own {};
    if (fstat(descriptor, &own) == 0) {
        const bool same_owner = own.st_uid == old_.st_uid && own.st_gid == old_.st_gid;
        const bool same_mode = own.st_mode == old_.st_mode;
        if ((same_owner || fchown(descriptor, old_.st_uid, old_.st_gid) == 0) &&
            (same_mode || fchmod(descriptor, old_.st_mode & kModeBits) == 0)) {
            return descriptor;
        }
    }
    (void)::close(descriptor);
    temporary_.remove();
    return -1;
}

// What is in the way is deleted where no temporary file can stand in for it, so that a new file
// gets the name all the same; other names of the old one keep the old bytes.
int Destination::open_to_replace() {
    if (kind_ == Kind::kStream || is_handed_over_) {
        return ::open(path_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    }
    if (kind_ == Kind::kOther && !is_link_) {
        errno = EISDIR;
        return -1;
    }
    // In a directory that many write to, only root may put something in place of others' files.
    const bool is_foreign = kind_ == Kind::kRegular && old_.st_uid != geteuid() && geteuid() != 0;
    if (kind_ != Kind::kUnknown && !is_foreign) {
        const int temporary = temporary_.create(directory_of(path_));
        if (temporary >= 0) {
            return temporary;
        }
    }
    (void)::unlink(path_.c_str());
    const int descriptor =
        ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kCreationMode);
    // It may have to be withdrawn.
    if (struct stat status{}; descriptor >= 0 && fstat(descriptor, &status) == 0) {
        note(status);
    }
    return descriptor;
}

void Destination::forget() {
    name_.clear();
    path_.clear();
    kind_ = Kind::kUnknown;
    is_link_ = false;
}

// The file is looked at anew before it is deleted: between its creation and this moment, somebody
// may have moved another file to its name.
void Destination::withdraw() {
    temporary_.remove();
    struct stat status {};
    if (stat(path_.c_str(), &status) != 0) {
        if (is_link_ && kind_ == Kind::kNew) {
            (void)::unlink(name_.c_str());
        }
        return;
    }
    // Whatever else has got the name meanwhile is not this run's.
    if (!S_ISREG(status.st_mode) || !is_file(identity_of(status))) {
        return;
    }
    const bool is_deleted = !is_handed_over_ && ::unlink(name_.c_str()) == 0;
    if (!is_deleted || is_link_) {
        // Where this fails too, nothing more can be done.
        [[maybe_unused]] const int result = ::truncate(path_.c_str(), 0);
    }
}
