// Everything is made, and compared, before anything is written.
#include "dis/graph.h"
#include "dis/source.h"
#include "dis/verification.h"
#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/programInput.h"

#include <algorithm>
#include <filesystem>

namespace {

struct Text {
    std::string file;
    std::string text;
};

bool is_same_file(const std::string &one, const std::string &other) {
    std::error_code error;
    return one == other || std::filesystem::equivalent(one, other, error);
}

int refuse(const DisRequest &request, const std::string &id, const std::string &file,
           const std::string &message) {
    (void)show(request.reading.common, {{file, kUnusable, {error_of_file(id, file, message)}}});
    return kUnusable;
}

// What an output would overwrite; empty if there is none of that kind.
std::string endangered(const DisRequest &request, const std::vector<Text> &texts) {
    std::vector<std::string> names = other_inputs(request.reading);
    names.push_back(request.file);
    for (const Text &text : texts) {
        if (std::any_of(names.begin(), names.end(),
                        [&](const std::string &name) { return is_same_file(name, text.file); })) {
            return text.file;
        }
        names.push_back(text.file);
    }
    return {};
}

std::vector<Text> texts_for_files(const DisRequest &request, const dis::Listing &listing,
                                  const std::string &source) {
    std::vector<Text> texts;
    if (!request.hints_output.empty()) {
        texts.push_back({request.hints_output, dis::text_of(dis::hints_of(listing))});
    }
    if (!request.graph_output.empty()) {
        texts.push_back({request.graph_output, dis::graph_of(listing)});
    }
    if (!request.output.empty()) {
        texts.push_back({request.output, source});
    }
    return texts;
}

int write(const DisRequest &request, const std::vector<Text> &texts, const std::string &source) {
    if (const std::string file = endangered(request, texts); !file.empty()) {
        return refuse(request, "cannot-write", file,
                      "is not written: another file of this run has that name");
    }
    for (const Text &text : texts) {
        if (const auto failure = door::write_file(text.file, text.text, {})) {
            return refuse(request, "cannot-write", text.file,
                          "can't be written: " + failure->reason);
        }
    }
    return !request.output.empty() || print(source) ? 0 : kUnusable;
}

} // namespace

int disassemble(const DisRequest &request) {
    const std::optional<dis::Listing> listing = read_program(request.reading, request.file);
    if (!listing) {
        return kUnusable;
    }
    const std::string source =
        dis::source_of(*listing, {request.has_bytes, request.has_references});
    if (request.is_verified) {
        const std::string found = dis::difference(source, listing->program);
        if (!found.empty()) {
            return refuse(request, "not-reproduced", request.file, found);
        }
    }
    return write(request, texts_for_files(request, *listing, source), source);
}
