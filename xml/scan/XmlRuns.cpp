#include "xml/scan/XmlRuns.h"

namespace
{

constexpr std::ptrdiff_t Together = 4 * XmlBlocks::Lanes;

// A bit for each of 32 characters that is zero. Aligned blocks never reach into a page that the
// text does not reach into, so reading in front of it or past its end within a block is harmless;
// only a checker of addresses has to be told.
__attribute__((no_sanitize_address)) std::uint32_t ZeroBits(const wchar_t* at)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i* const blocks = reinterpret_cast<const __m128i*>(at);
    const __m128i front =
        _mm_packs_epi16(_mm_cmpeq_epi16(blocks[0], zero), _mm_cmpeq_epi16(blocks[1], zero));
    const __m128i back =
        _mm_packs_epi16(_mm_cmpeq_epi16(blocks[2], zero), _mm_cmpeq_epi16(blocks[3], zero));
    return XmlBlocks::Bits(front) | XmlBlocks::Bits(back) << (Together / 2);
}

} // namespace

std::size_t TextLength(const wchar_t* text)
{
    constexpr std::uintptr_t alignment = static_cast<std::uintptr_t>(Together) * sizeof(wchar_t);
    const std::uintptr_t inFront =
        reinterpret_cast<std::uintptr_t>(text) % alignment / sizeof(wchar_t);
    const wchar_t* at = text - inFront;
    std::uint32_t zeros = ZeroBits(at) >> inFront << inFront;
    for (; zeros == 0; zeros = ZeroBits(at)) {
        at += Together;
        XmlBlocks::Fetch(at + 64 * Together);
    }
    return static_cast<std::size_t>(at - text + XmlBlocks::First(zeros));
}
