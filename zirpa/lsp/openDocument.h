// A document that a client has opened, with what is known of its present text.
#pragma once

#include "zirpa/lsp/analysis.h"
#include "zirpa/lsp/document.h"
#include "zirpa/lsp/semanticTokens.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lsp {

struct OpenDocument {
    std::string uri;
    std::string path; // of the file; empty: the document is none
    Document document;
    std::optional<Json> version; // as the client counts
    std::uint64_t changes = 0;   // of the text

    Project project;                  // of the zirpa.json beside it
    std::optional<Analysis> analysis; // of the present text and settings

    // The tokens that the client has, and what they are called.
    TokenData tokens;
    std::string tokens_id;
};

// The path of a file URI; empty for any other.
std::string path_of(const std::string &uri);

// The URI of a path from the root.
std::string uri_of(const std::string &path);

// A name for data: the same for the same.
std::string name_of_data(std::string_view bytes);

} // namespace lsp
