#include "zirpa/suggest.h"

#include <algorithm>
#include <array>

namespace {

// Longer words are not compared: nobody mistypes them by a letter or two and asks why.
constexpr std::size_t kLongestWord = 64;
constexpr std::size_t kMostWords = 2;

char lower(char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch | 0x20) : ch; }

bool same(char one, char other) { return lower(one) == lower(other); }

std::size_t common_beginning(std::string_view one, std::string_view other) {
    std::size_t size = 0;
    while (size < one.size() && size < other.size() && same(one[size], other[size])) {
        ++size;
    }
    return size;
}

struct Candidate {
    std::size_t away;
    std::size_t common;
    const std::string *word;
};

bool is_nearer(const Candidate &one, const Candidate &other) {
    return one.away != other.away ? one.away < other.away : one.common > other.common;
}

using Row = std::array<std::size_t, kLongestWord + 1>;

} // namespace

// The usual table, of which three rows are kept.
std::size_t distance(std::string_view one, std::string_view other) {
    one = one.substr(0, kLongestWord);
    other = other.substr(0, kLongestWord);
    Row before{};
    Row last{};
    Row row{};
    for (std::size_t j = 0; j <= other.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= one.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t changed = last[j - 1] + (same(one[i - 1], other[j - 1]) ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, changed});
            if (i > 1 && j > 1 && same(one[i - 1], other[j - 2]) &&
                same(one[i - 2], other[j - 1])) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before = last;
        last = row;
    }
    return last[other.size()];
}

// Of two letters one may differ, of five two, of eight three.
bool is_near(std::string_view word, std::string_view other) {
    return other != word && distance(word, other) * 3 <= std::max(other.size(), word.size()) + 1;
}

std::vector<std::string> nearest(std::string_view word, const std::vector<std::string> &words) {
    std::vector<Candidate> candidates;
    for (const std::string &each : words) {
        if (is_near(word, each)) {
            candidates.push_back({distance(word, each), common_beginning(word, each), &each});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), is_nearer);
    std::vector<std::string> found;
    for (const Candidate &candidate : candidates) {
        if (found.size() < kMostWords && candidate.away == candidates.front().away) {
            found.push_back(*candidate.word);
        }
    }
    return found;
}

std::string did_you_mean(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        text += text.empty() ? "did you mean " : " or ";
        text += word;
    }
    return text.empty() ? text : text + "?";
}
