#include "xml/scan/MXmlTagMap.h"
#include "xml/scan/XmlBlocks.h"

#include <algorithm>

void MXmlTagMap::Draw(const wchar_t* from)
{
    begin = from;
    end = textEnd - from > Stretch ? from + Stretch : textEnd;
    const wchar_t** out = brackets;
    const wchar_t* at = from;
    for (; end - at >= BlockLength; at += BlockLength) {
        XmlBlocks::Fetch(at + Stretch);
        XmlBlocks::Fetch(at + Stretch + BlockLength / 2);
        out = TakeOut(at, Look(at), out);
    }
    if (at < end)
        out = TakeOut(at, LookAtRest(at), out);
    std::fill_n(out, 3, end);
}

// A bit for each bracket. "<" and ">" differ in one bit.
inline std::uint64_t MXmlTagMap::Look(const wchar_t* at)
{
    const __m128i differing = _mm_set1_epi8('<' ^ '>');
    const __m128i either = _mm_set1_epi8('<' | '>');
    std::uint64_t bits = 0;
    for (int i = 0; i < BlockLength; i += 16) {
        const __m128i bytes = _mm_or_si128(XmlBlocks::Narrow(at + i), differing);
        bits |= std::uint64_t(XmlBlocks::Bits(_mm_cmpeq_epi8(bytes, either))) << i;
    }
    return bits;
}

// The text ends in this block.
std::uint64_t MXmlTagMap::LookAtRest(const wchar_t* at) const
{
    wchar_t rest[BlockLength] = {};
    std::copy(at, end, rest);
    return Look(rest);
}

// How many bits there are is not to be guessed, so some are taken out at a time, also those that
// are not there; what comes next goes in their place.
inline const wchar_t** MXmlTagMap::TakeOut(const wchar_t* at, std::uint64_t bits,
                                           const wchar_t** out)
{
    constexpr std::uint64_t guard = std::uint64_t(1) << 63;
    if (bits == 0)
        return out;
    const wchar_t** const behind = out + XmlBlocks::Count(bits);
    do {
        for (int i = 0; i < Together; ++i) {
            *out++ = at + XmlBlocks::First(bits | guard);
            bits &= bits - 1;
        }
    } while (bits != 0);
    return behind;
}
