// Words that may have been meant where an unknown one stands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// How many letters must be changed, added, left out or swapped with their neighbour to make one
// word of the other; case does not count.
std::size_t distance(std::string_view one, std::string_view other);

// Whether one word may be meant by the other: a third of their letters may differ.
bool is_near(std::string_view word, std::string_view other);

// At most two of the words that are nearest, if they are near. Of equally near ones, those that
// begin as the word does come first, then those that come first.
std::vector<std::string> nearest(std::string_view word, const std::vector<std::string> &words);

// "did you mean A or B?", or nothing.
std::string did_you_mean(const std::vector<std::string> &words);
