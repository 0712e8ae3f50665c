// The methods that the server knows, a row each.
#pragma once

#include "zirpa/lsp/server.h"

namespace lsp {

struct Server::Row {
    std::string_view method;
    Json (Server::*answer)(OpenDocument &document, const Json &params); // null: of no document
    Json (Server::*answer_all)(const Json &params) = nullptr;
};

struct Server::NoticeRow {
    std::string_view method;
    void (Server::*take)(const Json &params);
};

} // namespace lsp
