// The sizes of buffers, which no output shows.
#pragma once

#include <cstddef>

// The size to use for a buffer: the given one, or the smallest that does in the build that tests
// whether sizes show.
consteval std::size_t buffer_size([[maybe_unused]] std::size_t size,
                                  [[maybe_unused]] std::size_t smallest = 1) {
#ifdef HXZIRPA_SMALL_BUFFERS
    return smallest;
#else
    return size;
#endif
}
