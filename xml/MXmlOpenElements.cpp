#include "xml/MXmlOpenElements.h"
#include "xml/XmlCharacters.h"

#include <algorithm>

namespace
{

constexpr std::uint64_t EmptyHash = 0xCBF29CE484222325;

} // namespace

MXmlOpenElements::MXmlOpenElements(const wchar_t* source, bool ignoresCase,
                                   std::int32_t startRecord)
    : text(source), ignoreCase(ignoresCase)
{
    entries.reserve(6);
    entries.push_back({startRecord, 0, 0, 0, 0});
}

std::int32_t MXmlOpenElements::FindNewest(const wchar_t* name, std::int32_t length)
{
    const std::int32_t far = std::max(Depth() - Nearby, 0);
    for (std::int32_t depth = Depth(); depth > far; --depth) {
        if (Matches(depth, name, length))
            return depth;
    }
    if (far == 0)
        return 0;
    IndexEntries();
    return FindIndexed(name, length);
}

bool MXmlOpenElements::Matches(std::int32_t depth, const wchar_t* name, std::int32_t length) const
{
    const MXmlOpenElement& entry = entries[static_cast<std::size_t>(depth)];
    const wchar_t* entryName = text + entry.nameStart;
    return length <= entry.nameLength &&
           XmlCharacters::Equal(entryName, name, length, ignoreCase) &&
           (length == entry.nameLength || XmlCharacters::MayFollowMatch(entryName[length]));
}

void MXmlOpenElements::IndexEntries()
{
    if (indexedDepth == 0)
        index.Reserve(entries.size());
    while (indexedDepth < Depth())
        AddKeys(++indexedDepth);
}

void MXmlOpenElements::AddKeys(std::int32_t depth)
{
    const MXmlOpenElement& entry = entries[static_cast<std::size_t>(depth)];
    const wchar_t* name = text + entry.nameStart;
    std::uint64_t hash = EmptyHash;
    for (std::int32_t i = 0; i < entry.nameLength; ++i) {
        if (i > 0 && XmlCharacters::MayFollowMatch(name[i]))
            index.Add(hash, depth);
        hash = Extend(hash, name[i]);
    }
    index.Add(hash, depth);
}

void MXmlOpenElements::DropKeysAbove(std::int32_t depth)
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
