#include "zirpa/console.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::string_view variable(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

} // namespace

bool print(std::string_view text) {
    if (door::write_all(STDOUT_FILENO, text)) {
        return true;
    }
    (void)complain(std::string("standard output: error: can't be written: ") +
                   std::strerror(errno) + " [cannot-write]\n");
    return false;
}

bool complain(std::string_view text) { return door::write_all(STDERR_FILENO, text); }

std::optional<std::string> read_standard_input() {
    std::string text;
    return door::read_all(STDIN_FILENO, text) ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<std::string> read_file(const std::string &name) {
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return std::nullopt;
    }
    std::string text;
    const bool is_read = door::read_all(descriptor, text);
    const int reason = errno;
    (void)::close(descriptor);
    errno = reason;
    return is_read ? std::optional(std::move(text)) : std::nullopt;
}

bool is_coloured(Colour colour, bool is_output) {
    if (colour != Colour::kAuto) {
        return colour == Colour::kAlways;
    }
    return variable("NO_COLOR").empty() && variable("TERM") != "dumb" &&
           isatty(is_output ? STDOUT_FILENO : STDERR_FILENO) == 1;
}
