#include "xml/parse/MXmlOpenElements.h"
#include "xml/scan/XmlCharacters.h"

#include <algorithm>

namespace
{

constexpr std::uint64_t EmptyHash = 0xCBF29CE484222325;

} // namespace

MXmlOpenElements::MXmlOpenElements(const wchar_t* source, bool ignoresCase,
                                   std::int32_t startRecord)
    : text(source), ignoreCase(ignoresCase)
{
    entries[0] = {startRecord, 0, 0, 0};
}

void MXmlOpenElements::Grow()
{
    const std::int32_t grownCapacity = capacity * 2 + 6;
    std::unique_ptr<MXmlOpenElement[]> grown(
        new MXmlOpenElement[static_cast<std::size_t>(grownCapacity)]);
    std::copy_n(entries, capacity, grown.get());
    grownEntries = std::move(grown);
    entries = grownEntries.get();
    capacity = grownCapacity;
}

std::int32_t MXmlOpenElements::FindNewest(const wchar_t* name, std::int32_t length)
{
    const std::int32_t distant = std::max(depth - Nearby, 0);
    for (std::int32_t at = depth; at > distant; --at) {
        if (Matches(at, name, length))
            return at;
    }
    if (distant == 0)
        return 0;
    IndexEntries();
    return FindIndexed(name, length);
}

// No character that ends a name stands in the one that is looked for, so that a shorter one
// differs.
bool MXmlOpenElements::Matches(std::int32_t at, const wchar_t* name, std::int32_t length) const
{
    const wchar_t* entryName = text + entries[at].nameStart;
    return XmlCharacters::Equal(entryName, name, length, ignoreCase) &&
           (XmlCharacters::EndsTagName(entryName[length]) ||
            XmlCharacters::MayFollowMatch(entryName[length]));
}

std::wstring MXmlOpenElements::Name(std::int32_t at) const
{
    const wchar_t* const name = text + entries[at].nameStart;
    const wchar_t* end = name;
    while (!XmlCharacters::EndsTagName(*end))
        ++end;
    return std::wstring(name, end);
}

void MXmlOpenElements::IndexEntries()
{
    if (indexedDepth == 0)
        index.Reserve(static_cast<std::size_t>(depth));
    while (indexedDepth < depth)
        AddKeys(++indexedDepth);
}

void MXmlOpenElements::AddKeys(std::int32_t at)
{
    const wchar_t* name = text + entries[at].nameStart;
    std::uint64_t hash = EmptyHash;
    for (std::int32_t i = 0; !XmlCharacters::EndsTagName(name[i]); ++i) {
        if (i > 0 && XmlCharacters::MayFollowMatch(name[i]))
            index.Add(hash, at);
        hash = Extend(hash, name[i]);
    }
    index.Add(hash, at);
}

void MXmlOpenElements::DropKeys()
{
    index.DropAbove(depth);
    indexedDepth = depth;
}

std::int32_t MXmlOpenElements::FindIndexed(const wchar_t* name, std::int32_t length) const
{
    std::uint64_t hash = EmptyHash;
    for (std::int32_t i = 0; i < length; ++i)
        hash = Extend(hash, name[i]);
    for (std::int32_t place = index.Newest(hash); place != 0; place = index.Older(place)) {
        if (Matches(index.Depth(place), name, length))
            return index.Depth(place);
    }
    return 0;
}

std::uint64_t MXmlOpenElements::Extend(std::uint64_t hash, wchar_t c) const
{
    const wchar_t folded = ignoreCase ? XmlCharacters::Fold(c) : c;
    return (hash ^ static_cast<std::uint64_t>(folded)) * 0x100000001B3;
}
