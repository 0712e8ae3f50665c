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
        pending_definitions_.emplace_back(std::string(definition.name), definition);
    }
}

void NameWarnings::take(const door::Reference &reference) {
    pending_references_.push_back({reference.use, std::string(reference.name), reference.place,
                                   reference.value, reference.is_defined, reference.definition});
}

// Whether a constant is computed from labels, by way of other constants or not. Whoever nests
// deeper has the other warning.
bool NameWarnings::is_of_labels(const Name &name, int depth) const {
    return depth < kDeepest &&
           std::any_of(name.operands.begin(), name.operands.end(), [&](const std::string &operand) {
               const Name &known = names_.find(operand)->second;
               return (known.kind == door::NameKind::kLabel && known.place.line != 0) ||
                      is_of_labels(known, depth + 1);
           });
}

void NameWarnings::note_reference(const PendingReference &reference, const door::Line &line) {
    Name &name = names_[reference.name];
    // Hardly any reference needs a copy of its line.
    const auto place = [&] { return place_in(reference.place, line.source); };
    if (reference.use == door::Use::kTest) {
        if (name.test.line == 0) {
            name.test = place();
        }
        return;
    }
    name.is_used = true;
    if (!reference.is_defined && is_directive(line, "EQU")) {
        early_.push_back({Early::kUndefinedInEqu, reference.name, place(), 0});
    } else if (reference.is_defined && reference.definition > line.line) {
        const Early kind = is_directive(line, "RMB") ? Early::kSize : Early::kValue;
        early_.push_back({kind, reference.name, place(), reference.value});
    }
}

void NameWarnings::take(const door::Line &line) {
    for (const PendingReference &reference : pending_references_) {
        note_reference(reference, line);
    }
    for (const auto &[name, definition] : pending_definitions_) {
        Name &known = names_[name];
        if (known.place.line == 0) {
            known.kind = definition.kind;
            known.place = place_in(definition.place, line.source);
            known.value = definition.value;
            known.is_tested = definition.is_tested;
        }
        if (definition.kind == door::NameKind::kConstant && known.operands.empty()) {
            std::transform(pending_references_.begin(), pending_references_.end(),
                           std::back_inserter(known.operands),
                           [](const PendingReference &each) { return each.name; });
        }
    }
    pending_references_.clear();
    pending_definitions_.clear();
}

std::vector<std::string> NameWarnings::known_names() const {
    std::vector<std::string> names;
    for (const auto &[name, known] : names_) {
        if (known.place.line != 0) {
            names.push_back(name);
        }
    }
    return names;
}

void NameWarnings::add_early(const EarlyUse &use, std::vector<Diagnostic> &found) const {
    const Name &name = names_.find(use.name)->second;
    if (use.kind == Early::kUndefinedInEqu) {
        found.push_back(warning("undefined-in-equ", use.place,
                                quoted(use.name) + " is not defined and counts as 0 here"));
        const std::vector<std::string> meant = nearest(use.name, known_names());
        found.back().hint = did_you_mean(meant);
        offer_words(found.back(), meant);
    } else if (use.kind == Early::kSize && name.kind == door::NameKind::kLabel) {
        found.push_back(
            warning("late-size", use.place,
                    quoted(use.name) + " has no value yet when addresses are laid out"));
        found.back().notes.push_back({name.place, "defined here"});
    } else if (name.kind == door::NameKind::kConstant && name.value != use.value) {
        const bool is_address = is_of_labels(name, 0);
        const std::string below = is_address ? " below the line that computes it from labels"
                                             : " below the line that gives it its value";
        found.push_back(warning(is_address ? "early-address" : "early-constant", use.place,
                                quoted(use.name) + " is " + in_both_bases(use.value) +
                                    " here, but " + in_both_bases(name.value) + below));
        found.back().notes.push_back({name.place, "its value is given here"});
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
            found.back().notes.push_back({known.test, "it is asked for here"});
        }
        if (with_unused && !known.is_used && known.kind == door::NameKind::kLabel) {
            found.push_back(warning("unused-label", known.place, quoted(name) + " is not used"));
        }
    }
    return found;
}
