// Files besides the outputs of a run, written with the same care.
#include "door/door.h"
#include "util/descriptor.h"
#include "util/destination.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace door {

namespace {

Failure failure_of(Failure::Kind kind, const std::string &name) {
    return {kind, name, std::strerror(errno)};
}

bool is_one_of(const std::vector<std::string> &names, const Destination &destination) {
    return std::any_of(names.begin(), names.end(), [&](const std::string &name) {
        Destination other;
        return other.look_up(name, OldFile::kRewritten) && destination.is_same_file(other);
    });
}

// Closing may lose bytes too.
bool write_and_close(int descriptor, std::string_view bytes) {
    const bool is_written = write_fully(descriptor, bytes);
    const int reason = errno;
    const bool is_closed = ::close(descriptor) == 0;
    errno = is_written ? errno : reason;
    return is_written && is_closed;
}

} // namespace

std::optional<Failure> write_file(const std::string &name, std::string_view bytes,
                                  const std::vector<std::string> &kept) {
    Destination destination;
    if (!destination.look_up(name, OldFile::kRewritten)) {
        return failure_of(Failure::Kind::kCreate, name);
    }
    if (is_one_of(kept, destination)) {
        return Failure{Failure::Kind::kCreate, name, "the run needs what is there"};
    }
    const int descriptor = destination.open();
    if (descriptor < 0) {
        return failure_of(Failure::Kind::kCreate, name);
    }
    const bool is_beside = destination.is_beside();
    if (write_and_close(descriptor, bytes) && destination.publish()) {
        return std::nullopt;
    }
    const Failure failure = failure_of(Failure::Kind::kWrite, name);
    // What was written in its place is cut; an old file beside which it was written stays.
    if (!is_beside) {
        destination.withdraw();
    }
    return failure;
}

bool write_all(int descriptor, std::string_view bytes) { return write_fully(descriptor, bytes); }

bool read_all(int descriptor, std::string &bytes) {
    constexpr std::size_t kPieceSize = 65536;
    std::array<char, kPieceSize> piece;
    while (true) {
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            bytes.append(piece.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

} // namespace door
