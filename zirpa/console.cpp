#include "zirpa/console.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace {

constexpr std::size_t kPiece = 65536;

bool write(std::FILE *stream, std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
}

std::string_view variable(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

} // namespace

bool print(std::string_view text) { return write(stdout, text); }

bool complain(std::string_view text) { return write(stderr, text); }

std::optional<std::string> read_standard_input() {
    std::string text;
    std::array<char, kPiece> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), stdin)) {
        text.append(piece.data(), count);
    }
    return std::ferror(stdin) != 0 ? std::nullopt : std::optional(std::move(text));
}

bool write_file(const std::string &name, std::string_view text) {
    std::FILE *file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool is_written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && is_written;
}

bool is_coloured(Colour colour, bool is_output) {
    if (colour != Colour::kAuto) {
        return colour == Colour::kAlways;
    }
    return variable("NO_COLOR").empty() && variable("TERM") != "dumb" &&
           isatty(is_output ? STDOUT_FILENO : STDERR_FILENO) == 1;
}
