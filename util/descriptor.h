// Files by their descriptors: the three standard ones, which file is open, and writing to the last
// byte.
#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

// A file, whatever its names.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FileIdentity &) const = default;
};

inline FileIdentity identity_of(const struct stat &file) { return {file.st_dev, file.st_ino}; }

// Opens /dev/null in place of each standard descriptor that is closed, so that no file of the
// program's gets its number. It is open for reading only: a write to it fails, as it would have on
// the closed descriptor.
void fill_standard_descriptors();

// The regular file that a descriptor is open on; nothing if it is no such file.
std::optional<FileIdentity> regular_file(int descriptor);

// Writes all bytes, through interruptions and short writes. Returns false when a write fails.
bool write_fully(int descriptor, std::string_view bytes);

// Closes a descriptor when its scope is left, unless it has been released.
class DescriptorGuard {
  public:
    explicit DescriptorGuard(int descriptor) : descriptor_(descriptor) {}
    DescriptorGuard(const DescriptorGuard &) = delete;
    DescriptorGuard &operator=(const DescriptorGuard &) = delete;
    ~DescriptorGuard() {
        if (descriptor_ >= 0) {
            (void)::close(descriptor_);
        }
    }

    int release() { return std::exchange(descriptor_, -1); }

  private:
    int descriptor_;
};
