#include "zirpa/lsp/protocol.h"

#include <algorithm>
#include <limits>

namespace lsp {

namespace {

constexpr const char *kVersion = "2.0";
constexpr const char *kSource = "zirpa";

[[noreturn]] void refuse(const std::string &text) {
    throw ResponseError{ErrorCode::kInvalidParams, text};
}

// Clients say "the end of the line" by numbers of any size.
int natural(const Json &json, const char *name) {
    const Json &value = member(json, name);
    if (!value.is_number_integer() || value < 0) {
        refuse(std::string(name) + " is no natural number");
    }
    const auto most = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(value.get<std::uint64_t>(), most));
}

Json markdown(const std::string &text) { return {{"kind", "markdown"}, {"value", text}}; }

} // namespace

// ---- JSON-RPC ----

Json response(const Json &id, Json result) {
    return {{"jsonrpc", kVersion}, {"id", id}, {"result", std::move(result)}};
}

Json error_response(const Json &id, const ResponseError &error) {
    return {{"jsonrpc", kVersion},
            {"id", id},
            {"error", {{"code", static_cast<int>(error.code)}, {"message", error.message}}}};
}

Json notification(const char *method, Json params) {
    return {{"jsonrpc", kVersion}, {"method", method}, {"params", std::move(params)}};
}

Json request(int id, const char *method, Json params) {
    Json json = {{"jsonrpc", kVersion}, {"id", id}, {"method", method}};
    if (!params.is_null()) {
        json["params"] = std::move(params);
    }
    return json;
}

// ---- From JSON ----

const Json &member(const Json &json, const char *name) {
    if (!json.is_object()) {
        refuse(std::string("an object with ") + name + " is needed");
    }
    const auto found = json.find(name);
    if (found == json.end()) {
        refuse(std::string(name) + " is missing");
    }
    return *found;
}

const std::string &text_member(const Json &json, const char *name) {
    const Json &value = member(json, name);
    if (!value.is_string()) {
        refuse(std::string(name) + " is no text");
    }
    return value.get_ref<const std::string &>();
}

const Json *find_member(const Json &json, const char *pointer) {
    const Json::json_pointer path(pointer);
    return json.contains(path) ? &json.at(path) : nullptr;
}

bool has_flag(const Json &json, const char *pointer) {
    const Json *value = find_member(json, pointer);
    return value != nullptr && value->is_boolean() && value->get<bool>();
}

Position position_of(const Json &json) {
    return {natural(json, "line"), natural(json, "character")};
}

Range range_of(const Json &json) {
    return {position_of(member(json, "start")), position_of(member(json, "end"))};
}

ContentChange content_change_of(const Json &json) {
    ContentChange change;
    change.text = text_member(json, "text");
    if (const Json *range = find_member(json, "/range"); range != nullptr) {
        change.range = range_of(*range);
    }
    return change;
}

// ---- To JSON ----

// Members of what there are many of are set one by one, which costs less than a list.

void to_json(Json &json, const Position &position) {
    json["line"] = position.line;
    json["character"] = position.character;
}

void to_json(Json &json, const Range &range) {
    json["start"] = range.start;
    json["end"] = range.end;
}

void to_json(Json &json, const Location &location) {
    json = {{"uri", location.uri}, {"range", location.range}};
}

void to_json(Json &json, const TextEdit &edit) {
    json = {{"range", edit.range}, {"newText", edit.text}};
}

void to_json(Json &json, const WorkspaceEdit &edit) {
    json = {{"changes", {{edit.uri, edit.edits}}}};
}

void to_json(Json &json, const RelatedInformation &related) {
    json = {{"location", related.location}, {"message", related.message}};
}

void to_json(Json &json, const PublishedDiagnostic &diagnostic) {
    json["range"] = diagnostic.range;
    json["severity"] = diagnostic.severity;
    json["source"] = kSource;
    json["message"] = diagnostic.message;
    if (!diagnostic.code.empty()) {
        json["code"] = diagnostic.code;
    }
    if (!diagnostic.href.empty()) {
        json["codeDescription"]["href"] = diagnostic.href;
    }
    for (const DiagnosticTag tag : diagnostic.tags) {
        json["tags"].push_back(static_cast<int>(tag));
    }
    if (!diagnostic.related.empty()) {
        json["relatedInformation"] = diagnostic.related;
    }
}

void to_json(Json &json, const CodeAction &action) {
    json = {{"title", action.title}, {"kind", "quickfix"}, {"edit", action.edit}};
    if (action.diagnostic) {
        json["diagnostics"] = Json::array({*action.diagnostic});
    }
    if (action.is_preferred) {
        json["isPreferred"] = true;
    }
}

void to_json(Json &json, const Hover &hover) {
    json = {{"contents", markdown(hover.markdown)}, {"range", hover.range}};
}

void to_json(Json &json, const InlayHint &hint) {
    json = {{"position", hint.position}, {"label", hint.label}, {"paddingLeft", true}};
    if (!hint.tooltip.empty()) {
        json["tooltip"] = hint.tooltip;
    }
}

void to_json(Json &json, const CodeLens &lens) {
    json = {{"range", lens.range}, {"command", {{"title", lens.title}, {"command", ""}}}};
}

void to_json(Json &json, const Symbol &symbol) {
    json = {{"name", symbol.name},
            {"detail", symbol.detail},
            {"kind", static_cast<int>(symbol.kind)},
            {"range", symbol.range},
            {"selectionRange", symbol.selection}};
}

void to_json(Json &json, const FoldingRange &range) {
    json = {{"startLine", range.first},
            {"endLine", range.last},
            {"kind", range.is_comment ? "comment" : "region"}};
}

void to_json(Json &json, const DocumentHighlight &highlight) {
    json = {{"range", highlight.range}, {"kind", highlight.is_definition ? 3 : 2}};
}

void to_json(Json &json, const CompletionItem &item) {
    json = {{"label", item.label},
            {"kind", static_cast<int>(item.kind)},
            {"textEdit", TextEdit{item.range, item.label}}};
    if (!item.detail.empty()) {
        json["detail"] = item.detail;
    }
    if (!item.documentation.empty()) {
        json["documentation"] = markdown(item.documentation);
    }
}

void to_json(Json &json, const SignatureHelp &help) {
    Json signatures = Json::array();
    for (const Signature &signature : help.signatures) {
        Json each = {{"label", signature.label}};
        if (!signature.documentation.empty()) {
            each["documentation"] = signature.documentation;
        }
        signatures.push_back(std::move(each));
    }
    json = {{"signatures", std::move(signatures)},
            {"activeSignature", help.active},
            {"activeParameter", 0}};
}

} // namespace lsp
