#include "web/options.h"

#include <algorithm>

namespace web {

using Json = nlohmann::json;

Options::Options(std::string_view json) {
    if (json.empty()) {
        return;
    }
    rest_ = Json::parse(json, nullptr, false);
    if (!rest_.is_object()) {
        refuse("the options are no object");
        rest_ = Json::object();
    }
}

void Options::refuse(const std::string &fault) {
    if (fault_.empty()) {
        fault_ = fault;
    }
}

Json Options::take(const char *name) {
    const auto found = rest_.find(name);
    if (found == rest_.end()) {
        return {};
    }
    Json value = std::move(*found);
    rest_.erase(found);
    return value;
}

bool Options::flag(const char *name) {
    const Json value = take(name);
    if (!value.is_null() && !value.is_boolean()) {
        refuse(std::string(name) + " is neither true nor false");
    }
    return value.is_boolean() && value.get<bool>();
}

std::optional<std::string> Options::text_of(const char *name, const Json &value) {
    if (value.is_number_unsigned()) {
        return std::to_string(value.get<std::uint64_t>());
    }
    if (value.is_string()) {
        return value.get<std::string>();
    }
    refuse(std::string(name) + " has something that is no text");
    return std::nullopt;
}

std::optional<std::string> Options::text(const char *name) {
    const Json value = take(name);
    return value.is_null() ? std::nullopt : text_of(name, value);
}

std::vector<std::string> Options::texts(const char *name) {
    const Json value = take(name);
    std::vector<std::string> found;
    if (!value.is_null() && !value.is_array()) {
        refuse(std::string(name) + " is no list");
        return found;
    }
    for (const Json &each : value) {
        found.push_back(text_of(name, each).value_or(""));
    }
    return found;
}

std::optional<std::string> Options::choice(const char *name,
                                           const std::vector<std::string> &words) {
    const std::optional<std::string> word = text(name);
    if (word && std::find(words.begin(), words.end(), *word) == words.end()) {
        refuse(std::string(name) + ": " + *word + " is not known");
    }
    return word;
}

void Options::refuse_rest() {
    for (const auto &row : rest_.items()) {
        refuse("there is no setting " + row.key());
    }
}

} // namespace web
