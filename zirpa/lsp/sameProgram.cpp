#include "zirpa/lsp/sameProgram.h"

#include "zirpa/lsp/analysis.h"

#include <algorithm>

namespace lsp {

namespace {

// All that a run says but for texts and columns.
std::string account_of(const std::string &text, const Settings &settings) {
    std::string account;
    const auto add = [&](const auto &...numbers) {
        ((account += std::to_string(numbers) + " "), ...);
        account += '\n';
    };
    door::Listener listener;
    listener.line = [&](const door::Line &line) {
        add(line.line, static_cast<int>(line.kind), line.address, line.size);
        account.append(line.bytes.begin(), line.bytes.end());
    };
    listener.report = [&](const door::Report &report) {
        add(report.place.line, static_cast<int>(report.kind));
        account += report.id;
    };
    std::vector<std::string> options = settings.options;
    options.insert(options.end(), {"-L", "-A"});
    const door::Result result = door::run(
        {options, settings.source, text, door::Outputs::kMemory, kMostReserved}, listener);
    for (const door::Output &output : result.outputs) {
        if (output.kind != door::OutputKind::kListing) {
            account += output.bytes;
        }
    }
    return account;
}

} // namespace

std::string edited(const Document &document, std::vector<TextEdit> edits) {
    std::stable_sort(edits.begin(), edits.end(), [](const TextEdit &one, const TextEdit &other) {
        return one.range.start < other.range.start;
    });
    const std::string &text = document.text();
    std::string result;
    std::size_t position = 0;
    for (const TextEdit &edit : edits) {
        const std::size_t begin = std::max(document.offset_of(edit.range.start), position);
        result.append(text, position, begin - position);
        result += edit.text;
        position = std::max(document.offset_of(edit.range.end), begin);
    }
    return result.append(text, position);
}

bool is_same_program(const Document &document, const std::vector<TextEdit> &edits,
                     const Settings &settings) {
    return account_of(document.text(), settings) == account_of(edited(document, edits), settings);
}

} // namespace lsp
