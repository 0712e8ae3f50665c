// A server in the process, without files: what it answers to all requests, as one text.
#pragma once

#include "zirpa/lsp/server.h"

#include <cstddef>
#include <string>
#include <string_view>

class Session {
  public:
    Session();

    void take(const lsp::Json &message) { server_.take(message.dump()); }
    void take(std::string_view message) { server_.take(message); }
    void work();

    void open(const std::string &text);
    void change(const lsp::Range &range, const std::string &text);

    // The answers to every request that there is, for a place of the present text.
    std::string answers(const lsp::Position &position);

    bool has_ended() const { return server_.status().has_value(); }

  private:
    std::string sent_;
    lsp::Server server_;
};

// Edits and places that follow from bytes or numbers alone.
class Choices {
  public:
    virtual ~Choices() = default;
    virtual std::size_t below(std::size_t limit) = 0;
};

// A piece of source: a word, a blank, a line end, a character of several bytes.
std::string_view random_piece(Choices &choices);

// A place in a text of some lines, or a little beyond.
lsp::Position random_position(Choices &choices);

// Makes an edit, in the session and, as a client would, in the text.
void edit_randomly(Choices &choices, Session &session, lsp::Document &document);
