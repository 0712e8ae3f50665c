// The module: the assembler, the disassembler and the language server for programs in JavaScript.
//
// A caller asks for room, puts its bytes there and calls a function. What that gives back lies in
// the answer until the next call: an object in JSON, and after it the bytes that it speaks of.
// There are no files, nothing is printed, and one call follows the other: each instance of the
// module is a process of its own.
#include "web/assembly.h"
#include "web/disassembly.h"
#include "zirpa/lsp/server.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#define EXPORT(name) extern "C" __attribute__((export_name(#name)))
#define IMPORT(name) extern "C" __attribute__((import_module("hxzirpa"), import_name(#name)))

IMPORT(send) void send_to_client(const char *text, std::size_t size);

namespace {

std::string room;
web::Answer answer;
std::unique_ptr<lsp::Server> server;

// The options come first in the room.
std::string_view options(std::size_t size) { return std::string_view(room).substr(0, size); }
std::string_view content(std::size_t size) { return std::string_view(room).substr(size); }

} // namespace

// Where the next call's bytes go.
EXPORT(room_for) char *room_for(std::size_t size) {
    room.resize(size);
    return room.data();
}

// ---- Calls, with an answer ----

EXPORT(assemble) void assemble(std::size_t options_size) {
    answer = web::assemble(options(options_size), content(options_size));
}

EXPORT(disassemble) void disassemble(std::size_t options_size) {
    answer = web::disassemble(options(options_size), content(options_size));
}

EXPORT(json) const char *json() { return answer.json.data(); }
EXPORT(json_size) std::size_t json_size() { return answer.json.size(); }
EXPORT(bytes) const char *bytes() { return answer.bytes.data(); }
EXPORT(bytes_size) std::size_t bytes_size() { return answer.bytes.size(); }

// ---- The language server ----

// A new server. The room holds the address of the page that explains diagnostics, or nothing.
EXPORT(start) void start() {
    server = std::make_unique<lsp::Server>(lsp::Surroundings{
        [](const std::string &message) { send_to_client(message.data(), message.size()); },
        [](const std::string &) { return std::optional<std::string>(); }, room});
}

// A message of the protocol, without a header.
EXPORT(take) void take() { server->take(room); }

// A piece of work. 0 where there is none.
EXPORT(work) int work() { return server->work() ? 1 : 0; }
