// A handler of signals may look at no data that is just being changed, nor take a lock. So the
// names of the files are kept in a fixed table of atomic pointers, apart from the objects: a name
// is in the table before its file exists and leaves it after the file is gone. A signal in between
// finds a name without a file at worst, which does no harm.
//
// Renaming is the last step of an output and the only one that others see. Where it is not allowed,
// the bytes are copied into the old file instead.
#include "util/temporary.h"

#include "util/descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr mode_t kCreationMode = 0666;

// The names of the temporary files that exist, for the handler of signals.
std::array<std::atomic<const char *>, kMostTemporaryFiles> names{};
static_assert(std::atomic<const char *>::is_always_lock_free);

// What a process survives that does nothing about it.
constexpr std::array kHarmlessSignals = {SIGCHLD, SIGCONT, SIGTSTP, SIGTTIN,
                                         SIGTTOU, SIGURG,  SIGWINCH};

// The signal is back to its default action by then, and ends the process when this returns.
extern "C" void remove_temporary_files(int signal) {
    for (const std::atomic<const char *> &name : names) {
        if (const char *path = name.load(); path != nullptr) {
            (void)::unlink(path);
        }
    }
    (void)std::raise(signal);
}

// A signal that is ignored, or that somebody else catches, stays so.
void catch_signal(int signal) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = remove_temporary_files;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    (void)sigfillset(&action.sa_mask);
    if (::sigaction(signal, &action, &before) == 0 && before.sa_handler != SIG_DFL) {
        (void)::sigaction(signal, &before, nullptr);
    }
}

// Once in a process. Those for which nothing can be done, SIGKILL among them, refuse to be caught,
// and so do those that the system keeps for itself; both is left at that.
void catch_ending_signals() {
    static bool caught = false;
    for (int signal = 1; !caught && signal <= SIGRTMAX; ++signal) {
        if (std::find(kHarmlessSignals.begin(), kHarmlessSignals.end(), signal) ==
            kHarmlessSignals.end()) {
            catch_signal(signal);
        }
    }
    caught = true;
}

// Registers a name to be removed. Returns its slot, or -1 when there is none.
int register_name(const char *name) {
    for (std::size_t slot = 0; slot < names.size(); ++slot) {
        if (names[slot].load() == nullptr) {
            names[slot].store(name);
            return static_cast<int>(slot);
        }
    }
    return -1;
}

// A name that no other process uses at the same time; a killed one may have left it behind.
std::string next_name(const std::string &directory) {
    static unsigned count = 0;
    return directory + "HXzirpa-" + std::to_string(::getpid()) + "-" + std::to_string(count++) +
           ".tmp";
}

bool copy_bytes(int from, int to) {
    constexpr std::size_t kPieceSize = 16384;
    std::array<char, kPieceSize> piece;
    while (true) {
        const ssize_t count = ::read(from, piece.data(), piece.size());
        if (count == 0) {
            return true;
        }
        if (count < 0 && errno != EINTR) {
            return false;
        }
        if (count > 0 &&
            !write_fully(to, std::string_view(piece.data(), static_cast<std::size_t>(count)))) {
            return false;
        }
    }
}

// Copies into a file that exists, so that it stays the same file, with its owner, mode and names.
// Only its closing says whether all has been written.
bool copy_into(const char *from, const char *to) {
    const int source = ::open(from, O_RDONLY | O_CLOEXEC);
    if (source < 0) {
        return false;
    }
    const DescriptorGuard guard(source);
    const int target = ::open(to, O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (target < 0) {
        return false;
    }
    const bool copied = copy_bytes(source, target);
    return ::close(target) == 0 && copied;
}

} // namespace

int TemporaryFile::create(const std::string &directory) {
    constexpr int kMostTries = 16;
    remove();
    catch_ending_signals();
    for (int i = 0; i < kMostTries; ++i) {
        name_ = next_name(directory);
        // Registered first: a signal may come at any moment.
        slot_ = register_name(name_.c_str());
        const int descriptor =
            slot_ < 0
                ? -1
                : ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kCreationMode);
        if (descriptor >= 0) {
            return descriptor;
        }
        const int error = errno;
        forget();
        if (error != EEXIST) {
            break;
        }
    }
    return -1;
}

bool TemporaryFile::publish(const char *path) {
    if (!exists()) {
        return true;
    }
    if (std::rename(name_.c_str(), path) == 0) {
        forget();
        return true;
    }
    const bool copied = copy_into(name_.c_str(), path);
    remove();
    return copied;
}

void TemporaryFile::remove() {
    if (exists()) {
        (void)::unlink(name_.c_str());
        forget();
    }
}

void TemporaryFile::forget() {
    if (slot_ >= 0) {
        names[static_cast<std::size_t>(slot_)].store(nullptr);
        slot_ = -1;
    }
    name_.clear();
}
