// A program, with one call of a run made to fail: the k-th one, alone or together with all later
// ones. Nothing but the environment tells it from the program that is shipped:
//
//   HXZIRPA_FAULT_MODE    count        no call fails, every call is reported
//                         once         the k-th call fails
//                         onwards      the k-th call and all later ones fail
//                         interrupted  the k-th call fails with EINTR
//                         short        from the k-th on, reads and writes move half of the bytes
//                         full         the k-th write writes half of the bytes, later ones fail
//   HXZIRPA_FAULT_KIND    which calls are counted, and fail: one name of the table below, "calls"
//                         (all but memory) or "all"
//   HXZIRPA_FAULT_CALL    k, from 1
//   HXZIRPA_FAULT_REPORT  a file; gets a line "NAME OBJECT" for each call that is made to fail, or
//                         for each call at all in the mode "count"
//
// Memory is what operator new hands out. Only what happens within run_program counts.
#include "tests/fault/fault_main.h"

#include "tests/calls/system_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The kinds of calls, and the error that each may well meet in the field. An open that creates a
// file is a kind of its own.
struct Kind {
    std::string_view name;
    int error;
};
constexpr Kind kOpen = {"open", EMFILE};
constexpr Kind kCreate = {"create", EACCES};
constexpr Kind kRead = {"read", EIO};
constexpr Kind kWrite = {"write", ENOSPC};
constexpr Kind kClose = {"close", EIO};
constexpr Kind kFstat = {"fstat", EIO};
constexpr Kind kStat = {"stat", EACCES};
constexpr Kind kLstat = {"lstat", EACCES};
constexpr Kind kUnlink = {"unlink", EACCES};
constexpr Kind kTruncate = {"truncate", EACCES};
constexpr Kind kFtruncate = {"ftruncate", EIO};
constexpr Kind kFchown = {"fchown", EPERM};
constexpr Kind kFchmod = {"fchmod", EPERM};
constexpr Kind kRename = {"rename", EPERM};
constexpr Kind kReadlink = {"readlink", EACCES};
constexpr Kind kGetcwd = {"getcwd", ENOENT};
constexpr Kind kMemory = {"memory", ENOMEM};

enum class Mode { kCount, kOnce, kOnwards, kInterrupted, kShort, kFull };

// What becomes of one call.
enum class Fate { kNormal, kFails, kIsInterrupted, kIsShort };

struct ModeName {
    std::string_view name;
    Mode mode;
};
constexpr std::array<ModeName, 6> kModes = {{{"count", Mode::kCount},
                                             {"once", Mode::kOnce},
                                             {"onwards", Mode::kOnwards},
                                             {"interrupted", Mode::kInterrupted},
                                             {"short", Mode::kShort},
                                             {"full", Mode::kFull}}};

Mode mode = Mode::kCount;
std::string_view chosen_kind = "all";
unsigned long chosen_call = 0; // from 1
unsigned long calls_seen = 0;  // of the chosen kind
int report_descriptor = -1;
bool active = false; // within run_program

// What is known of open descriptors, for the report; paths are cut to the room there is.
constexpr std::size_t kMostDescriptors = 64;
constexpr std::size_t kPathCapacity = 512;
struct Opened {
    std::array<char, kPathCapacity> path{};
    bool holds_output = false; // closing it can lose bytes
};
std::array<Opened, kMostDescriptors> opened{};

Opened *slot_of(int descriptor) {
    const auto index = static_cast<std::size_t>(descriptor);
    return index < kMostDescriptors ? &opened[index] : nullptr;
}

void remember(int descriptor, std::string_view path, bool holds_output) {
    if (Opened *slot = slot_of(descriptor); slot != nullptr) {
        slot->path.fill('\0');
        path.copy(slot->path.data(), kPathCapacity - 1);
        slot->holds_output = holds_output;
    }
}

const char *path_of(int descriptor) {
    const Opened *slot = slot_of(descriptor);
    return slot == nullptr ? "" : slot->path.data();
}

void report(const Kind &kind, const char *object) {
    std::array<char, kPathCapacity * 3> line{};
    std::size_t size = kind.name.copy(line.data(), kind.name.size());
    line[size++] = ' ';
    size += std::string_view(object).copy(&line[size], kPathCapacity * 2);
    line[size++] = '\n';
    (void)real_calls.write(report_descriptor, line.data(), size);
}

bool is_chosen_kind(const Kind &kind) {
    return chosen_kind == kind.name || chosen_kind == "all" ||
           (chosen_kind == "calls" && kind.name != kMemory.name);
}

Fate fate_of_chosen(bool is_first) {
    switch (mode) {
    case Mode::kOnce: return is_first ? Fate::kFails : Fate::kNormal;
    case Mode::kInterrupted: return is_first ? Fate::kIsInterrupted : Fate::kNormal;
    case Mode::kShort: return Fate::kIsShort;
    case Mode::kFull: return is_first ? Fate::kIsShort : Fate::kFails;
    default: return Fate::kFails;
    }
}

Fate fate_of(const Kind &kind, const char *object) {
    if (!active || !is_chosen_kind(kind)) {
        return Fate::kNormal;
    }
    ++calls_seen;
    if (mode == Mode::kCount) {
        report(kind, object);
        return Fate::kNormal;
    }
    if (calls_seen < chosen_call) {
        return Fate::kNormal;
    }
    const Fate fate = fate_of_chosen(calls_seen == chosen_call);
    if (fate != Fate::kNormal) {
        report(kind, object);
    }
    return fate;
}

// True when the call is to fail; errno is set then.
bool fails(const Kind &kind, Fate fate) {
    if (fate == Fate::kFails) {
        errno = kind.error;
    } else if (fate == Fate::kIsInterrupted) {
        errno = EINTR;
    }
    return fate == Fate::kFails || fate == Fate::kIsInterrupted;
}

bool fails(const Kind &kind, const char *object) { return fails(kind, fate_of(kind, object)); }

std::size_t moved_size(std::size_t size, Fate fate) {
    return fate == Fate::kIsShort ? std::max<std::size_t>(size / 2, 1) : size;
}

void *allocate(std::size_t size) {
    return fails(kMemory, "") ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
}

// As the library does: a handler is asked for memory first, where there is one.
void *allocate_or_throw(std::size_t size) {
    while (true) {
        if (void *memory = allocate(size); memory != nullptr) {
            return memory;
        }
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) {
            throw std::bad_alloc();
        }
        handler();
    }
}

const char *setting(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr) {
        std::abort();
    }
    return value;
}

void read_settings() {
    const std::string_view mode_name = setting("HXZIRPA_FAULT_MODE");
    const auto *found = std::find_if(kModes.begin(), kModes.end(), [=](const ModeName &entry) {
        return entry.name == mode_name;
    });
    if (found == kModes.end()) {
        std::abort();
    }
    mode = found->mode;
    chosen_kind = setting("HXZIRPA_FAULT_KIND");
    chosen_call = std::strtoul(setting("HXZIRPA_FAULT_CALL"), nullptr, 10);
    constexpr mode_t kReportMode = 0666;
    // Far from the standard descriptors, which may be closed.
    const int file = real_calls.open(setting("HXZIRPA_FAULT_REPORT"),
                                     O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kReportMode);
    report_descriptor = fcntl(file, F_DUPFD_CLOEXEC, static_cast<int>(kMostDescriptors));
    if (report_descriptor < 0) {
        std::abort();
    }
    (void)real_calls.close(file);
    remember(STDOUT_FILENO, "standard output", true);
    remember(STDERR_FILENO, "standard error", true);
}

int count_open_descriptors() {
    int count = 0;
    for (int descriptor = STDERR_FILENO + 1; descriptor < static_cast<int>(kMostDescriptors);
         ++descriptor) {
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    }
    return count;
}

int faulty_open(const char *path, int flags, mode_t permissions) {
    const bool creates = (flags & O_CREAT) != 0;
    if (fails(creates ? kCreate : kOpen, path)) {
        return -1;
    }
    const int descriptor = real_calls.open(path, flags, permissions);
    remember(descriptor, path, creates);
    return descriptor;
}

ssize_t faulty_read(int descriptor, void *buffer, size_t size) {
    const Fate fate = fate_of(kRead, path_of(descriptor));
    return fails(kRead, fate) ? -1 : real_calls.read(descriptor, buffer, moved_size(size, fate));
}

ssize_t faulty_write(int descriptor, const void *buffer, size_t size) {
    const Fate fate = fate_of(kWrite, path_of(descriptor));
    if (Opened *slot = slot_of(descriptor); slot != nullptr) {
        slot->holds_output = true;
    }
    return fails(kWrite, fate) ? -1 : real_calls.write(descriptor, buffer, moved_size(size, fate));
}

// A descriptor is closed also when the call fails.
int faulty_close(int descriptor) {
    const Opened *slot = slot_of(descriptor);
    const bool loses_bytes = slot != nullptr && slot->holds_output;
    const bool fault = fails(kClose, loses_bytes ? path_of(descriptor) : "");
    const int fault_error = errno;
    const int result = real_calls.close(descriptor);
    if (fault) {
        errno = fault_error;
    }
    return fault ? -1 : result;
}

// A call whose first argument is a descriptor, which the report names by its path.
template <const Kind &kind, auto call, typename Result, typename... Rest>
Result on_descriptor(int descriptor, Rest... rest) {
    return fails(kind, path_of(descriptor)) ? -1 : (real_calls.*call)(descriptor, rest...);
}

template <const Kind &kind, auto call, typename Result, typename... Rest>
Result on_path(const char *path, Rest... rest) {
    return fails(kind, path) ? -1 : (real_calls.*call)(path, rest...);
}

// The report names both files.
int faulty_rename(const char *from, const char *to) {
    std::array<char, kPathCapacity * 2> names{};
    std::size_t size = std::string_view(from).copy(names.data(), kPathCapacity - 1);
    names[size++] = '>';
    (void)std::string_view(to).copy(&names[size], kPathCapacity - 1);
    return fails(kRename, names.data()) ? -1 : real_calls.rename(from, to);
}

char *faulty_getcwd(char *buffer, size_t size) {
    return fails(kGetcwd, "") ? nullptr : real_calls.getcwd(buffer, size);
}

constexpr SystemCalls kFaultyCalls = {
    .open = faulty_open,
    .read = faulty_read,
    .write = faulty_write,
    .close = faulty_close,
    .fstat = on_descriptor<kFstat, &SystemCalls::fstat>,
    .stat = on_path<kStat, &SystemCalls::stat>,
    .lstat = on_path<kLstat, &SystemCalls::lstat>,
    .unlink = on_path<kUnlink, &SystemCalls::unlink>,
    .truncate = on_path<kTruncate, &SystemCalls::truncate>,
    .ftruncate = on_descriptor<kFtruncate, &SystemCalls::ftruncate>,
    .fchown = on_descriptor<kFchown, &SystemCalls::fchown>,
    .fchmod = on_descriptor<kFchmod, &SystemCalls::fchmod>,
    .rename = faulty_rename,
    .readlink = on_path<kReadlink, &SystemCalls::readlink>,
    .getcwd = faulty_getcwd,
};

} // namespace

void *operator new(std::size_t size) { return allocate_or_throw(size); }
void *operator new[](std::size_t size) { return allocate_or_throw(size); }
void *operator new(std::size_t size, const std::nothrow_t & /*tag*/) noexcept {
    return allocate(size);
}
void *operator new[](std::size_t size, const std::nothrow_t & /*tag*/) noexcept {
    return allocate(size);
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete[](void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void *memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void *memory, const std::nothrow_t & /*tag*/) noexcept { std::free(memory); }
void operator delete[](void *memory, const std::nothrow_t & /*tag*/) noexcept { std::free(memory); }

int main(int argc, char **argv) {
    read_settings();
    calls = kFaultyCalls;
    // A run may end within it; what comes after is not part of the run.
    (void)std::atexit([]() { active = false; });
    const int descriptors = count_open_descriptors();
    active = true;
    const int status = run_program(argc, argv);
    active = false;
    if (count_open_descriptors() != descriptors) {
        constexpr std::string_view kComplaint = "a descriptor is left open\n";
        (void)real_calls.write(STDERR_FILENO, kComplaint.data(), kComplaint.size());
    }
    return status;
}
