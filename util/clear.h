// Clearing the used part of a long array that is mostly unused.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

// Zeroes the first used elements, where all others are zero. The first few are cleared in any case:
// mostly that is all, and takes neither a branch nor a call that depends on the count.
// To measure what that earns, zero the whole array here and time the large workload.
template <std::size_t few, typename Element, std::size_t size>
inline void clear_used(std::array<Element, size> &elements, std::size_t used) {
    static_assert(few <= size);
    std::fill_n(elements.begin(), few, Element{});
    if (used > few) {
        std::fill_n(elements.begin() + few, used - few, Element{});
    }
}
