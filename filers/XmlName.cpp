#include "filers/XmlName.h"

#include <algorithm>
#include <iterator>

namespace
{

struct Range {
    wchar_t first;
    wchar_t last;
};

// As the fifth edition of XML 1.0 has them; those from 10000 on are pairs of halves.
const Range startingRanges[] = {
    {L':', L':'},       {L'A', L'Z'},     {L'_', L'_'},     {L'a', L'z'},     {L'\xC0', L'\xD6'},
    {L'\xD8', L'\xF6'}, {L'\xF8', 0x2FF}, {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},
    {0x2070, 0x218F},   {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD},
};

const Range followingRanges[] = {
    {L'-', L'.'}, {L'0', L'9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

const Range highHalves = {0xD800, 0xDB7F};
const Range lowHalves = {0xDC00, 0xDFFF};

bool IsIn(const Range& range, wchar_t unit)
{
    return unit >= range.first && unit <= range.last;
}

template <std::size_t Count>
bool IsInOne(const Range (&ranges)[Count], wchar_t unit)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [=](const Range& range) { return IsIn(range, unit); });
}

} // namespace

bool IsXmlName(const wchar_t* text)
{
    const wchar_t* at = text;
    while (at && *at) {
        if (IsIn(highHalves, at[0]) && IsIn(lowHalves, at[1]))
            at += 2;
        else if (IsInOne(startingRanges, *at) || (at != text && IsInOne(followingRanges, *at)))
            ++at;
        else
            return false;
    }
    return at != text;
}
