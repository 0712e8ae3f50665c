// How messages are taken and work is chosen; the documents are in serverDocuments.cpp, the requests
// in serverRequests.cpp.
#include "zirpa/lsp/server.h"

#include "door/door.h"

#include <algorithm>

namespace lsp {

namespace {

// A text that is cut in the middle of a character would be no JSON.
std::string text_of(const Json &json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json server_capabilities(Encoding encoding, bool is_pulling) {
    Json capabilities = {
        {"positionEncoding", encoding == Encoding::kUtf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", true}}},
        {"hoverProvider", true},
        {"inlayHintProvider", true},
        {"definitionProvider", true},
        {"referencesProvider", true},
        {"documentHighlightProvider", true},
        {"renameProvider", {{"prepareProvider", true}}},
        {"documentSymbolProvider", true},
        {"workspaceSymbolProvider", true},
        {"foldingRangeProvider", true},
        {"selectionRangeProvider", true},
        {"semanticTokensProvider",
         {{"legend", legend()}, {"full", {{"delta", true}}}, {"range", true}}},
        {"completionProvider", {{"triggerCharacters", {"#", ","}}}},
        {"signatureHelpProvider", {{"triggerCharacters", {" ", "\t", ",", "#"}}}},
        {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
        {"codeLensProvider", Json::object()},
        {"documentFormattingProvider", true},
        {"documentRangeFormattingProvider", true},
    };
    if (is_pulling) {
        capabilities["diagnosticProvider"] = {{"identifier", "zirpa"},
                                              {"interFileDependencies", false},
                                              {"workspaceDiagnostics", false}};
    }
    return capabilities;
}

bool offers_utf8(const Json &params) {
    const Json *encodings = find_member(params, "/capabilities/general/positionEncodings");
    return encodings != nullptr && encodings->is_array() &&
           std::find(encodings->begin(), encodings->end(), "utf-8") != encodings->end();
}

} // namespace

void Server::send(const Json &json) const { surroundings_.send(text_of(json)); }

// ---- Taking messages ----

void Server::take(std::string_view text) {
    if (status_) {
        return;
    }
    try {
        Message message = message_of(text);
        if (message.is_response) {
            take_response(message);
        } else if (message.is_request()) {
            take_request(std::move(message));
        } else {
            take_notification(std::move(message));
        }
    } catch (const RefusedMessage &refused) {
        send(error_response(refused.id, refused.error));
    }
}

void Server::take_request(Message message) {
    const Json id = message.id;
    try {
        if (is_shut_down_) {
            throw ResponseError{ErrorCode::kInvalidRequest, "the server is shut down"};
        }
        if (message.method == "initialize") {
            send(response(id, initialize(message.params)));
            return;
        }
        if (!is_initialized_) {
            throw ResponseError{ErrorCode::kServerNotInitialized, "initialize comes first"};
        }
        if (message.method == "shutdown") {
            is_shut_down_ = true;
            send(response(id, Json()));
            return;
        }
        const auto row = std::find_if(rows().begin(), rows().end(), [&](const Row &each) {
            return each.method == message.method;
        });
        if (row == rows().end()) {
            throw ResponseError{ErrorCode::kMethodNotFound, "there is no method " + message.method};
        }
        take_document_request(*row, std::move(message));
    } catch (const ResponseError &error) {
        send(error_response(id, error));
    } catch (const Json::exception &error) {
        send(error_response(id, {ErrorCode::kInvalidParams, error.what()}));
    }
}

void Server::take_document_request(const Row &row, Message message) {
    Waiting waiting{std::move(message.id), &row, std::move(message.params), {}, 0};
    if (row.answer != nullptr) {
        waiting.uri = text_member(member(waiting.params, "textDocument"), "uri");
        const OpenDocument *document = find(waiting.uri);
        if (document == nullptr) {
            throw ResponseError{ErrorCode::kInvalidParams, waiting.uri + " is not open"};
        }
        waiting.changes = document->changes;
    }
    waiting_.push_back(std::move(waiting));
}

// A notification that can't be understood is passed over: nobody waits for an answer.
void Server::take_notification(Message message) {
    if (message.method == "exit") {
        exit(message.params);
        return;
    }
    const auto row =
        std::find_if(notice_rows().begin(), notice_rows().end(),
                     [&](const NoticeRow &each) { return each.method == message.method; });
    if (row == notice_rows().end() || !is_initialized_ || is_shut_down_) {
        return;
    }
    try {
        (this->*row->take)(message.params);
    } catch (const ResponseError &error) {
        warn(message.method + ": " + error.message);
    } catch (const Json::exception &error) {
        warn(message.method + ": " + error.what());
    }
}

void Server::take_response(const Message &message) {
    if (message.id == request_for_settings_ && message.result.is_array() &&
        message.result.size() == 1) {
        take_settings(message.result[0]);
    }
}

// ---- Work ----

bool Server::work() {
    if (status_) {
        return false;
    }
    if (!waiting_.empty()) {
        const Waiting waiting = std::move(waiting_.front());
        waiting_.pop_front();
        answer(waiting);
        return true;
    }
    for (auto &[uri, document] : documents_) {
        if (!document.analysis) {
            (void)view_of(document);
            return true;
        }
    }
    return false;
}

void Server::answer(const Waiting &waiting) {
    try {
        send(response(waiting.id, result_of(waiting)));
    } catch (const ResponseError &error) {
        send(error_response(waiting.id, error));
    } catch (const Json::exception &error) {
        send(error_response(waiting.id, {ErrorCode::kInvalidParams, error.what()}));
    }
}

Json Server::result_of(const Waiting &waiting) {
    if (waiting.row->answer == nullptr) {
        return (this->*waiting.row->answer_all)(waiting.params);
    }
    OpenDocument *document = find(waiting.uri);
    if (document == nullptr || document->changes != waiting.changes) {
        throw ResponseError{ErrorCode::kContentModified, "the text has changed meanwhile"};
    }
    return (this->*waiting.row->answer)(*document, waiting.params);
}

// ---- Life ----

Json Server::initialize(const Json &params) {
    if (is_initialized_) {
        throw ResponseError{ErrorCode::kInvalidRequest, "the server is initialized already"};
    }
    capabilities_ = member(params, "capabilities");
    encoding_ = offers_utf8(params) ? Encoding::kUtf8 : Encoding::kUtf16;
    is_pulling_ = find_member(capabilities_, "/textDocument/diagnostic") != nullptr;
    is_initialized_ = true;
    if (const Json *options = find_member(params, "/initializationOptions");
        options != nullptr && options->is_object()) {
        take_settings(*options);
    }
    return {{"capabilities", server_capabilities(encoding_, is_pulling_)},
            {"serverInfo", {{"name", "zirpa"}, {"version", door::version()}}}};
}

void Server::initialized(const Json & /*params*/) {
    Json registrations = Json::array();
    if (has_flag(capabilities_, "/workspace/didChangeConfiguration/dynamicRegistration")) {
        registrations.push_back({{"id", "settings"},
                                 {"method", "workspace/didChangeConfiguration"},
                                 {"registerOptions", {{"section", "zirpa"}}}});
    }
    if (has_flag(capabilities_, "/workspace/didChangeWatchedFiles/dynamicRegistration")) {
        const std::string files = std::string("**/") + kProjectFile;
        registrations.push_back(
            {{"id", "project"},
             {"method", "workspace/didChangeWatchedFiles"},
             {"registerOptions", {{"watchers", Json::array({{{"globPattern", files}}})}}}});
    }
    if (!registrations.empty()) {
        send(request(++last_request_, "client/registerCapability",
                     {{"registrations", std::move(registrations)}}));
    }
    ask_for_settings();
}

void Server::cancel(const Json &params) {
    const Json &id = member(params, "id");
    const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                    [&](const Waiting &each) { return each.id == id; });
    if (found != waiting_.end()) {
        send(error_response(found->id, {ErrorCode::kRequestCancelled, "cancelled"}));
        waiting_.erase(found);
    }
}

void Server::exit(const Json & /*params*/) { status_ = is_shut_down_ ? 0 : 1; }

} // namespace lsp
