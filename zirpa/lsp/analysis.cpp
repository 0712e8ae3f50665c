#include "zirpa/lsp/analysis.h"

#include <algorithm>
#include <iterator>

namespace lsp {

namespace {

bool is_before(const door::Place &place, int line) { return place.line < line; }

template <typename Facts> std::vector<Facts> on_line(const std::vector<Facts> &all, int line) {
    const auto begin =
        std::lower_bound(all.begin(), all.end(), line, [](const Facts &each, int number) {
            return is_before(each.place, number);
        });
    const auto end =
        std::find_if(begin, all.end(), [=](const Facts &each) { return each.place.line != line; });
    return {begin, end};
}

} // namespace

Analysis::Analysis(std::string_view text, Settings settings) {
    find_lines(text);
    is_caseless_ = std::find(settings.options.begin(), settings.options.end(), "nocase") !=
                   settings.options.end();
    settings.text = std::string(text);
    settings.most_reserved = kMostReserved;
    Inspection inspection = inspect(settings, listener());
    status = inspection.status();
    diagnostics = std::move(inspection.diagnostics);
    result = std::move(inspection.result);
}

void Analysis::find_lines(std::string_view text) {
    std::size_t begin = 0;
    begins_.push_back(0);
    while (begin < text.size()) {
        const std::string_view piece = text.substr(begin, door::kLongestLine);
        begin += std::min(piece.find('\n'), piece.size() - 1) + 1;
        begins_.push_back(begin);
    }
    // Below the last line end there is a line to write on.
    if (text.empty() || text.back() == '\n') {
        begins_.push_back(text.size());
    }
    lines.resize(begins_.size() - 1);
}

door::Listener Analysis::listener() {
    door::Listener told;
    told.line = [this](const door::Line &line) { take(line); };
    told.definition = [this](const door::Definition &definition) { take(definition); };
    told.reference = [this](const door::Reference &reference) {
        uses.push_back({index_of(reference.name), reference.use, reference.place, reference.value,
                        reference.is_defined});
    };
    told.expression = [this](const door::Expression &expression) {
        expressions.push_back({expression.place, expression.value});
    };
    told.block = [this](const door::Block &block) {
        blocks.push_back({block.first, block.last, block.is_taken});
    };
    return told;
}

std::size_t Analysis::index_of(std::string_view name) {
    if (const auto known = indices_.find(name); known != indices_.end()) {
        return known->second;
    }
    names.push_back({std::string(name), {}, 0, {}, false});
    indices_.emplace(names.back().name, names.size() - 1);
    return names.size() - 1;
}

void Analysis::take(const door::Line &line) {
    memory.take(line);
    const auto index = static_cast<std::size_t>(line.line) - 1;
    if (index >= lines.size()) {
        return;
    }
    lines[index] = {line.kind,      true,         line.is_reserved,  line.address,
                    line.size,      bytes.size(), line.bytes.size(), line.label,
                    line.operation, line.operand};
    bytes.insert(bytes.end(), line.bytes.begin(), line.bytes.end());
}

void Analysis::take(const door::Definition &definition) {
    NameFacts &facts = names[index_of(definition.name)];
    if (!facts.is_defined) {
        facts.kind = definition.kind;
        facts.value = definition.value;
        facts.is_defined = true;
    }
    if (definition.place.line != 0) {
        facts.definitions.push_back(definition.place);
    }
}

int Analysis::line_at(std::size_t offset) const {
    const auto next = std::upper_bound(begins_.begin(), begins_.end(), offset);
    return std::clamp(static_cast<int>(std::distance(begins_.begin(), next)), 1, line_count());
}

std::size_t Analysis::line_begin(int line) const {
    return begins_[std::min(static_cast<std::size_t>(std::max(line, 1)) - 1, begins_.size() - 1)];
}

const LineFacts &Analysis::facts(int line) const {
    static const LineFacts kNothing;
    return line < 1 || line > line_count() ? kNothing : lines[static_cast<std::size_t>(line) - 1];
}

std::string_view Analysis::line_text(int line, std::string_view text) const {
    const std::size_t begin = line_begin(line);
    const std::string_view whole = text.substr(begin, line_begin(line + 1) - begin);
    return whole.substr(0, whole.find_last_not_of("\r\n") + 1);
}

Extent Analysis::where(int line, int first, int last, std::string_view text) const {
    const std::size_t begin = line_begin(line);
    const std::size_t size = line_text(line, text).size();
    if (first < 1) {
        return {begin, begin + size};
    }
    const std::size_t from = std::min(static_cast<std::size_t>(first) - 1, size);
    const std::size_t to = std::min(static_cast<std::size_t>(std::max(last, 0)), size);
    return {begin + from, begin + std::max(from, to)};
}

const NameFacts *Analysis::find(std::string_view name) const {
    const auto known = indices_.find(name);
    return known == indices_.end() ? nullptr : &names[known->second];
}

std::vector<UseFacts> Analysis::uses_of(int line) const { return on_line(uses, line); }

std::vector<ExpressionFacts> Analysis::expressions_of(int line) const {
    return on_line(expressions, line);
}

} // namespace lsp
