#pragma once

#include "xml/scan/XmlCharacters.h"

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) && defined(__GNUC__)
/// Whether characters can be compared by the block.
#define VAREK_XML_BLOCKS 1
#include <emmintrin.h>
#else
#define VAREK_XML_BLOCKS 0
#endif

/// Length of a text that ends with a zero. The run time's own goes character by character, which on
/// long texts takes a third of the time of a parse.
std::size_t TextLength(const wchar_t* text);

#if VAREK_XML_BLOCKS

/// A block of neighbouring characters, compared all at once.
class XmlBlock
{
public:
    /// Characters in a block.
    static constexpr std::ptrdiff_t Length = sizeof(__m128i) / sizeof(wchar_t);

    /// The characters from `at` on, all of which must be readable.
    static XmlBlock Of(const wchar_t* at)
    {
        return XmlBlock(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
    }

    /// One character, as often as a block has room.
    static XmlBlock OfAll(wchar_t c)
    {
        return XmlBlock(sizeof(wchar_t) == 2 ? _mm_set1_epi16(static_cast<short>(c))
                                             : _mm_set1_epi32(static_cast<int>(c)));
    }

    /// Where the first character stands that both blocks have in the same place; `Length` if none.
    std::ptrdiff_t FirstEqual(XmlBlock other) const
    {
        const __m128i equal = sizeof(wchar_t) == 2 ? _mm_cmpeq_epi16(lanes, other.lanes)
                                                   : _mm_cmpeq_epi32(lanes, other.lanes);
        const unsigned bytes = static_cast<unsigned>(_mm_movemask_epi8(equal)) | 0x10000u;
        return static_cast<std::ptrdiff_t>(__builtin_ctz(bytes) / sizeof(wchar_t));
    }

private:
    explicit XmlBlock(__m128i filled) : lanes(filled) {}

    __m128i lanes;
};

#endif

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
#if VAREK_XML_BLOCKS
    const XmlBlock wanted = XmlBlock::OfAll(Wanted);
    for (; end - at >= XmlBlock::Length; at += XmlBlock::Length) {
        const std::ptrdiff_t found = XmlBlock::Of(at).FirstEqual(wanted);
        if (found != XmlBlock::Length)
            return at + found;
    }
#endif
    while (at != end && *at != Wanted)
        ++at;
    return at;
}
