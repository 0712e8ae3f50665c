// The list of segments: a typed list with an enumeration cursor, and its one instance.
//
// The assembler is absolute, so the only segment that is ever created is "abs", which symbols whose
// values are constants or still unknown carry. There is no current segment: labels carry none.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

// Longest segment name, in characters; longer ones are cut.
inline constexpr std::size_t kSegmentNameLimit = 126;
// The type tag of the segment list, the only type of list.
inline constexpr std::uint32_t kSegmentListType = 1001;

struct Segment {
    std::string name;
    std::int64_t location = 0; // reset by InitSegmentListPass2
    std::int64_t output_count = 0;
};

struct ListItem {
    std::unique_ptr<Segment> data;
    std::unique_ptr<ListItem> next;
    ListItem *previous = nullptr;
};

struct ListHeader {
    std::uint32_t type = kSegmentListType;
    ListItem *cursor = nullptr;
    std::unique_ptr<ListItem> first;
};

// ---- State owned here ----

extern ListHeader lists;     // the segment list; survives all passes
extern Segment *current_seg; // never set: there is one address space

// ---- Functions ----

// The segment of exactly that name. With create set, a missing one is appended, unless the name is
// null or empty. Null if there is no such segment. Kept apart, as a run makes one.
[[gnu::cold]] Segment *LookupSegment(const char *name, int create);

// The segment of constants and of names without a place, "abs"; made by the first call.
Segment *absolute_segment();

// Sets the cursor to the first item of the list of that type (the segment list) and returns it.
ListItem *EnumListType(std::uint32_t type);
ListItem *EnumSegmentList();

// The segment at the cursor, which moves on; null at the end.
Segment *GetNextSegmentItem();

// Empties the list.
void InitSegmentList();

// Sets the location of every segment to 0.
void InitSegmentListPass2();
