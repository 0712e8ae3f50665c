// The sizes of buffers, which no output shows.
#pragma once

#include <cstddef>

// The size to use for a buffer: the given one, or 1 in the build that tests whether sizes show.
consteval std::size_t buffer_size([[maybe_unused]] std::size_t size) {
#ifdef HXZIRPA_SMALL_BUFFERS
    return 1;
#else
    return size;
#endif
}
