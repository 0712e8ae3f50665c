#include "zirpa/lsp/forms.h"

#include "door/door.h"
#include "zirpa/lsp/tokens.h"

#include <algorithm>
#include <map>

namespace lsp {

namespace {

// A line for each form; a value is 0, to which a branch reaches too.
std::string source_of(const std::string &name, const std::vector<std::string> &operands) {
    std::string source = "\tORG\t0\n";
    for (std::string operand : operands) {
        if (const std::size_t value = operand.find('n'); value != std::string::npos) {
            operand[value] = '0';
        }
        source.append("\t").append(name).append("\t").append(operand).append("\n");
    }
    return source;
}

std::vector<Form> assembled_forms(const std::string &name) {
    std::vector<std::string> operands = door::operands_of(name);
    if (operands.empty()) {
        operands.emplace_back();
    }
    std::vector<Form> forms;
    const std::string source = source_of(name, operands);
    door::Listener listener;
    listener.line = [&](const door::Line &line) {
        if (!line.bytes.empty() && forms.size() < operands.size()) {
            forms.push_back({operands[forms.size()], line.bytes[0], line.bytes.size()});
        }
    };
    (void)door::run({{}, "forms.szirpa", source, door::Outputs::kNowhere}, listener);
    return forms;
}

} // namespace

bool is_instruction(std::string_view word) {
    static const std::vector<std::string_view> kNames = door::instructions();
    return std::find(kNames.begin(), kNames.end(), door::upper(word)) != kNames.end();
}

const std::vector<Form> &forms_of(std::string_view instruction) {
    static std::map<std::string, std::vector<Form>> known;
    static const std::vector<Form> kNothing;
    if (!is_instruction(instruction)) {
        return kNothing;
    }
    const std::string name = door::upper(instruction);
    const auto [forms, is_new] = known.try_emplace(name);
    if (is_new) {
        forms->second = assembled_forms(name);
    }
    return forms->second;
}

std::string in_full(std::string_view instruction, const Form &form) {
    return std::string(instruction) + (form.operand.empty() ? "" : " " + form.operand);
}

} // namespace lsp
