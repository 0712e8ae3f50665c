// JSON-RPC: what kind of message a text is, before anyone asks what it says.
#pragma once

#include "zirpa/lsp/protocol.h"

#include <string>
#include <string_view>

namespace lsp {

struct Message {
    Json id; // null: a notification
    std::string method;
    Json params;
    Json result;              // of a response
    bool is_response = false; // to a request of the server

    bool is_request() const { return !id.is_null() && !is_response; }
};

// Throws RefusedMessage for a text that is no message.
Message message_of(std::string_view text);

struct RefusedMessage {
    Json id;
    ResponseError error;
};

} // namespace lsp
