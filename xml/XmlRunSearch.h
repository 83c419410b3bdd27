#pragma once

#include "xml/XmlCharacters.h"

#include <cstddef>
#include <cstdint>

/// Length of a text that ends with a zero. The run time's own goes character by character, and on
/// long texts takes a third of the time of a parse.
std::size_t TextLength(const wchar_t* text);

/// As `FindCharacter`, for what is likely to be far away.
const wchar_t* FindFarCharacter(const wchar_t* at, const wchar_t* end, wchar_t first,
                                wchar_t second);

/// The first `First` or `Second` at or behind `at`, or `end` if there is none. The text ends with a
/// zero at `end`. Most runs are short, and setting up wide compares costs them more than it saves.
template <wchar_t First, wchar_t Second = First>
const wchar_t* FindCharacter(const wchar_t* at, const wchar_t* end)
{
    using XmlCharacters::Bit;
    constexpr int shortRun = 4;
    for (int i = 0; i < shortRun; ++i, ++at) {
        if (XmlCharacters::In<Bit(First) | Bit(Second) | Bit(0)>(*at))
            return at;
    }
    return FindFarCharacter(at, end, First, Second);
}
