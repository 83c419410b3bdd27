#include "xml/scan/XmlRunSearch.h"

#include <cwchar>

#if VAREK_XML_BLOCKS

// Aligned blocks never reach into a page that the text does not reach into, so reading past its end
// within a block is harmless; only a checker of addresses has to be told.
__attribute__((no_sanitize_address)) std::size_t TextLength(const wchar_t* text)
{
    const wchar_t* at = text;
    for (; (reinterpret_cast<std::uintptr_t>(at) & (sizeof(__m128i) - 1)) != 0; ++at) {
        if (*at == 0)
            return static_cast<std::size_t>(at - text);
    }
    const __m128i zeros = _mm_setzero_si128();
    for (;; at += XmlBlock::Length) {
        const __m128i block = *reinterpret_cast<const __m128i*>(at);
        const __m128i hits =
            sizeof(wchar_t) == 2 ? _mm_cmpeq_epi16(block, zeros) : _mm_cmpeq_epi32(block, zeros);
        if (_mm_movemask_epi8(hits) != 0)
            break;
    }
    return static_cast<std::size_t>(at - text) + std::wcslen(at);
}

#else

std::size_t TextLength(const wchar_t* text)
{
    return std::wcslen(text);
}

#endif
