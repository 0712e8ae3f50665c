#include "web/answer.h"

#include <nlohmann/json.hpp>

namespace web {

std::string text_of(const OrderedJson &json) {
    return json.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

Answer refusal(const std::string &fault) { return {text_of({{"fault", fault}}), {}}; }

} // namespace web
