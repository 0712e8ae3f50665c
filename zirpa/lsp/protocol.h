// The messages of the Language Server Protocol 3.17, as far as this server takes part in them, as
// plain structures; protocol.cpp holds what they look like as JSON.
//
// Positions count from 0, characters in the encoding that client and server have agreed on.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lsp {

using Json = nlohmann::json;

// ---- JSON-RPC ----

enum class ErrorCode {
    kParseError = -32700,
    kInvalidRequest = -32600,
    kMethodNotFound = -32601,
    kInvalidParams = -32602,
    kInternalError = -32603,
    kServerNotInitialized = -32002,
    kRequestFailed = -32803,
    kContentModified = -32801,
    kRequestCancelled = -32800,
};

// Thrown by what answers a request; it becomes the error of the response.
struct ResponseError {
    ErrorCode code;
    std::string message;
};

Json response(const Json &id, Json result);
Json error_response(const Json &id, const ResponseError &error);
Json notification(const char *method, Json params);
// Null parameters are none.
Json request(int id, const char *method, Json params);

// ---- Texts ----

enum class Encoding { kUtf16, kUtf8 };

struct Position {
    int line = 0;
    int character = 0;
};

inline bool operator==(const Position &one, const Position &other) {
    return one.line == other.line && one.character == other.character;
}

inline bool operator<(const Position &one, const Position &other) {
    return one.line != other.line ? one.line < other.line : one.character < other.character;
}

// Up to the end, which is not part of it.
struct Range {
    Position start;
    Position end;
};

struct Location {
    std::string uri;
    Range range;
};

struct TextEdit {
    Range range;
    std::string text;
};

// Edits of one document.
struct WorkspaceEdit {
    std::string uri;
    std::vector<TextEdit> edits;
};

// Without a range it is the whole text.
struct ContentChange {
    std::optional<Range> range;
    std::string text;
};

// ---- Diagnostics ----

enum class DiagnosticTag { kUnnecessary = 1 };

struct RelatedInformation {
    Location location;
    std::string message;
};

struct PublishedDiagnostic {
    Range range;
    int severity = 1; // 1: an error, 2: a warning, 4: a hint
    std::string code;
    std::string href; // where the code is explained; empty: unknown
    std::string message;
    std::vector<DiagnosticTag> tags;
    std::vector<RelatedInformation> related;
};

struct CodeAction {
    std::string title;
    std::optional<PublishedDiagnostic> diagnostic; // that it mends
    WorkspaceEdit edit;
    bool is_preferred = false;
};

// ---- What is shown ----

struct Hover {
    std::string markdown;
    Range range;
};

struct InlayHint {
    Position position;
    std::string label;
    std::string tooltip;
};

struct CodeLens {
    Range range;
    std::string title;
};

// The numbers are those of the protocol.
enum class SymbolKind { kFunction = 12, kVariable = 13, kConstant = 14 };

struct Symbol {
    std::string name;
    std::string detail;
    SymbolKind kind = SymbolKind::kFunction;
    Range range;     // the statement
    Range selection; // the name
};

struct FoldingRange {
    int first = 0;
    int last = 0;
    bool is_comment = false;
};

struct DocumentHighlight {
    Range range;
    bool is_definition = false;
};

// ---- Completion ----

enum class CompletionKind {
    kFunction = 3,
    kVariable = 6,
    kValue = 12,
    kKeyword = 14,
    kSnippet = 15,
    kConstant = 21,
};

struct CompletionItem {
    std::string label;
    CompletionKind kind = CompletionKind::kKeyword;
    std::string detail;
    std::string documentation; // Markdown
    Range range;               // what is replaced by the label
};

struct Signature {
    std::string label;
    std::string documentation;
};

struct SignatureHelp {
    std::vector<Signature> signatures;
    int active = 0;
};

// ---- JSON ----

// Throw ResponseError where the JSON has another shape.
Position position_of(const Json &json);
Range range_of(const Json &json);
ContentChange content_change_of(const Json &json);
const Json &member(const Json &json, const char *name);
const std::string &text_member(const Json &json, const char *name);

// Nothing where a member, or one on the way to it, is missing: "/textDocument/hover".
const Json *find_member(const Json &json, const char *pointer);
bool has_flag(const Json &json, const char *pointer);

void to_json(Json &json, const Position &position);
void to_json(Json &json, const Range &range);
void to_json(Json &json, const Location &location);
void to_json(Json &json, const TextEdit &edit);
void to_json(Json &json, const WorkspaceEdit &edit);
void to_json(Json &json, const RelatedInformation &related);
void to_json(Json &json, const PublishedDiagnostic &diagnostic);
void to_json(Json &json, const CodeAction &action);
void to_json(Json &json, const Hover &hover);
void to_json(Json &json, const InlayHint &hint);
void to_json(Json &json, const CodeLens &lens);
void to_json(Json &json, const Symbol &symbol);
void to_json(Json &json, const FoldingRange &range);
void to_json(Json &json, const DocumentHighlight &highlight);
void to_json(Json &json, const CompletionItem &item);
void to_json(Json &json, const SignatureHelp &help);

} // namespace lsp
