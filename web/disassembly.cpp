#include "web/disassembly.h"

#include "dis/graph.h"
#include "dis/lines.h"
#include "dis/reading.h"
#include "dis/source.h"
#include "dis/verification.h"
#include "web/options.h"

#include <array>

namespace web {

namespace {

using Json = OrderedJson;

const std::vector<std::string> kFormats = {"records", "image", "script", "array"};

constexpr std::array<dis::HintKind, 5> kHintKinds = {dis::HintKind::kCode, dis::HintKind::kData,
                                                     dis::HintKind::kString, dis::HintKind::kTable,
                                                     dis::HintKind::kLabel};

// What is asked for.
struct Request {
    std::optional<dis::InputFormat> format;
    std::optional<std::uint32_t> base;
    dis::Hints hints;       // one by one
    std::string hint_lines; // as a file has them
    std::string symbols;    // a symbol table
    dis::Comments comments;
};

// ---- Options ----

std::optional<dis::InputFormat> format_in(Options &options) {
    static constexpr std::array<dis::InputFormat, 4> kMeant = {
        dis::InputFormat::kRecords, dis::InputFormat::kImage, dis::InputFormat::kScript,
        dis::InputFormat::kArray};
    const auto word = options.choice("format", kFormats);
    for (std::size_t i = 0; word && i < kMeant.size(); ++i) {
        if (*word == kFormats[i]) {
            return kMeant[i];
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> base_in(Options &options) {
    const auto word = options.text("base");
    if (!word) {
        return std::nullopt;
    }
    const auto address = dis::address_of(*word);
    if (!address) {
        options.refuse("base: an address up to $FFFF is expected");
    }
    return address;
}

dis::Hints hints_in(Options &options) {
    dis::Hints hints;
    for (const dis::HintKind kind : kHintKinds) {
        const std::string word(dis::word_of(kind));
        for (const std::string &operand : options.texts(word.c_str())) {
            if (const std::string lack = dis::add_hint(kind, operand, hints); !lack.empty()) {
                options.refuse(word + ": " + operand + ": " + lack);
            }
        }
    }
    return hints;
}

Request request_in(Options &options) {
    Request request;
    request.format = format_in(options);
    request.base = base_in(options);
    request.hints = hints_in(options);
    request.hint_lines = options.text("hints").value_or("");
    request.symbols = options.text("symbolTable").value_or("");
    request.comments = {options.flag("bytes"), options.flag("xref")};
    options.refuse_rest();
    return request;
}

// ---- Reading ----

void put(Json &all, const std::vector<dis::Fault> &faults, const char *input) {
    for (const dis::Fault &fault : faults) {
        Json &json = all.emplace_back(Json::object());
        json["input"] = input;
        put_place(json, {fault.line, fault.first, fault.last, fault.text});
        json["id"] = fault.id;
        json["message"] = fault.message;
    }
}

void put_source(Json &json, const dis::Listing &listing, const dis::Comments &comments) {
    const std::string source = dis::source_of(listing, comments);
    json["source"] = source;
    json["difference"] = dis::difference(source, listing.program);
    json["hints"] = dis::text_of(dis::hints_of(listing));
    json["graph"] = dis::graph_of(listing);
}

Json read(const Request &request, std::string_view content) {
    Json json;
    Json faults = Json::array();
    dis::Reading reading = dis::read_program(content, request.format, request.base);
    put(faults, reading.faults, "program");
    dis::Hints hints;
    put(faults, dis::read_hints(request.hint_lines, hints), "hints");
    hints.add(request.hints);
    if (!request.symbols.empty()) {
        put(faults, dis::read_symbols(request.symbols, reading.program.names), "symbolTable");
    }
    if (faults.empty()) {
        put_source(json, dis::list(std::move(reading.program), hints), request.comments);
    }
    json["faults"] = std::move(faults);
    return json;
}

} // namespace

Answer disassemble(std::string_view options, std::string_view content) {
    Options given(options);
    const Request request = request_in(given);
    return given.fault().empty() ? Answer{text_of(read(request, content)), {}}
                                 : refusal(given.fault());
}

} // namespace web
