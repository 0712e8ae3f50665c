// Memory that is about to be written.
#pragma once

#include <cstddef>
#include <memory>

// Room for characters, not filled: std::make_unique would touch all of it, and not every library
// has the variant that does not.
inline std::unique_ptr<char[]> make_room(std::size_t size) {
    return std::unique_ptr<char[]>(new char[size]);
}
