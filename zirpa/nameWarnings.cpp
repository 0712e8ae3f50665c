#include "zirpa/warnings.h"

#include "zirpa/phrases.h"
#include "zirpa/suggest.h"

#include <algorithm>

namespace {

// Constants from which others are computed.
constexpr int kDeepest = 20;

} // namespace

void NameWarnings::take(const door::Definition &definition) {
    if (definition.place.line != 0) {
        pending_definitions_.emplace_back(&entry_of(names_, definition.name).second, definition);
    }
}

void NameWarnings::take(const door::Reference &reference) {
    pending_references_.emplace_back(&entry_of(names_, reference.name), reference);
}

// Whether a constant is computed from labels, by way of other constants or not. Whoever nests
// deeper has the other warning.
bool NameWarnings::is_of_labels(const Name &name, int depth) {
    return depth < kDeepest &&
           std::any_of(name.operands.begin(), name.operands.end(), [&](const Name *operand) {
               return (operand->kind == door::NameKind::kLabel && operand->place.line != 0) ||
                      is_of_labels(*operand, depth + 1);
           });
}

void NameWarnings::note_reference(Entry &entry, const door::Reference &reference,
                                  const door::Line &line) {
    Name &name = entry.second;
    if (reference.use == door::Use::kTest) {
        if (name.test.line == 0) {
            name.test = reference.place;
        }
        return;
    }
    name.is_used = true;
    if (!reference.is_defined && is_directive(line, "EQU")) {
        early_.push_back({Early::kUndefinedInEqu, &entry, reference.place, 0});
    } else if (reference.is_defined && reference.definition > line.line) {
        const Early kind = is_directive(line, "RMB") ? Early::kSize : Early::kValue;
        early_.push_back({kind, &entry, reference.place, reference.value});
    }
}

void NameWarnings::take(const door::Line &line) {
    for (const auto &[entry, reference] : pending_references_) {
        note_reference(*entry, reference, line);
    }
    for (const auto &[name, definition] : pending_definitions_) {
        if (name->place.line == 0) {
            name->kind = definition.kind;
            name->place = definition.place;
            name->value = definition.value;
            name->is_tested = definition.is_tested;
        }
        if (definition.kind == door::NameKind::kConstant && name->operands.empty()) {
            std::transform(pending_references_.begin(), pending_references_.end(),
                           std::back_inserter(name->operands),
                           [](const auto &each) { return &each.first->second; });
        }
    }
    pending_references_.clear();
    pending_definitions_.clear();
}

void NameWarnings::add_early(const EarlyUse &use, std::vector<Diagnostic> &found) const {
    const auto &[written, name] = *use.entry;
    if (use.kind == Early::kUndefinedInEqu) {
        found.push_back(warning("undefined-in-equ", use.place,
                                quoted(written) + " is not defined and counts as 0 here"));
        const std::vector<std::string> meant =
            nearest_names(written, names_, [](const Name &each) { return each.place.line != 0; });
        found.back().hint = did_you_mean(meant);
        offer_words(found.back(), meant);
    } else if (use.kind == Early::kSize && name.kind == door::NameKind::kLabel) {
        found.push_back(warning("late-size", use.place,
                                quoted(written) + " has no value yet when addresses are laid out"));
        found.back().notes.push_back({without_text(name.place), "defined here"});
    } else if (name.kind == door::NameKind::kConstant && name.value != use.value) {
        const bool is_address = is_of_labels(name, 0);
        const std::string below = is_address ? " below the line that computes it from labels"
                                             : " below the line that gives it its value";
        found.push_back(warning(is_address ? "early-address" : "early-constant", use.place,
                                quoted(written) + " is " + in_both_bases(use.value) +
                                    " here, but " + in_both_bases(name.value) + below));
        found.back().notes.push_back({without_text(name.place), "its value is given here"});
    }
}

std::vector<Diagnostic> NameWarnings::findings(bool with_unused) const {
    std::vector<Diagnostic> found;
    for (const EarlyUse &use : early_) {
        add_early(use, found);
    }
    for (const auto &[name, known] : names_) {
        if (known.place.line == 0 || known.kind == door::NameKind::kDefine) {
            continue;
        }
        if (door::is_register(name)) {
            found.push_back(warning("register-name", known.place,
                                    quoted(name) + " is read as a register wherever it is used"));
        }
        if (known.is_tested) {
            found.push_back(warning("tested-name", known.place,
                                    "a conditional asks for " + quoted(name) +
                                        ", which makes it undefined in the last pass"));
            found.back().notes.push_back({without_text(known.test), "it is asked for here"});
        }
        if (with_unused && !known.is_used && known.kind == door::NameKind::kLabel) {
            found.push_back(warning("unused-label", known.place, quoted(name) + " is not used"));
        }
    }
    return found;
}
