// What is known of names, found by texts that are no strings of their own.
#pragma once

#include "zirpa/suggest.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>()(text);
    }
};

// Entries stay where they are.
template <typename Value>
using NameTable = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

// The entry of a name, a new one if there is none.
template <typename Value>
typename NameTable<Value>::value_type &entry_of(NameTable<Value> &table, std::string_view name) {
    const auto known = table.find(name);
    return known != table.end() ? *known : *table.try_emplace(std::string(name)).first;
}

// The names that may be meant by another one, of those whose value fits. Names that are equally
// near come in their own order, as the table has none.
template <typename Value, typename Fits>
std::vector<std::string> nearest_names(std::string_view name, const NameTable<Value> &table,
                                       Fits fits) {
    std::vector<std::string> names;
    for (const auto &[other, value] : table) {
        if (is_near(name, other) && fits(value)) {
            names.push_back(other);
        }
    }
    std::sort(names.begin(), names.end());
    return nearest(name, names);
}
