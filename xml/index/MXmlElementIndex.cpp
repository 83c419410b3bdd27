#include "xml/index/MXmlElementIndex.h"

bool MXmlElementIndex::IsInDocument(std::int32_t record) const
{
    while (record != 0 && !records[record].Has(XmlElementDeleted))
        record = records[record].parent;
    return record == 0;
}

void MXmlElementIndex::Clear(std::int32_t count)
{
    nextFreeIndex = 1;
    deletedHead = 0;
    inOrder = true;
    parsedEnd = 1;
    fragmentBegin = NoFragment;
    GrowRecords(count);
    records[0] = MXmlElementRecord();
}

void MXmlElementIndex::GrowRecords(std::int32_t count)
{
    const std::int64_t inUse = nextFreeIndex;
    records.Grow(count != 0 ? count : inUse + inUse / 2);
}

// What will be taken is the capacity to which `GrowRecords` comes by itself.
void MXmlElementIndex::Foresee(std::int64_t count)
{
    std::int64_t capacity = records.Capacity();
    while (capacity < count)
        capacity += capacity / 2;
    records.Foresee(capacity, nextFreeIndex);
}

std::int32_t MXmlElementIndex::TakeFragment(std::uint32_t level)
{
    fragmentBegin = TakeRecord();
    records[fragmentBegin] = MXmlElementRecord();
    records[fragmentBegin].SetLevel(level);
    return fragmentBegin;
}

void MXmlElementIndex::GiveBack(std::int32_t count)
{
    nextFreeIndex = count;
    fragmentBegin = NoFragment;
}

void MXmlElementIndex::DeleteRecord(std::int32_t record)
{
    records[record].flagsAndLevel = XmlElementDeleted;
    records[record].nextSibling = deletedHead;
    deletedHead = record;
}

void MXmlElementIndex::DeleteDescendants(std::int32_t record)
{
    std::int32_t at = FirstLeaf(record);
    while (at != record) {
        const std::int32_t sibling = records[at].nextSibling;
        const std::int32_t parent = records[at].parent;
        DeleteRecord(at);
        at = sibling != 0 ? FirstLeaf(sibling) : parent;
    }
    records[record].firstChild = 0;
}

std::int32_t MXmlElementIndex::FirstLeaf(std::int32_t record) const
{
    while (records[record].firstChild != 0)
        record = records[record].firstChild;
    return record;
}

std::int32_t MXmlElementIndex::LastChild(std::int32_t parent) const
{
    const std::int32_t first = records[parent].firstChild;
    return first != 0 ? records[first].previousSibling : 0;
}

std::int32_t MXmlElementIndex::SiblingInFront(std::int32_t record) const
{
    return records[record].Has(XmlElementFirstChild) ? 0 : records[record].previousSibling;
}

std::int32_t MXmlElementIndex::LinkElement(std::int32_t parent, std::int32_t sibling,
                                           const MXmlElementRecord& element)
{
    const std::int32_t added = TakeRecord();
    records[added] = element;
    records[added].parent = parent;
    if (sibling != 0)
        LinkBehind(parent, sibling, added);
    else
        LinkInFront(parent, added);
    records[added].SetLevel(LevelBelow(parent));
    CheckOrder(added);
    CheckOrder(NextBehind(added));
    return added;
}

void MXmlElementIndex::LinkBehind(std::int32_t parent, std::int32_t sibling, std::int32_t added)
{
    MXmlElementRecord& element = records[added];
    element.Clear(XmlElementFirstChild);
    element.previousSibling = sibling;
    element.nextSibling = records[sibling].nextSibling;
    records[sibling].nextSibling = added;
    const std::int32_t behind =
        element.nextSibling != 0 ? element.nextSibling : records[parent].firstChild;
    records[behind].previousSibling = added;
}

void MXmlElementIndex::LinkInFront(std::int32_t parent, std::int32_t added)
{
    MXmlElementRecord& element = records[added];
    const std::int32_t first = records[parent].firstChild;
    element.Set(XmlElementFirstChild);
    element.nextSibling = first;
    element.previousSibling = first != 0 ? records[first].previousSibling : added;
    records[parent].firstChild = added;
    if (first != 0) {
        records[first].Clear(XmlElementFirstChild);
        records[first].previousSibling = added;
    }
}

void MXmlElementIndex::AdoptFragment(std::int32_t parent, std::int32_t fragment,
                                     std::int32_t offset)
{
    const std::int32_t first = records[fragment].firstChild;
    if (first != 0) {
        records[first].MoveBy(offset);
        WalkOffsets(first, offset, false);
    }
    records[parent].firstChild = first;
    for (std::int32_t child = first; child != 0; child = records[child].nextSibling)
        records[child].parent = parent;
    DeleteRecord(fragment);
    fragmentBegin = NoFragment;
    CheckOrder(first);
    CheckOrder(NextBehind(parent));
}

void MXmlElementIndex::ShiftOffsets(std::int32_t record, std::int32_t delta, bool behindOnly)
{
    if (!inOrder)
        return WalkOffsets(record, delta, behindOnly);
    if (records[record].IsDocument())
        return;
    const std::int32_t child = behindOnly ? 0 : records[record].firstChild;
    MoveFrom(child != 0 ? child : NextBehind(record), delta);
    GrowAncestors(record, delta);
}

void MXmlElementIndex::ShiftOffsetsAfter(std::int32_t parent, std::int32_t sibling,
                                         std::int32_t delta)
{
    if (sibling != 0) {
        ShiftOffsets(sibling, delta, true);
    } else if (records[parent].firstChild != 0) {
        ShiftFrom(records[parent].firstChild, delta);
    } else {
        records[parent].GrowBy(delta);
        ShiftOffsets(parent, delta, true);
    }
}

void MXmlElementIndex::GrowTag(std::int32_t record, std::int32_t delta)
{
    MXmlElementRecord& element = records[record];
    const std::int32_t length = element.StartTagLength() + delta;
    element.SetStartTagLength(length);
    element.GrowBy(delta);
    if (element.IsDocument() || element.StartTagLength() != length)
        LoseOrder();
    ShiftOffsets(record, delta, false);
}

// For a change right in front of an element.
void MXmlElementIndex::ShiftFrom(std::int32_t first, std::int32_t delta)
{
    if (inOrder) {
        MoveFrom(first, delta);
        GrowAncestors(first, delta);
    } else {
        records[first].MoveBy(delta);
        WalkOffsets(first, delta, false);
    }
}

// Moves that element, unless it is 0, and all behind it.
void MXmlElementIndex::MoveFrom(std::int32_t first, std::int32_t delta)
{
    if (first == 0 || delta == 0)
        return;
    const std::int32_t end = nextFreeIndex < fragmentBegin ? nextFreeIndex : fragmentBegin;
    const std::int32_t offset = records[first].start;
    for (std::int32_t at = first < parsedEnd ? first : 1; at < end;) {
        const std::int32_t behind = (at | (MXmlRecordStore::SegmentRecords - 1)) + 1;
        MoveBehind(offset, delta, at, behind < end ? behind : end);
        at = behind;
    }
    CheckOrder(first);
}

// Moves those of a run of records in one segment that begin at that offset or behind.
void MXmlElementIndex::MoveBehind(std::int32_t offset, std::int32_t delta, std::int32_t from,
                                  std::int32_t to)
{
    MXmlElementRecord* const begin = &records[from];
    MXmlElementRecord* const end = begin + (to - from);
    for (MXmlElementRecord* record = begin; record != end; ++record)
        record->start += record->start >= offset && !record->Has(XmlElementDeleted) ? delta : 0;
}

void MXmlElementIndex::GrowAncestors(std::int32_t record, std::int32_t delta)
{
    do {
        record = records[record].parent;
        records[record].GrowBy(delta);
    } while (record != 0);
}

// The one in front of it in the order of the document, 0 for the first.
std::int32_t MXmlElementIndex::RecordBefore(std::int32_t record) const
{
    std::int32_t before = SiblingInFront(record);
    if (before == 0)
        return records[record].parent;
    while (records[before].firstChild != 0)
        before = LastChild(before);
    return before;
}

// The next behind all that the element contains, 0 if there is none.
std::int32_t MXmlElementIndex::NextBehind(std::int32_t record) const
{
    while (record != 0 && records[record].nextSibling == 0)
        record = records[record].parent;
    return record != 0 ? records[record].nextSibling : 0;
}

// What was put there may be no element of its own, or break one that there was.
void MXmlElementIndex::CheckOrder(std::int32_t record)
{
    if (!inOrder || record == 0)
        return;
    const std::int32_t before = RecordBefore(record);
    inOrder = !records[record].IsDocument() &&
              (before == 0 || records[before].start < records[record].start);
}

// Walks through all records behind the change, in the order of the document: one that lies behind
// it moves, one that contains it grows, and the document's own is the last.
void MXmlElementIndex::WalkOffsets(std::int32_t record, std::int32_t delta, bool behindOnly)
{
    if (records[record].IsDocument())
        return;
    std::int32_t top = records[record].parent;
    bool enters = !behindOnly;
    do {
        record = NextInDocument(record, top, enters);
        enters = record != top;
        if (enters) {
            records[record].MoveBy(delta);
        } else {
            records[record].GrowBy(delta);
            top = records[record].parent;
        }
    } while (!records[record].IsDocument());
}

// Answers `top` when there is nothing more below it.
std::int32_t MXmlElementIndex::NextInDocument(std::int32_t record, std::int32_t top,
                                              bool enters) const
{
    if (enters && records[record].firstChild != 0)
        return records[record].firstChild;
    while (records[record].nextSibling == 0) {
        record = records[record].parent;
        if (record == top)
            return top;
    }
    return records[record].nextSibling;
}

#ifndef NDEBUG

bool MXmlElementIndex::IsSound() const
{
    const std::int32_t seen = 500; // as it is asked for at every operation
    if (nextFreeIndex > seen)
        return true;
    if (!records[0].IsDocument() || !AreDeletedListed() || !AreChildrenChained(0))
        return false;
    for (std::int32_t at = records[0].firstChild; at != 0; at = NextInDocument(at, 0, true))
        if (!AreChildrenChained(at))
            return false;
    return IsOrderKept();
}

bool MXmlElementIndex::AreDeletedListed() const
{
    std::int32_t unlisted = 0;
    for (std::int32_t i = 0; i < nextFreeIndex; ++i)
        unlisted += records[i].Has(XmlElementDeleted) ? 1 : 0;
    for (std::int32_t at = deletedHead; at != 0 && unlisted >= 0; at = records[at].nextSibling)
        unlisted -= records[at].Has(XmlElementDeleted) ? 1 : nextFreeIndex;
    return unlisted == 0;
}

// Among the children of a dissolved element, which have moved up, is one that is still marked as
// the first; their levels are what they were.
bool MXmlElementIndex::AreChildrenChained(std::int32_t parent) const
{
    const std::int32_t first = records[parent].firstChild;
    std::int32_t before = 0;
    bool dissolved = false;
    bool counted = true;
    for (std::int32_t at = first; at != 0; at = records[at].nextSibling) {
        const MXmlElementRecord& child = records[at];
        const bool isMarked = child.Has(XmlElementFirstChild);
        if (!IsElement(at) || child.parent != parent ||
            (at == first ? !isMarked : child.previousSibling != before))
            return false;
        dissolved = dissolved || (isMarked && at != first);
        counted = counted && child.Level() == LevelBelow(parent);
        before = at;
    }
    return dissolved || (counted && LastChild(parent) == before);
}

bool MXmlElementIndex::IsOrderKept() const
{
    std::int32_t before = 0;
    std::int32_t parsedBefore = 0;
    for (std::int32_t at = records[0].firstChild; at != 0; at = NextInDocument(at, 0, true)) {
        if (inOrder && before != 0 && records[before].start >= records[at].start)
            return false;
        if (inOrder && at < parsedEnd && at < parsedBefore)
            return false;
        before = at;
        parsedBefore = at < parsedEnd ? at : parsedBefore;
    }
    return true;
}

#endif
