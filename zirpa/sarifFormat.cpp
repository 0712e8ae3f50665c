#include "door/door.h"
#include "zirpa/chapters.h"
#include "zirpa/formats.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace {

using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;

bool is_plain(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
           std::string_view("-._~/").find(ch) != std::string_view::npos;
}

// The name of a file as the format wants it: a URI, or a part of one.
std::string uri_of(const std::string &file) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri = file.starts_with('/') ? "file://" : "";
    for (const char ch : file) {
        if (is_plain(ch)) {
            uri += ch;
        } else {
            const auto byte = static_cast<unsigned char>(ch);
            uri += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
        }
    }
    return uri;
}

Json location_of(const std::string &file, const SourcePlace &place) {
    Json location;
    location["physicalLocation"]["artifactLocation"]["uri"] = uri_of(file);
    if (place.line == 0) {
        return location;
    }
    Json &region = location["physicalLocation"]["region"];
    region["startLine"] = place.line;
    if (const CharacterRange range = characters_of(place); range.begin > 0) {
        region["startColumn"] = range.begin;
        region["endColumn"] = range.end;
    }
    region["snippet"]["text"] = place.text;
    return location;
}

Json related_location(const std::string &file, const Note &note) {
    Json location = location_of(file, note.place);
    location["message"]["text"] = note.message;
    return location;
}

Json rule_of(const std::string &id) {
    Json rule;
    rule["id"] = id;
    const std::vector<Chapter> chapters = all_chapters();
    if (const auto chapter = std::find_if(chapters.begin(), chapters.end(),
                                          [&](const Chapter &each) { return each.id == id; });
        chapter != chapters.end()) {
        rule["shortDescription"]["text"] = chapter->meaning;
        rule["help"]["text"] = chapter->cure;
    }
    return rule;
}

// Rules are numbered in the order in which they are met.
using Rules = std::map<std::string, std::size_t>;

std::size_t number_of_rule(Rules &rules, Json &listed, const std::string &id) {
    const auto [rule, is_new] = rules.try_emplace(id, rules.size());
    if (is_new) {
        listed.push_back(rule_of(id));
    }
    return rule->second;
}

Json result_of(const Diagnostic &diagnostic, std::size_t rule) {
    Json result;
    result["ruleId"] = diagnostic.id;
    result["ruleIndex"] = rule;
    result["level"] = name_of(diagnostic.severity);
    result["message"]["text"] = diagnostic.message;
    result["locations"].push_back(location_of(diagnostic.file, diagnostic.place));
    for (const Note &note : diagnostic.notes) {
        result["relatedLocations"].push_back(related_location(diagnostic.file, note));
    }
    if (!diagnostic.hint.empty()) {
        result["properties"]["hint"] = diagnostic.hint;
    }
    return result;
}

} // namespace

std::string sarif_of(const std::vector<FileReport> &reports) {
    Rules rules;
    Json listed = Json::array();
    Json results = Json::array();
    for (const FileReport &report : reports) {
        for (const Diagnostic &diagnostic : report.diagnostics) {
            results.push_back(result_of(diagnostic, number_of_rule(rules, listed, diagnostic.id)));
        }
    }
    Json run;
    run["tool"]["driver"] = {{"name", "zirpa"},
                             {"semanticVersion", door::version() + std::string(".0")}};
    run["tool"]["driver"]["rules"] = std::move(listed);
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = std::move(results);
    Json json;
    json["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
    json["version"] = "2.1.0";
    json["runs"].push_back(std::move(run));
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}
