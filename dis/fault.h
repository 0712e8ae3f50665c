// What is wrong with an input, and where.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dis {

// Lines and columns count from 1, columns in bytes; the last one is part of the place. A fault of a
// file as a whole has no line.
struct Fault {
    std::string_view id; // of a chapter
    std::string message;
    int line = 0;
    int first = 0;
    int last = 0;
    std::string text = {}; // of the line, up to a length
};

// More faults of one file are not told: they are of no use to anybody.
inline constexpr std::size_t kMostFaults = 20;

// Collects the faults of a file.
class Faults {
  public:
    void add(Fault fault) {
        if (faults_.size() < kMostFaults) {
            faults_.push_back(std::move(fault));
        }
    }
    bool is_empty() const { return faults_.empty(); }
    bool is_full() const { return faults_.size() == kMostFaults; }
    std::vector<Fault> take() { return std::move(faults_); }

  private:
    std::vector<Fault> faults_;
};

} // namespace dis
