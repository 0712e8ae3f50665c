// What a call gives back: an object in JSON, and bytes that it speaks of.
#pragma once

#include "zirpa/jsonFormat.h"

#include <string>

namespace web {

struct Answer {
    std::string json;
    std::string bytes;
};

// Bytes that are no UTF-8 become the character for that: JSON knows of nothing else.
std::string text_of(const OrderedJson &json);

// The options are wrong.
Answer refusal(const std::string &fault);

} // namespace web
