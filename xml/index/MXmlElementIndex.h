#pragma once

#include "xml/index/MXmlRecordStore.h"

/// The elements of one document: which there are, how they hang together, and where they stand. It
/// knows offsets, but not the text.
///
/// What holds between any two operations, whatever was parsed or linked:
/// - Record 0 is the document: its start tag has length 0, and `parent` leads to it from
/// everywhere.
/// - Siblings are chained by `nextSibling`; each names the one before it in `previousSibling`, and
///   the first, which alone has `XmlElementFirstChild`, names the last. A parse that dissolves
///   elements may leave some of their children outside the chain, and the last one misnamed; such
///   records are reached by their index only.
/// - A record is either in use or on the list of deleted ones, and is never used again.
///
/// What holds besides if all that was parsed and linked is well-formed:
/// - Levels count the way up to the document; those of the top level are 0.
/// - In the order of the document (each element before its children, and these before its next
///   sibling) offsets rise, children lie within the content of their parents, and siblings do not
///   overlap. Operations that shift offsets keep it so if they are told what has become of the
///   text.
class MXmlElementIndex
{
public:
    /// @{
    /// A record below `Count`, until the next growth.
    MXmlElementRecord& operator[](std::int32_t record) { return records[record]; }
    const MXmlElementRecord& operator[](std::int32_t record) const { return records[record]; }
    /// @}

    /// Records in use, record 0 and deleted ones included.
    std::int32_t Count() const { return nextFreeIndex; }

    /// Number of records that can be in use without a growth.
    std::int32_t Capacity() const { return records.Capacity(); }

    /// Head of the list of deleted records, linked through `nextSibling`; 0 if there are none.
    std::int32_t DeletedHead() const { return deletedHead; }

    /// Whether there is such an element. Record 0 is none.
    bool IsElement(std::int32_t record) const
    {
        return record > 0 && record < nextFreeIndex && !records[record].Has(XmlElementDeleted);
    }

    /// Whether neither the record nor what contains it was deleted.
    bool IsInDocument(std::int32_t record) const;

    // Records

    /// Forgets all elements, and has room for `count` records. Record 0 is zero afterwards.
    void Clear(std::int32_t count);

    /// Makes room for `count` records, or for half as many again as are in use if it is 0; goes at
    /// most one segment further at a time.
    void GrowRecords(std::int32_t count);

    /// Takes the memory for so many records at once, though not more than one segment further; the
    /// capacity stays. Does not fail.
    void Foresee(std::int64_t count);

    /// Gives back memory for more records than `Capacity` tells.
    void Trim() { records.Trim(nextFreeIndex); }

    /// Makes sure that the next `TakeRecord` cannot fail.
    void MakeRoom()
    {
        if (nextFreeIndex == records.Capacity())
            GrowRecords(0);
    }

    /// A record that was never used, not initialised.
    std::int32_t TakeRecord()
    {
        MakeRoom();
        return nextFreeIndex++;
    }

    /// A record that stands for a document by itself, whose elements have offsets of their own
    /// until they are adopted. Takes marks and children of a parse; `level` is that of its
    /// children.
    std::int32_t TakeFragment(std::uint32_t level);

    /// Gives back the records from `count` on, which were taken last and to which nothing leads.
    void GiveBack(std::int32_t count);

    /// Puts a record on the list of deleted ones. Links that lead to it stay.
    void DeleteRecord(std::int32_t record);

    /// Deletes all that the element contains, each record after its own descendants.
    void DeleteDescendants(std::int32_t record);

    // Links

    /// The last of the chain of children, 0 if there is none.
    std::int32_t LastChild(std::int32_t parent) const;

    /// The sibling in front, 0 for a first child.
    std::int32_t SiblingInFront(std::int32_t record) const;

    /// Takes a record for a new element and puts it behind a sibling, or with 0 in front of all
    /// children. Links and level are set, what else it says remains. Answers the record. Does not
    /// fail after `MakeRoom`.
    std::int32_t LinkElement(std::int32_t parent, std::int32_t sibling,
                             const MXmlElementRecord& element);

    /// The level of what is linked under that record.
    std::uint32_t LevelBelow(std::int32_t parent) const
    {
        return parent != 0 ? records[parent].Level() + 1 : 0;
    }

    /// Gives a parent the children of a record that stood for a document by itself, in place of
    /// those that it has, moves them all by `offset`, and deletes that record.
    void AdoptFragment(std::int32_t parent, std::int32_t fragment, std::int32_t offset);

    // Offsets. A change of the text is followed before new elements are linked there.

    /// Follows a change of `delta` characters in the start tag of an element that has itself been
    /// put right already, or with `behindOnly` in its content or behind it: what lies behind the
    /// change moves, and what contains it grows, the document's record last. With `behindOnly` the
    /// element's own children stay. Does nothing on record 0.
    void ShiftOffsets(std::int32_t record, std::int32_t delta, bool behindOnly);

    /// The same for a change behind `sibling`, or with 0 at the front of the level.
    void ShiftOffsetsAfter(std::int32_t parent, std::int32_t sibling, std::int32_t delta);

    /// Follows a change of `delta` characters in a start tag.
    void GrowTag(std::int32_t record, std::int32_t delta);

    // Order

    /// All records so far come from one parse, and so are numbered in the order of the document.
    void NoteParsed() { parsedEnd = nextFreeIndex; }

    /// Offsets need not rise any more, until the next `Clear`.
    void LoseOrder() { inOrder = false; }

#ifndef NDEBUG
    /// Whether all that is said above holds, as far as it can be seen without the text. For
    /// assertions: a large document passes unseen.
    bool IsSound() const;
#endif

private:
    static constexpr std::int32_t NoFragment = 0x7FFFFFFF;

    std::int32_t FirstLeaf(std::int32_t record) const;
    std::int32_t RecordBefore(std::int32_t record) const;
    std::int32_t NextBehind(std::int32_t record) const;
    void CheckOrder(std::int32_t record);
    void ShiftFrom(std::int32_t first, std::int32_t delta);
    void MoveFrom(std::int32_t first, std::int32_t delta);
    void MoveBehind(std::int32_t offset, std::int32_t delta, std::int32_t from, std::int32_t to);
    void GrowAncestors(std::int32_t record, std::int32_t delta);
    void WalkOffsets(std::int32_t record, std::int32_t delta, bool behindOnly);
    void LinkBehind(std::int32_t parent, std::int32_t sibling, std::int32_t added);
    void LinkInFront(std::int32_t parent, std::int32_t added);
    std::int32_t NextInDocument(std::int32_t record, std::int32_t top, bool enters) const;
    bool AreDeletedListed() const;
    bool AreChildrenChained(std::int32_t parent) const;
    bool IsOrderKept() const;

    MXmlRecordStore records;
    std::int32_t nextFreeIndex = 1;
    std::int32_t deletedHead = 0;
    // The offsets of all elements that were not deleted rise in the order of the document.
    bool inOrder = true;
    // The records in front of it are numbered in the order of the document.
    std::int32_t parsedEnd = 1;
    // The first record of a fragment that is not adopted yet.
    std::int32_t fragmentBegin = NoFragment;
};
