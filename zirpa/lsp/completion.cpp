#include "zirpa/lsp/completion.h"

#include "zirpa/lsp/forms.h"
#include "zirpa/lsp/wordTexts.h"
#include "zirpa/phrases.h"

#include <algorithm>
#include <set>

namespace lsp {

namespace {

enum class Field { kNothing, kLabel, kOperation, kConditional, kOperand };

// Where the cursor stands: the field, the word that is begun there, and the operation ahead of it.
struct Place {
    Field field = Field::kNothing;
    std::size_t begin = 0; // of the word
    std::string operation;
};

bool is_blank(char ch) { return ch == ' ' || ch == '\t'; }

// The begin of the name or number that ends at an offset.
std::size_t begin_of_word(std::string_view line, std::size_t end) {
    while (end > 0 && door::is_name_character(line[end - 1])) {
        --end;
    }
    return end;
}

bool is_in_text(std::string_view before) {
    return std::count(before.begin(), before.end(), '"') % 2 == 1;
}

std::string word_at(std::string_view line, const door::Place &place) {
    const auto begin = static_cast<std::size_t>(place.first) - 1;
    return std::string(line.substr(begin, static_cast<std::size_t>(place.last) - begin));
}

// The place in the operand, as far as it goes up to the cursor.
Place place_in_operand(std::string_view before, const door::LineFields &fields) {
    Place place;
    const auto from = static_cast<std::size_t>(fields.operation.last);
    const std::size_t operand = std::min(before.find_first_not_of(" \t", from), before.size());
    const bool has_ended = before.find_first_of(" \t", operand) != std::string_view::npos;
    place.operation = word_at(before, fields.operation);
    if (!has_ended && !is_in_text(before.substr(operand))) {
        place.field = Field::kOperand;
        place.begin = std::max(begin_of_word(before, before.size()), operand);
    }
    return place;
}

Place place_of(std::string_view before) {
    const door::LineFields fields = door::fields_of(before);
    const std::size_t first = std::min(before.find_first_not_of(" \t"), before.size());
    const bool is_ended = before.empty() || is_blank(before.back());
    if (before.find(';') < before.size() && !is_in_text(before.substr(0, before.find(';')))) {
        return {};
    }
    if (fields.operation.has_column() &&
        (is_ended || fields.operation.last < static_cast<int>(before.size()))) {
        return place_in_operand(before, fields);
    }
    if (first < before.size() && before[first] == '#') {
        return {Field::kConditional, first, {}};
    }
    if (!before.empty() && (first > 0 || fields.operation.has_column() || is_ended)) {
        const std::size_t begin = is_ended ? before.size() : before.find_last_of(" \t") + 1;
        return {Field::kOperation, begin, {}};
    }
    return {Field::kLabel, 0, {}};
}

// ---- What may stand there ----

class Items {
  public:
    explicit Items(Range range) : range_(range) {}

    void add(std::string label, CompletionKind kind, std::string detail,
             std::string documentation = {}) {
        list.push_back(
            {std::move(label), kind, std::move(detail), std::move(documentation), range_});
    }

    std::vector<CompletionItem> list;

  private:
    Range range_;
};

std::string forms_text(std::string_view instruction) {
    std::string text;
    for (const std::string &operand : door::operands_of(instruction)) {
        text += (text.empty() ? "" : "  ") + operand;
    }
    return text;
}

void add_operations(Items &items) {
    for (const std::string_view name : door::instructions()) {
        items.add(std::string(name), CompletionKind::kKeyword, forms_text(name));
    }
    for (const std::string &name : door::directives()) {
        items.add(name, CompletionKind::kKeyword, std::string(form_of_word(name)),
                  std::string(text_of_word(name)));
    }
}

// The expression is tested by a word with two hashes.
void add_conditionals(Items &items) {
    for (const std::string &word : door::conditional_words()) {
        items.add(word, CompletionKind::kKeyword, std::string(form_of_word(word)),
                  std::string(text_of_word(word)));
    }
}

// A label that is used but not defined is likely to be the one that is written now.
void add_missing_names(const View &view, Items &items) {
    for (const NameFacts &name : view.analysis.names) {
        if (!name.is_defined) {
            items.add(name.name, CompletionKind::kFunction, "is used but not defined");
        }
    }
}

CompletionKind kind_of(door::NameKind kind) {
    switch (kind) {
    case door::NameKind::kLabel: return CompletionKind::kFunction;
    case door::NameKind::kConstant: return CompletionKind::kConstant;
    default: return CompletionKind::kVariable;
    }
}

void add_names(const View &view, Items &items) {
    for (const NameFacts &name : view.analysis.names) {
        if (name.is_defined) {
            items.add(name.name, kind_of(name.kind), in_both_bases(name.value));
        }
    }
}

// Names of lines that are skipped have no value. A conditional that is being written has no end
// yet, and so may skip the whole source.
void add_skipped_names(const View &view, Items &items) {
    std::set<std::string> names;
    for (int line = 1; line <= view.analysis.line_count(); ++line) {
        if (view.analysis.facts(line).kind == door::LineKind::kSkipped) {
            const std::string_view text = view.line_text(line);
            const door::Place label = door::fields_of(text).label;
            if (label.has_column()) {
                names.insert(word_at(text, label));
            }
        }
    }
    for (const std::string &name : names) {
        if (const NameFacts *known = view.analysis.find(name);
            known == nullptr || !known->is_defined) {
            items.add(name, CompletionKind::kVariable, "in a block that is skipped");
        }
    }
}

// What is left of an instruction's forms when values are left out: "#", "A,X", ",X+".
void add_forms(const Place &place, Items &items) {
    for (const Form &form : forms_of(place.operation)) {
        if (!form.operand.empty() && form.operand.find('n') == std::string::npos) {
            items.add(form.operand, CompletionKind::kSnippet, in_full(place.operation, form));
        }
    }
}

void add_registers(Items &items) {
    for (const std::string_view name : door::registers()) {
        items.add(std::string(name), CompletionKind::kValue, "register");
    }
}

bool takes_names(const Place &place) {
    const std::string word = door::upper(place.operation);
    return is_instruction(word) ? !door::operands_of(word).empty()
                                : !text_of_word(word).empty() && word != "FCS";
}

void add_operands(const View &view, const Place &place, std::string_view before, Items &items) {
    if (!takes_names(place)) {
        return;
    }
    const bool is_begin = place.begin == 0 || is_blank(before[place.begin - 1]);
    if (is_begin) {
        add_forms(place, items);
    } else if (before[place.begin - 1] == ',' && is_instruction(place.operation)) {
        add_registers(items);
        return;
    }
    add_names(view, items);
    add_skipped_names(view, items);
}

// ---- Forms ----

// Which of the forms the operand is, as far as it is written.
bool may_become(std::string_view operand, std::string_view form) {
    const std::size_t comma = operand.find(',');
    const std::size_t comma_of_form = form.find(',');
    if (operand.starts_with('#') != form.starts_with('#')) {
        return operand.empty();
    }
    if (comma == std::string_view::npos) {
        return operand.empty() || form.starts_with('n') || form.starts_with('#') ||
               door::upper(operand) == form.substr(0, comma_of_form);
    }
    const bool is_value = comma > 0 && !door::is_register(operand.substr(0, comma));
    const std::string tail = door::upper(operand.substr(comma));
    return comma_of_form != std::string_view::npos &&
           form.substr(comma_of_form).starts_with(tail) &&
           (is_value ? form.starts_with('n')
                     : door::upper(operand.substr(0, comma)) == form.substr(0, comma_of_form));
}

std::string form_documentation(const Form &form) {
    return std::to_string(form.length) + (form.length == 1 ? " byte" : " bytes");
}

} // namespace

std::vector<CompletionItem> completion(const View &view, Position position) {
    const View::Spot spot = view.spot_at(position);
    const std::string_view before = spot.text.substr(0, spot.offset);
    const Place place = place_of(before);
    Items items(view.range_of(spot.line, place.begin, spot.offset));
    switch (place.field) {
    case Field::kLabel:
        add_missing_names(view, items);
        add_conditionals(items);
        break;
    case Field::kOperation: add_operations(items); break;
    case Field::kConditional: add_conditionals(items); break;
    case Field::kOperand: add_operands(view, place, before, items); break;
    default: break;
    }
    return items.list;
}

std::optional<SignatureHelp> signature_help(const View &view, Position position) {
    const View::Spot spot = view.spot_at(position);
    const std::string_view before = spot.text.substr(0, spot.offset);
    const Place place = place_of(before);
    if (place.field != Field::kOperand) {
        return std::nullopt;
    }
    SignatureHelp help;
    if (!is_instruction(place.operation)) {
        if (text_of_word(place.operation).empty()) {
            return std::nullopt;
        }
        help.signatures.push_back({std::string(form_of_word(place.operation)), {}});
        return help;
    }
    const std::size_t operand = before.find_last_of(" \t") + 1;
    bool is_found = false;
    for (const Form &form : forms_of(place.operation)) {
        if (!is_found && may_become(before.substr(operand), form.operand)) {
            help.active = static_cast<int>(help.signatures.size());
            is_found = true;
        }
        help.signatures.push_back(
            {in_full(door::upper(place.operation), form), form_documentation(form)});
    }
    return help;
}

} // namespace lsp
