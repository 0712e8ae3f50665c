// Items are appended at the end, which is walked to: the list has one item. An enumeration keeps
// its place in the list itself, so that there can be one at a time.
#include "as/asList.h"

#include <cassert>
#include <string_view>

ListHeader lists;
Segment *current_seg = nullptr;

namespace {

Segment *known_absolute_segment = nullptr;

// The list of a type; null when the header is of another type.
ListHeader *list_of_type(std::uint32_t type) { return lists.type == type ? &lists : nullptr; }

ListItem *NewListItem() {
    auto newlistitem = std::make_unique<ListItem>();
    assert(newlistitem);
    ListItem *item = newlistitem.get();
    if (lists.first == nullptr) {
        lists.first = std::move(newlistitem);
        return item;
    }
    ListItem *last = lists.first.get();
    while (last->next != nullptr) {
        last = last->next.get();
    }
    item->previous = last;
    last->next = std::move(newlistitem);
    return item;
}

void InitList() {
    [[maybe_unused]] const ListHeader *startptr = list_of_type(kSegmentListType);
    assert(startptr);
    lists.cursor = nullptr;
    // One item at a time, so that a long list is not freed by recursion.
    while (lists.first != nullptr) {
        lists.first = std::move(lists.first->next);
    }
}

} // namespace

ListItem *EnumListType(std::uint32_t type) {
    ListHeader *startptr = list_of_type(type);
    assert(startptr);
    startptr->cursor = startptr->first.get();
    return startptr->cursor;
}

ListItem *EnumSegmentList() { return EnumListType(kSegmentListType); }

Segment *GetNextSegmentItem() {
    if (lists.cursor == nullptr) {
        return nullptr;
    }
    Segment *segment = lists.cursor->data.get();
    lists.cursor = lists.cursor->next.get();
    return segment;
}

Segment *LookupSegment(const char *name, int create) {
    EnumSegmentList();
    while (Segment *segment = GetNextSegmentItem()) {
        if (name != nullptr && segment->name == name) {
            return segment;
        }
    }
    if (create == 0 || name == nullptr || *name == '\0') {
        return nullptr;
    }
    ListItem *item = NewListItem();
    item->data = std::make_unique<Segment>();
    item->data->name = std::string_view(name).substr(0, kSegmentNameLimit);
    return item->data.get();
}

Segment *absolute_segment() {
    if (known_absolute_segment == nullptr) {
        known_absolute_segment = LookupSegment("abs", 1);
    }
    return known_absolute_segment;
}

void InitSegmentList() {
    InitList();
    known_absolute_segment = nullptr;
}

void InitSegmentListPass2() {
    EnumSegmentList();
    while (Segment *segment = GetNextSegmentItem()) {
        segment->location = 0;
    }
}
