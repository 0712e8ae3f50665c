#include "zirpa/lsp/rpc.h"

namespace lsp {

namespace {

// No message of the protocol comes near; deeper ones would cost stack.
constexpr std::size_t kDeepest = 200;

bool is_too_deep(std::string_view text) {
    std::size_t depth = 0;
    bool is_in_text = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char ch = text[i];
        if (is_in_text) {
            i += ch == '\\' ? 1 : 0;
            is_in_text = ch != '"';
        } else if (ch == '"') {
            is_in_text = true;
        } else if (ch == '[' || ch == '{') {
            if (++depth > kDeepest) {
                return true;
            }
        } else if ((ch == ']' || ch == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

[[noreturn]] void refuse(const Json &id, ErrorCode code, const char *text) {
    throw RefusedMessage{id, {code, text}};
}

Json taken(Json &json, const char *name) {
    const auto found = json.find(name);
    return found == json.end() ? Json() : std::move(*found);
}

} // namespace

Message message_of(std::string_view text) {
    Json json =
        is_too_deep(text) ? Json(Json::value_t::discarded) : Json::parse(text, nullptr, false);
    if (json.is_discarded()) {
        refuse(nullptr, ErrorCode::kParseError, "the message is no JSON");
    }
    if (!json.is_object()) {
        refuse(nullptr, ErrorCode::kInvalidRequest, "the message is no object");
    }
    Message message;
    message.id = taken(json, "id");
    if (!message.id.is_null() && !message.id.is_string() && !message.id.is_number_integer()) {
        refuse(nullptr, ErrorCode::kInvalidRequest, "the id is neither a number nor a text");
    }
    if (taken(json, "jsonrpc") != "2.0") {
        refuse(message.id, ErrorCode::kInvalidRequest, "jsonrpc is not 2.0");
    }
    const Json method = taken(json, "method");
    message.is_response = method.is_null() && (json.contains("result") || json.contains("error"));
    if (!message.is_response && !method.is_string()) {
        refuse(message.id, ErrorCode::kInvalidRequest, "the method is no text");
    }
    message.method = method.is_string() ? method.get<std::string>() : std::string();
    message.params = taken(json, "params");
    message.result = taken(json, "result");
    return message;
}

} // namespace lsp
