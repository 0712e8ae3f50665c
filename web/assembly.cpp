// A run is an analysis, as for the language server, whose outputs are kept.
#include "web/assembly.h"

#include "web/options.h"
#include "zirpa/assemble.h"
#include "zirpa/heard.h"
#include "zirpa/lsp/analysis.h"
#include "zirpa/project.h"

#include <array>

namespace web {

namespace {

using Json = OrderedJson;

struct Flag {
    const char *name;
    const char *option; // of the assembler
};

constexpr std::array<Flag, 5> kFlags = {{{"listing", "-L"},
                                         {"array", "-A"},
                                         {"symbols", "-S"},
                                         {"debug", "-g"},
                                         {"listWarnings", "-w"}}};

// What the source is called where it has no name.
constexpr const char *kUnnamedSource = "source.szirpa";

constexpr std::array<const char *, 9> kLineKinds = {"empty",       "comment",  "skipped",
                                                    "conditional", "label",    "instruction",
                                                    "directive",   "debugger", "faulty"};
constexpr std::array<const char *, 4> kNameKinds = {"label", "constant", "define", "option"};
constexpr std::array<const char *, 3> kUses = {"value", "test", "start"};
constexpr std::array<const char *, 4> kOutputs = {"records", "listing", "array", "script"};

template <typename Names, typename Kind> const char *name_of(const Names &names, Kind kind) {
    return names.at(static_cast<std::size_t>(kind));
}

// ---- Options ----

// What is left over belongs to a project, or to nobody.
void add_project(Options &options, Settings &settings) {
    Project project;
    if (const auto fault = read_project(options.rest(), false, project)) {
        options.refuse(*fault);
    }
    settings.options.insert(settings.options.end(), project.options.begin(), project.options.end());
    settings.warnings = project.warnings;
}

Settings settings_of(Options &options) {
    Settings settings;
    settings.outputs = door::Outputs::kMemory;
    settings.source = as_file_name(options.text("name").value_or(kUnnamedSource));
    if (const auto output = options.text("output")) {
        settings.options = {"-o", *output};
    }
    for (const Flag &flag : kFlags) {
        if (options.flag(flag.name)) {
            settings.options.emplace_back(flag.option);
        }
    }
    add_project(options, settings);
    return settings;
}

// ---- The answer ----

class Story {
  public:
    Story(std::string_view source, Settings settings)
        : source_(source), analysis_(source, std::move(settings)) {}

    Answer answer() const;

  private:
    void put(Json &json, const door::Place &place) const;
    Json fix(const Fix &fix) const;
    Json diagnostics() const;
    Json line(std::size_t index) const;
    Json lines() const;
    Json symbol(std::size_t index) const;
    Json symbols() const;
    Json outputs(std::string &bytes) const;

    std::string_view source_;
    lsp::Analysis analysis_;
};

void Story::put(Json &json, const door::Place &place) const {
    put_place(json, place_in(place, analysis_.line_text(place.line, source_)));
}

// What goes in ahead of a column replaces nothing.
Json Story::fix(const Fix &fix) const {
    Json json;
    json["title"] = fix.title;
    put(json, fix.place);
    if (fix.place.last < fix.place.first) {
        json["endColumn"] = json["column"];
    }
    json["text"] = fix.text;
    return json;
}

Json Story::diagnostics() const {
    Json all = Json::array();
    for (const Diagnostic &diagnostic : analysis_.diagnostics) {
        Json &json = all.emplace_back(json_of(diagnostic));
        for (const Fix &each : diagnostic.fixes) {
            json["fixes"].push_back(fix(each));
        }
    }
    return all;
}

Json Story::line(std::size_t index) const {
    const lsp::LineFacts &facts = analysis_.lines[index];
    Json json;
    json["line"] = index + 1;
    json["kind"] = name_of(kLineKinds, facts.kind);
    json["address"] = facts.address;
    json["size"] = facts.size;
    json["bytes"] = Json::array();
    for (std::size_t i = 0; i < facts.count; ++i) {
        json["bytes"].push_back(analysis_.bytes[facts.bytes + i]);
    }
    return json;
}

Json Story::lines() const {
    Json all = Json::array();
    for (std::size_t i = 0; i < analysis_.lines.size(); ++i) {
        if (analysis_.lines[i].is_told) {
            all.push_back(line(i));
        }
    }
    return all;
}

// The place is the first one, which has given the value.
Json Story::symbol(std::size_t index) const {
    const lsp::NameFacts &facts = analysis_.names[index];
    Json json;
    json["name"] = facts.name;
    json["kind"] = name_of(kNameKinds, facts.kind);
    json["value"] = facts.value;
    if (!facts.definitions.empty()) {
        put(json, facts.definitions.front());
    }
    json["uses"] = Json::array();
    return json;
}

// In the order of the source. Names that are only used are none.
Json Story::symbols() const {
    Json all = Json::array();
    std::vector<std::size_t> places(analysis_.names.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (analysis_.names[i].is_defined) {
            places[i] = all.size();
            all.push_back(symbol(i));
        }
    }
    for (const lsp::UseFacts &use : analysis_.uses) {
        if (analysis_.names[use.name].is_defined) {
            Json &json = all[places[use.name]]["uses"].emplace_back(Json::object());
            json["kind"] = name_of(kUses, use.use);
            put(json, use.place);
        }
    }
    return all;
}

Json Story::outputs(std::string &bytes) const {
    Json all = Json::array();
    for (const door::Output &output : analysis_.result.outputs) {
        Json &json = all.emplace_back(Json::object());
        json["kind"] = name_of(kOutputs, output.kind);
        json["name"] = output.name;
        json["size"] = output.bytes.size();
        bytes += output.bytes;
    }
    return all;
}

Answer Story::answer() const {
    Answer answer;
    Json json;
    json["status"] = analysis_.status;
    json["errors"] = count_of(analysis_.diagnostics, Severity::kError);
    json["warnings"] = count_of(analysis_.diagnostics, Severity::kWarning);
    json["diagnostics"] = diagnostics();
    json["lines"] = lines();
    json["symbols"] = symbols();
    json["symbolTable"] = analysis_.result.symbols;
    json["outputs"] = outputs(answer.bytes);
    answer.json = text_of(json);
    return answer;
}

} // namespace

Answer assemble(std::string_view options, std::string_view source) {
    Options given(options);
    Settings settings = settings_of(given);
    return given.fault().empty() ? Story(source, std::move(settings)).answer()
                                 : refusal(given.fault());
}

} // namespace web
