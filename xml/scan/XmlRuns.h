#pragma once

#include "xml/scan/XmlBlocks.h"
#include "xml/scan/XmlCharacters.h"

#include <algorithm>

/// Length of a text that ends with a zero. The run time's own goes character by character, which on
/// long texts takes longer than a parse.
std::size_t TextLength(const wchar_t* text);

/// The first `Wanted` at or behind `at`, or `end` if there is none. The text ends with a zero at
/// `end`. Most runs are short, and setting up blocks costs them more than it saves.
template <wchar_t Wanted>
const wchar_t* FindCharacter(const wchar_t* at, const wchar_t* end)
{
    using XmlCharacters::Bit;
    constexpr int shortRun = 4;
    for (int i = 0; i < shortRun; ++i, ++at) {
        if (XmlCharacters::In<Bit(Wanted) | Bit(0)>(*at))
            return at;
    }
    const __m128i wanted = XmlBlocks::Fill(Wanted);
    for (; end - at >= XmlBlocks::Lanes; at += XmlBlocks::Lanes) {
        const std::uint32_t found = XmlBlocks::Bits(_mm_cmpeq_epi16(XmlBlocks::Load(at), wanted));
        if (found != 0)
            return at + XmlBlocks::First(found) / 2;
    }
    while (at != end && *at != Wanted)
        ++at;
    return at;
}

/// Whether `left` and `right` go on with the same `length` characters. Both are in the text that
/// ends at `end`, `right` behind `left`.
inline bool SameCharacters(const wchar_t* left, const wchar_t* right, std::ptrdiff_t length,
                           const wchar_t* end)
{
    constexpr std::ptrdiff_t together = 2 * XmlBlocks::Lanes;
    for (; end - right >= together; left += together, right += together, length -= together) {
        const std::uint32_t equal = XmlBlocks::EqualBits(left, right);
        const std::uint32_t wanted = (1u << std::min(length, together)) - 1;
        if (length <= together || (equal & wanted) != wanted)
            return (equal & wanted) == wanted;
    }
    return XmlCharacters::Equal(left, right, length, false);
}

/// Whether the character stands in a stretch behind which at least 32 more characters are readable.
inline bool HasCharacter(const wchar_t* at, const wchar_t* end, wchar_t wanted)
{
    const __m128i all = XmlBlocks::Fill(wanted);
    for (; at < end; at += 4 * XmlBlocks::Lanes) {
        const auto equal = [at, all](int i) {
            return _mm_cmpeq_epi16(XmlBlocks::Load(at + i * XmlBlocks::Lanes), all);
        };
        if (XmlBlocks::Bits(_mm_or_si128(_mm_or_si128(equal(0), equal(1)),
                                         _mm_or_si128(equal(2), equal(3)))) != 0)
            return std::find(at, end, wanted) != end;
    }
    return false;
}
