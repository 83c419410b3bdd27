#include "xml/XmlRunSearch.h"

#include <cwchar>

#if defined(__SSE2__) && defined(__GNUC__)
#include <emmintrin.h>
#endif

namespace
{

#if defined(__SSE2__) && defined(__GNUC__)

template <int Width>
struct MLanes;

template <>
struct MLanes<2> {
    static __m128i Fill(wchar_t c) { return _mm_set1_epi16(static_cast<short>(c)); }
    static __m128i Equal(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
};

template <>
struct MLanes<4> {
    static __m128i Fill(wchar_t c) { return _mm_set1_epi32(static_cast<int>(c)); }
    static __m128i Equal(__m128i a, __m128i b) { return _mm_cmpeq_epi32(a, b); }
};

using Lanes = MLanes<sizeof(wchar_t)>;

constexpr std::ptrdiff_t BlockLength = sizeof(__m128i) / sizeof(wchar_t);

// Goes on by whole blocks, to the first character looked for or to less than a block before the
// end.
const wchar_t* SkipBlocks(const wchar_t* at, const wchar_t* end, wchar_t first, wchar_t second)
{
    const __m128i firsts = Lanes::Fill(first);
    const __m128i seconds = Lanes::Fill(second);
    for (; end - at >= BlockLength; at += BlockLength) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i hits =
            _mm_or_si128(Lanes::Equal(block, firsts), Lanes::Equal(block, seconds));
        const int hitBytes = _mm_movemask_epi8(hits);
        if (hitBytes != 0)
            return at + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(hitBytes))) /
                            sizeof(wchar_t);
    }
    return at;
}

// Aligned blocks never reach into a page that the text does not reach into, so reading past its end
// within a block is harmless; only a checker of addresses has to be told.
__attribute__((no_sanitize_address)) const wchar_t* SkipBlocksToZero(const wchar_t* at)
{
    while ((reinterpret_cast<std::uintptr_t>(at) & (sizeof(__m128i) - 1)) != 0) {
        if (*at == 0)
            return at;
        ++at;
    }
    const __m128i zeros = _mm_setzero_si128();
    while (_mm_movemask_epi8(
               Lanes::Equal(_mm_load_si128(reinterpret_cast<const __m128i*>(at)), zeros)) == 0)
        at += BlockLength;
    return at;
}

#else

const wchar_t* SkipBlocks(const wchar_t* at, const wchar_t*, wchar_t, wchar_t)
{
    return at;
}

const wchar_t* SkipBlocksToZero(const wchar_t* at)
{
    return at;
}

#endif

} // namespace

std::size_t TextLength(const wchar_t* text)
{
    const wchar_t* at = SkipBlocksToZero(text);
    return static_cast<std::size_t>(at - text) + std::wcslen(at);
}

const wchar_t* FindFarCharacter(const wchar_t* at, const wchar_t* end, wchar_t first,
                                wchar_t second)
{
    at = SkipBlocks(at, end, first, second);
    while (at != end && *at != first && *at != second)
        ++at;
    return at;
}
