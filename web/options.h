// The options of a call, as JSON: each is taken out by name, and what is left over at the end is
// something that the call does not know.
#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace web {

class Options {
  public:
    // No text at all is an empty object.
    explicit Options(std::string_view json);

    bool flag(const char *name);
    std::optional<std::string> text(const char *name); // a number counts as its digits
    std::vector<std::string> texts(const char *name);
    std::optional<std::string> choice(const char *name, const std::vector<std::string> &words);

    // What has not been taken.
    const nlohmann::json &rest() const { return rest_; }
    void refuse_rest();

    // What is wrong first; empty when all is well.
    const std::string &fault() const { return fault_; }
    void refuse(const std::string &fault);

  private:
    nlohmann::json take(const char *name);
    std::optional<std::string> text_of(const char *name, const nlohmann::json &value);

    nlohmann::json rest_ = nlohmann::json::object();
    std::string fault_;
};

} // namespace web
