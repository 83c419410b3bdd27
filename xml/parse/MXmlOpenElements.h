#pragma once

#include "xml/parse/MXmlNameIndex.h"

#include <cstdint>
#include <memory>
#include <string>

/// An element whose end tag has not been seen yet. The children are kept here until it is closed.
struct MXmlOpenElement {
    std::int32_t record;     ///< of the element
    std::int32_t nameStart;  ///< offset of the name, which ends where tag names do
    std::int32_t firstChild; ///< record of the first child so far, 0 for none
    std::int32_t lastChild;  ///< record of the last child so far, 0 for none
};

/// The stack of open elements of one parse. The entry at depth 0 is the record from which the parse
/// started; it has no name.
///
/// `FindNewest` answers as a search downward from the top would, but its cost does not grow with
/// the depth: a few entries are compared, and further down an index by name is asked. The index
/// takes up an entry only when a search first goes past it, so documents whose end tags match build
/// none. A stack that stays low takes no memory but its own.
class MXmlOpenElements
{
public:
    /// Names are read from `source`, which must outlive the stack.
    MXmlOpenElements(const wchar_t* source, bool ignoresCase, std::int32_t startRecord);

    MXmlOpenElements(const MXmlOpenElements&) = delete;
    MXmlOpenElements& operator=(const MXmlOpenElements&) = delete;

    /// Of the uppermost entry.
    std::int32_t Depth() const { return depth; }

    /// The uppermost entry, until the next `Push`.
    MXmlOpenElement& Top() { return entries[depth]; }

    /// The entry at a depth from 0 to `Depth`, until the next `Push`.
    MXmlOpenElement& operator[](std::int32_t at) { return entries[at]; }

    /// Puts an element on top.
    void Push(const MXmlOpenElement& element)
    {
        if (depth + 1 == capacity)
            Grow();
        entries[++depth] = element;
    }

    /// Drops what lies above `newDepth`.
    void PopTo(std::int32_t newDepth)
    {
        depth = newDepth;
        if (indexedDepth > depth)
            DropKeys();
    }

    /// Depth of the uppermost element that an end tag of this name closes, 0 if there is none. An
    /// end tag also closes a longer name that goes on with one of " =/[]".
    std::int32_t FindNewest(const wchar_t* name, std::int32_t length);

    /// The name of the element at a depth above 0.
    std::wstring Name(std::int32_t at) const;

private:
    bool Matches(std::int32_t at, const wchar_t* name, std::int32_t length) const;

    static constexpr std::int32_t Nearby = 4;
    static constexpr std::int32_t FirstCapacity = 6;

    void Grow();
    void IndexEntries();
    void AddKeys(std::int32_t at);
    void DropKeys();
    std::int32_t FindIndexed(const wchar_t* name, std::int32_t length) const;
    std::uint64_t Extend(std::uint64_t hash, wchar_t c) const;

    const wchar_t* text;
    bool ignoreCase;
    MXmlOpenElement firstEntries[FirstCapacity];
    std::unique_ptr<MXmlOpenElement[]> grownEntries;
    MXmlOpenElement* entries = firstEntries;
    std::int32_t capacity = FirstCapacity;
    std::int32_t depth = 0;
    std::int32_t indexedDepth = 0;
    MXmlNameIndex index;
};
