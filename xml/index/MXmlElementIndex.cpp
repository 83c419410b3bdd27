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
    GrowRecords(count);
    records[0] = MXmlElementRecord();
}

void MXmlElementIndex::GrowRecords(std::int32_t count)
{
    const std::int64_t inUse = nextFreeIndex;
    records.Grow(count != 0 ? count : inUse + inUse / 2);
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
        ShiftOffsets(first, offset, false);
    }
    records[parent].firstChild = first;
    for (std::int32_t child = first; child != 0; child = records[child].nextSibling)
        records[child].parent = parent;
    DeleteRecord(fragment);
}

// Walks through all records behind the change, in the order of the document: one that lies behind
// it moves, one that contains it grows, and the document's own is the last.
void MXmlElementIndex::ShiftOffsets(std::int32_t record, std::int32_t delta, bool behindOnly)
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

void MXmlElementIndex::ShiftOffsetsAfter(std::int32_t parent, std::int32_t sibling,
                                         std::int32_t delta)
{
    const std::int32_t first = records[parent].firstChild;
    if (sibling != 0) {
        ShiftOffsets(sibling, delta, true);
    } else if (first != 0) {
        records[first].MoveBy(delta);
        ShiftOffsets(first, delta, false);
    } else {
        records[parent].GrowBy(delta);
        ShiftOffsets(parent, delta, true);
    }
}
