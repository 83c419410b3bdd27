#include "xml/XmlRunSearch.h"

#include <cwchar>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace
{

// Most runs end within a few characters, where setting up wide compares costs more than it saves.
constexpr std::int32_t ShortRun = 16;

std::int32_t FindPlain(const wchar_t* text, std::int32_t from, std::int32_t to, wchar_t first,
                       wchar_t second)
{
    while (from < to && text[from] != first && text[from] != second)
        ++from;
    return from;
}

#if defined(__SSE2__) || defined(_M_X64)

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

// Goes on by whole blocks while none of them holds either character.
std::int32_t SkipBlocks(const wchar_t* text, std::int32_t from, std::int32_t length, wchar_t first,
                        wchar_t second)
{
    using Lanes = MLanes<sizeof(wchar_t)>;
    constexpr std::int32_t blockLength = sizeof(__m128i) / sizeof(wchar_t);
    const __m128i firsts = Lanes::Fill(first);
    const __m128i seconds = Lanes::Fill(second);
    for (; length - from >= blockLength; from += blockLength) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + from));
        const __m128i hits =
            _mm_or_si128(Lanes::Equal(block, firsts), Lanes::Equal(block, seconds));
        if (_mm_movemask_epi8(hits) != 0)
            break;
    }
    return from;
}

// Aligned blocks never reach into a page that the text does not reach into, so reading past its end
// within a block is harmless; only a checker of addresses has to be told.
#if defined(__GNUC__)
__attribute__((no_sanitize_address))
#endif
std::size_t
CountByBlocks(const wchar_t* text)
{
    using Lanes = MLanes<sizeof(wchar_t)>;
    const wchar_t* at = text;
    while ((reinterpret_cast<std::uintptr_t>(at) & (sizeof(__m128i) - 1)) != 0) {
        if (*at == 0)
            return static_cast<std::size_t>(at - text);
        ++at;
    }
    constexpr std::size_t blockLength = sizeof(__m128i) / sizeof(wchar_t);
    const __m128i zeros = _mm_setzero_si128();
    while (_mm_movemask_epi8(
               Lanes::Equal(_mm_load_si128(reinterpret_cast<const __m128i*>(at)), zeros)) == 0)
        at += blockLength;
    while (*at != 0)
        ++at;
    return static_cast<std::size_t>(at - text);
}

#else

std::size_t CountByBlocks(const wchar_t* text)
{
    return std::wcslen(text);
}

std::int32_t SkipBlocks(const wchar_t*, std::int32_t from, std::int32_t, wchar_t, wchar_t)
{
    return from;
}

#endif

} // namespace

std::size_t TextLength(const wchar_t* text)
{
    return CountByBlocks(text);
}

std::int32_t FindEitherCharacter(const wchar_t* text, std::int32_t from, std::int32_t length,
                                 wchar_t first, wchar_t second)
{
    const std::int32_t nearby = length - from > ShortRun ? from + ShortRun : length;
    const std::int32_t found = FindPlain(text, from, nearby, first, second);
    if (found < nearby || nearby == length)
        return found;
    return FindPlain(text, SkipBlocks(text, nearby, length, first, second), length, first, second);
}
