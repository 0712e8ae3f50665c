// The language server on standard input and output. Whatever has arrived is taken before the next
// piece of work begins.
#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/lsp/framing.h"
#include "zirpa/lsp/openDocument.h"
#include "zirpa/lsp/server.h"

#include <array>
#include <cerrno>
#include <filesystem>

#include <poll.h>
#include <unistd.h>

namespace {

constexpr std::size_t kPiece = 65536;
constexpr int kAtOnce = 0;

bool has_input() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, kAtOnce) != 0;
}

// False at the end of the input.
bool read_piece(lsp::Framing &framing) {
    static std::array<char, kPiece> piece;
    ssize_t count = 0;
    do {
        count = read(STDIN_FILENO, piece.data(), piece.size());
    } while (count < 0 && errno == EINTR);
    if (count <= 0) {
        return false;
    }
    framing.feed({piece.data(), static_cast<std::size_t>(count)});
    return true;
}

// The chapters are installed with the program, or lie beside the place where it is built.
std::string chapters() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::canonical("/proc/self/exe", error);
    for (const char *place : {"../share/doc/hxzirpa/docs", "../docs", "../../docs"}) {
        const std::filesystem::path page =
            (program.parent_path() / place / "diagnostics.md").lexically_normal();
        if (std::filesystem::exists(page, error)) {
            return lsp::uri_of(page.string());
        }
    }
    return {};
}

} // namespace

int serve() {
    bool is_heard = true; // as long as what is sent arrives
    lsp::Server server(
        {[&](const std::string &message) { is_heard = print(lsp::framed(message)) && is_heard; },
         read_file, chapters()});
    lsp::Framing framing;
    bool has_work = false;
    while (is_heard && !server.status()) {
        if (!has_work || has_input()) {
            if (!read_piece(framing)) {
                return server.is_shut_down() ? 0 : 1;
            }
            while (const auto message = framing.next()) {
                server.take(*message);
            }
        }
        has_work = server.work();
    }
    return server.status().value_or(kUnusable);
}
