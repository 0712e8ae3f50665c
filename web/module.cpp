// The door to the assembler, the disassembler and the language server for programs in JavaScript.
//
// A caller asks for room, puts its bytes there and calls a function with their number. What a
// function returns lies in the answer, until the next call.
#include "zirpa/inspection.h"
#include "zirpa/lsp/server.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#define EXPORT(name) extern "C" __attribute__((export_name(#name)))
#define IMPORT(name) extern "C" __attribute__((import_module("hxzirpa"), import_name(#name)))

IMPORT(send) void send_to_client(const char *text, std::size_t size);

namespace {

std::string room;
std::unique_ptr<lsp::Server> server;

} // namespace

// Where the next call's bytes go.
EXPORT(room_for) char *room_for(std::size_t size) {
    room.resize(size);
    return room.data();
}

// ---- The language server ----

// A new server: one that has been told nothing.
EXPORT(start) void start() {
    server = std::make_unique<lsp::Server>(lsp::Surroundings{
        [](const std::string &message) { send_to_client(message.data(), message.size()); },
        [](const std::string &) { return std::optional<std::string>(); }, std::string(room)});
}

// A message of the protocol, without a header.
EXPORT(take) void take() { server->take(room); }

// A piece of work. 0 where there is none.
EXPORT(work) int work() { return server->work() ? 1 : 0; }
