#pragma once

#include "xml/MXmlNameIndex.h"

#include <cstdint>
#include <vector>

/// An element whose end tag has not been seen yet. The children are kept here until it is closed.
struct MXmlOpenElement {
    std::int32_t record;
    std::int32_t nameStart;
    std::int32_t nameLength;
    std::int32_t firstChild;
    std::int32_t lastChild;
};

/// The stack of open elements of one parse. The entry at depth 0 is the record from which the parse
/// started; it has no name.
///
/// `FindNewest` answers as a search downward from the top would, but its cost does not grow with
/// the depth: a few entries are compared, and further down an index by name is asked. The index
/// takes up an entry only when a search first goes past it, so documents whose end tags match build
/// none.
class MXmlOpenElements
{
public:
    MXmlOpenElements(const wchar_t* source, bool ignoresCase, std::int32_t startRecord);

    std::int32_t Depth() const { return static_cast<std::int32_t>(entries.size()) - 1; }
    MXmlOpenElement& Top() { return entries.back(); }
    MXmlOpenElement& operator[](std::int32_t depth)
    {
        return entries[static_cast<std::size_t>(depth)];
    }

    void Push(const MXmlOpenElement& element)
    {
        if (entries.size() == entries.capacity())
            entries.reserve(entries.size() * 2 + 6);
        entries.push_back(element);
    }

    /// Drops what lies above `depth`.
    void PopTo(std::int32_t depth)
    {
        entries.resize(static_cast<std::size_t>(depth) + 1);
        if (indexedDepth > depth)
            DropKeysAbove(depth);
    }

    /// Depth of the uppermost element that an end tag of this name closes, 0 if there is none. An
    /// end tag also closes a longer name that goes on with one of " =/[]".
    std::int32_t FindNewest(const wchar_t* name, std::int32_t length);

private:
    bool Matches(std::int32_t depth, const wchar_t* name, std::int32_t length) const;

    static constexpr std::int32_t Nearby = 16;

    void IndexEntries();
    void AddKeys(std::int32_t depth);
    void DropKeysAbove(std::int32_t depth);
    std::int32_t FindIndexed(const wchar_t* name, std::int32_t length) const;
    std::uint64_t Extend(std::uint64_t hash, wchar_t c) const;

    const wchar_t* text;
    bool ignoreCase;
    std::vector<MXmlOpenElement> entries;
    std::int32_t indexedDepth = 0;
    MXmlNameIndex index;
};
