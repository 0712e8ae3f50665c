// Two programs side by side: which instructions are the same, have moved, are others, are new.
//
// Instructions are matched by what they do, not by where they stand, so that one that is put in
// does not make all later ones new. An instruction that refers to another one is the same if that
// has moved with it. Data are compared byte by byte.
#pragma once

#include "dis/listing.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dis {

enum class Mark { kSame, kMoved, kChanged, kRemoved, kNew };

// A piece of one program beside one of the other. A new piece has no first, a removed one no
// second: their size is 0.
struct Difference {
    Mark mark;
    Item first;
    Item second;
};

struct Comparison {
    std::vector<Difference> pieces; // of all of both programs
    bool has_other_start = false;

    bool is_same() const;
};

Comparison compare(const Listing &first, const Listing &second);

// A line for each difference, and a summary; the summary alone if there is none.
std::string text_of(const Comparison &comparison, const Listing &first, const Listing &second);

} // namespace dis
