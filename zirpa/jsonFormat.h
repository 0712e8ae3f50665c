// Diagnostics as JSON, for all that answers in JSON. Members stay in the order in which they are
// put, for people who read it.
#pragma once

#include "zirpa/diagnostic.h"

#include <nlohmann/json_fwd.hpp>

using OrderedJson = nlohmann::ordered_json;

// Line, column and the column after the last character; no more of them than the place has.
void put_place(OrderedJson &json, const SourcePlace &place);

OrderedJson json_of(const Diagnostic &diagnostic);
