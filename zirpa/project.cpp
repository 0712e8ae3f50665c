#include "zirpa/project.h"

#include "zirpa/chapters.h"
#include "zirpa/suggest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace {

using Json = nlohmann::json;
using Failure = std::optional<std::string>;

// Stands for all identifiers, in "deny" alone.
constexpr const char *kAllWarnings = "all";

// A list of texts: each goes to a function that tells what is wrong with it.
template <typename Take> Failure read_list(const Json &list, const std::string &name, Take take) {
    if (!list.is_array()) {
        return name + " is no list";
    }
    for (const Json &each : list) {
        if (!each.is_string()) {
            return name + " has something that is no text";
        }
        if (Failure failure = take(each.get_ref<const std::string &>()); failure) {
            return name + ": " + *failure;
        }
    }
    return std::nullopt;
}

void add_option(Project &project, const char *option, const std::string &value) {
    project.options.emplace_back(option);
    project.options.push_back(value);
}

Failure read_names(const Json &list, Project &project) {
    return read_list(list, "define", [&](const std::string &name) -> Failure {
        add_option(project, "-D", name);
        return name.empty() ? Failure("a name has no letters") : std::nullopt;
    });
}

Failure read_directories(const Json &list, Project &project) {
    return read_list(list, "include", [&](const std::string &directory) -> Failure {
        add_option(project, "-I", directory);
        return std::nullopt;
    });
}

Failure read_words(const Json &list, Project &project) {
    static constexpr std::array<const char *, 3> kWords = {"nocase", "nopure", "nonative"};
    return read_list(list, "compatibility", [&](const std::string &word) -> Failure {
        add_option(project, "-C", word);
        return std::find(kWords.begin(), kWords.end(), word) == kWords.end()
                   ? Failure(word + " is none of nocase, nopure, nonative")
                   : std::nullopt;
    });
}

using Identifiers = std::set<std::string, std::less<>>;

Failure read_identifiers(const Json &list, const char *name, Identifiers &identifiers) {
    return read_list(list, name, [&](const std::string &id) -> Failure {
        const std::vector<std::string> known = all_identifiers();
        if (std::find(known.begin(), known.end(), id) == known.end()) {
            const std::string hint = did_you_mean(nearest(id, known));
            return "no diagnostic is called " + id + (hint.empty() ? "" : ": " + hint);
        }
        identifiers.insert(id);
        return std::nullopt;
    });
}

Failure read_allowed(const Json &list, Project &project) {
    return read_identifiers(list, "allow", project.warnings.allowed);
}

Failure read_denied(const Json &list, Project &project) {
    Json rest = list;
    if (const auto all = std::find(rest.begin(), rest.end(), kAllWarnings);
        rest.is_array() && all != rest.end()) {
        project.warnings.all_denied = true;
        rest.erase(all);
    }
    return read_identifiers(rest, "deny", project.warnings.denied);
}

Failure read_wanted(const Json &list, Project &project) {
    return read_identifiers(list, "warn", project.warnings.wanted);
}

Failure read_strictness(const Json &json, Project &project) {
    if (!json.is_boolean()) {
        return "strict is neither true nor false";
    }
    project.warnings.is_strict = json.get<bool>();
    return std::nullopt;
}

// For editors, which look the schema up there.
Failure pass_over(const Json & /*json*/, Project & /*project*/) { return std::nullopt; }

struct Member {
    const char *name;
    Failure (*read)(const Json &, Project &);
};

// Words come ahead of names: case ceases to count in what is defined after them.
constexpr std::array<Member, 8> kMembers = {{{"$schema", pass_over},
                                             {"compatibility", read_words},
                                             {"include", read_directories},
                                             {"define", read_names},
                                             {"allow", read_allowed},
                                             {"deny", read_denied},
                                             {"warn", read_wanted},
                                             {"strict", read_strictness}}};

Failure unknown_member(const Json &json) {
    std::vector<std::string> known;
    std::transform(kMembers.begin(), kMembers.end(), std::back_inserter(known),
                   [](const Member &row) { return row.name; });
    for (const auto &[name, value] : json.items()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            const std::string hint = did_you_mean(nearest(name, known));
            return "there is no setting " + name + (hint.empty() ? "" : ": " + hint);
        }
    }
    return std::nullopt;
}

} // namespace

void Project::add(const Project &other) {
    options.insert(options.end(), other.options.begin(), other.options.end());
    const auto unite = [](Identifiers &all, const Identifiers &more) {
        all.insert(more.begin(), more.end());
    };
    unite(warnings.allowed, other.warnings.allowed);
    unite(warnings.denied, other.warnings.denied);
    unite(warnings.wanted, other.warnings.wanted);
    warnings.all_denied = warnings.all_denied || other.warnings.all_denied;
    warnings.is_strict = warnings.is_strict || other.warnings.is_strict;
}

std::optional<std::string> read_project(const Json &json, bool are_others_known, Project &project) {
    if (!json.is_object()) {
        return "it holds no object";
    }
    if (!are_others_known) {
        if (Failure failure = unknown_member(json); failure) {
            return failure;
        }
    }
    for (const Member &row : kMembers) {
        if (const auto value = json.find(row.name); value != json.end()) {
            if (Failure failure = row.read(*value, project); failure) {
                return failure;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::string> read_project(std::string_view text, Project &project) {
    const Json json = Json::parse(text, nullptr, false);
    return json.is_discarded() ? Failure("it is no JSON") : read_project(json, false, project);
}

std::string project_file_of(const std::string &source) {
    return source.substr(0, source.find_last_of('/') + 1) + kProjectFile;
}
