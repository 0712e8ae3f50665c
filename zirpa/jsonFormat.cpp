#include "zirpa/jsonFormat.h"

#include "zirpa/formats.h"

#include <nlohmann/json.hpp>

using Json = OrderedJson;

void put_place(Json &json, const SourcePlace &place) {
    if (place.line == 0) {
        return;
    }
    json["line"] = place.line;
    if (const CharacterRange range = characters_of(place); range.begin > 0) {
        json["column"] = range.begin;
        json["endColumn"] = range.end;
    }
}

namespace {

constexpr int kIndent = 2;

Json json_of(const Note &note) {
    Json json;
    put_place(json, note.place);
    json["message"] = note.message;
    return json;
}

} // namespace

Json json_of(const Diagnostic &diagnostic) {
    Json json;
    json["file"] = diagnostic.file;
    put_place(json, diagnostic.place);
    json["severity"] = name_of(diagnostic.severity);
    json["id"] = diagnostic.id;
    json["message"] = diagnostic.message;
    if (!diagnostic.hint.empty()) {
        json["hint"] = diagnostic.hint;
    }
    if (!diagnostic.notes.empty()) {
        json["notes"] = Json::array();
        for (const Note &note : diagnostic.notes) {
            json["notes"].push_back(json_of(note));
        }
    }
    return json;
}

namespace {

Json json_of(const FileReport &report) {
    Json json;
    json["file"] = report.file;
    json["status"] = report.status;
    json["errors"] = count_of(report.diagnostics, Severity::kError);
    json["warnings"] = count_of(report.diagnostics, Severity::kWarning);
    json["diagnostics"] = Json::array();
    for (const Diagnostic &diagnostic : report.diagnostics) {
        json["diagnostics"].push_back(json_of(diagnostic));
    }
    return json;
}

} // namespace

// Bytes that are no UTF-8 become the character for that: the formats know of nothing else.
std::string json_of(const std::vector<FileReport> &reports) {
    Json json;
    json["version"] = 1;
    json["files"] = Json::array();
    for (const FileReport &report : reports) {
        json["files"].push_back(json_of(report));
    }
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}
