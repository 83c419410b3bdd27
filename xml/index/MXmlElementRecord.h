#pragma once

#include <cstdint>

/// Sum that wraps around instead of overflowing. Offsets of records that an ill-formed document
/// left out of order may drift; they are cut to the text wherever they are used.
inline std::int32_t XmlOffsetSum(std::int32_t left, std::int32_t right)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(left) +
                                     static_cast<std::uint32_t>(right));
}

/// Flags in the upper half of `MXmlElementRecord::flagsAndLevel`.
enum MXmlElementFlag : std::uint32_t {
    /// The record lies on the list of deleted records and stands for no element.
    XmlElementDeleted = 0x20000,
    /// First child of its parent.
    XmlElementFirstChild = 0x80000,
    /// Start tag without an end tag; what seemed to be its children follows as its siblings.
    XmlElementNoEndTag = 0x100000,
    /// Something ill-formed lies directly in this element.
    XmlElementIllFormed = 0x200000,
    /// On the record from which a parse started: the text is not well-formed.
    XmlElementDocumentIllFormed = 0x800000
};

/// One element of an `MXmlMarkup` document: offsets into the document's text and links to the
/// element's relatives. Offsets and lengths count characters (`wchar_t`), links are record indices,
/// 0 meaning none. Record 0 stands for the document itself.
///
/// A start tag of 1,048,576 characters or more, or an end tag of 512 or more, does not fit into
/// `tagLengths`; its length then reads wrong, and with it what lies between the tags.
struct MXmlElementRecord {
    /// Offset of the "<" of the start tag.
    std::int32_t start;
    /// From the "<" of the start tag through the ">" of the end tag.
    std::int32_t length;
    /// Start tag in the low part, end tag in the high ten bits.
    std::uint32_t tagLengths;
    /// Level in the low 16 bits, `MXmlElementFlag` bits above.
    std::uint32_t flagsAndLevel;
    /// 0 on the top level.
    std::int32_t parent;
    /// 0 without child elements.
    std::int32_t firstChild;
    /// 0 on the last sibling.
    std::int32_t nextSibling;
    /// The first child's names the last child, a sole child's itself.
    std::int32_t previousSibling;

    /// The bits of `tagLengths` that hold the start tag's.
    static constexpr std::uint32_t StartTagMask = 0x2FFFFF;
    /// The bits of `flagsAndLevel` that hold the level.
    static constexpr std::uint32_t LevelMask = 0xFFFF;
    /// The lowest bit of `tagLengths` that belongs to the end tag's.
    static constexpr int EndTagShift = 22;

    /// From the "<" through the ">".
    std::int32_t StartTagLength() const
    {
        return static_cast<std::int32_t>(tagLengths & StartTagMask);
    }

    /// From the "<" through the ">", 0 without an end tag.
    std::int32_t EndTagLength() const
    {
        return static_cast<std::int32_t>(tagLengths) >> EndTagShift;
    }

    /// Leaves the end tag's alone.
    void SetStartTagLength(std::int32_t value)
    {
        tagLengths =
            (tagLengths & ~StartTagMask) | (static_cast<std::uint32_t>(value) & StartTagMask);
    }

    /// Leaves the start tag's alone.
    void SetEndTagLength(std::int32_t value)
    {
        tagLengths = (tagLengths & ((1u << EndTagShift) - 1)) |
                     (static_cast<std::uint32_t>(value) << EndTagShift);
    }

    /// 0 on the top level, as on record 0.
    std::uint32_t Level() const { return flagsAndLevel & LevelMask; }

    /// Leaves the flags alone.
    void SetLevel(std::uint32_t level)
    {
        flagsAndLevel = (flagsAndLevel & ~LevelMask) | (level & LevelMask);
    }

    /// @{
    /// A flag by itself; the level and the others stay.
    bool Has(MXmlElementFlag flag) const { return (flagsAndLevel & flag) != 0; }
    void Set(MXmlElementFlag flag) { flagsAndLevel |= flag; }
    void Clear(MXmlElementFlag flag) { flagsAndLevel &= ~static_cast<std::uint32_t>(flag); }
    /// @}

    /// Record 0, or the stand-in for it while a fragment is parsed.
    bool IsDocument() const { return StartTagLength() == 0; }

    /// `<a/>`, or a start tag without an end tag.
    bool IsEmptyElement() const { return StartTagLength() == length; }

    /// Offset right behind the element.
    std::int32_t End() const { return XmlOffsetSum(start, length); }

    /// Offset right behind the start tag.
    std::int32_t ContentStart() const { return XmlOffsetSum(start, StartTagLength()); }

    /// Characters between the tags.
    std::int32_t ContentLength() const
    {
        return XmlOffsetSum(length, -(StartTagLength() + EndTagLength()));
    }

    /// Offset of the end tag.
    std::int32_t ContentEnd() const { return XmlOffsetSum(ContentStart(), ContentLength()); }

    /// Follows a change of `delta` characters in front of the element.
    void MoveBy(std::int32_t delta) { start = XmlOffsetSum(start, delta); }

    /// Follows a change of `delta` characters inside the element.
    void GrowBy(std::int32_t delta) { length = XmlOffsetSum(length, delta); }
};

static_assert(sizeof(MXmlElementRecord) == 32, "a record is eight 32-bit words");
