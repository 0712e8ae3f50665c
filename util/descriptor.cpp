// The lowest free number goes to the next file that is opened. With a standard descriptor closed,
// an output would get its number, and messages would be written into the output; so the three
// numbers are taken before anything else is opened.
#include "util/descriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

void fill_standard_descriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is handed out, and those below are taken by now. Without /dev, the
        // root directory serves: it can't be written to either.
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDONLY) < 0) {
            (void)::open("/", O_RDONLY);
        }
    }
}

std::optional<FileIdentity> regular_file(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return identity_of(status);
}

bool write_fully(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}
