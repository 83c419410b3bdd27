#pragma once

#include <cstddef>
#include <cstdint>
#if __SIZEOF_WCHAR_T__ == 4
#include <smmintrin.h>
#else
#include <emmintrin.h>
#endif

/// Neighbouring characters looked at all at once, with what every 64-bit x86 has. Answers are sets
/// of bits, the lowest one for the first character.
namespace XmlBlocks
{

/// Characters in a vector.
constexpr std::ptrdiff_t Lanes = 8;

/// The characters from `at` on, all of which must be readable. Where characters have more than 16
/// bits, which is nowhere that this ships, those that need them become 65535.
inline __m128i Load(const wchar_t* at)
{
    const __m128i* const blocks = reinterpret_cast<const __m128i*>(at);
#if __SIZEOF_WCHAR_T__ == 4
    return _mm_packus_epi32(_mm_loadu_si128(blocks), _mm_loadu_si128(blocks + 1));
#else
    return _mm_loadu_si128(blocks);
#endif
}

/// Asks for the characters there, to have them at hand by the time that they are read. They need
/// not be readable.
inline void Fetch(const wchar_t* at)
{
    _mm_prefetch(reinterpret_cast<const char*>(at), _MM_HINT_T0);
}

/// One character as often as a vector has room.
inline __m128i Fill(wchar_t c)
{
    return _mm_set1_epi16(static_cast<short>(c));
}

/// A bit for each of 16 bytes that is not zero but all ones.
inline std::uint32_t Bits(__m128i bytes)
{
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
}

/// 16 characters, each in a byte. Those above 255 become 255 or 0, and so are no ASCII character.
inline __m128i Narrow(const wchar_t* at)
{
    return _mm_packus_epi16(Load(at), Load(at + Lanes));
}

/// A bit for each of 16 characters that is the same in both texts.
inline std::uint32_t EqualBits(const wchar_t* left, const wchar_t* right)
{
    return Bits(_mm_packs_epi16(_mm_cmpeq_epi16(Load(left), Load(right)),
                                _mm_cmpeq_epi16(Load(left + Lanes), Load(right + Lanes))));
}

/// Place of the lowest bit of a set that is not empty.
inline std::int32_t First(std::uint64_t bits)
{
    return __builtin_ctzll(bits);
}

/// How many bits there are.
inline std::int32_t Count(std::uint64_t bits)
{
    constexpr std::uint64_t each = ~std::uint64_t(0);
    bits -= (bits >> 1) & each / 3;
    bits = (bits & each / 5) + ((bits >> 2) & each / 5);
    bits = (bits + (bits >> 4)) & each / 17;
    return static_cast<std::int32_t>((bits * (each / 255)) >> 56);
}

} // namespace XmlBlocks
