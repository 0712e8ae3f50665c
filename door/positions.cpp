#include "door/positions.h"

#include "as/asCond.h"
#include "as/asPlace.h"
#include "door/fields.h"

#include <functional>

namespace door {

std::string_view line_text() { return without_end(::Line.view()); }

std::size_t offset_of(const char *position) {
    if (const int column = column_of_conditional_word(position); column >= 0) {
        return static_cast<std::size_t>(column);
    }
    const std::less<> is_before;
    const char *end = ::Line.begin() + ::Line.length();
    if (is_before(position, ::Line.begin()) || is_before(end, position)) {
        return ::Line.length();
    }
    return static_cast<std::size_t>(position - ::Line.begin());
}

} // namespace door
