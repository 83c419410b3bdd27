#pragma once

#include <cstddef>
#include <cstdint>

/// The sets of characters that the document engine looks for, each an exact literal. A set that
/// ends a run has the terminating zero beside the characters named here.
namespace XmlCharacters
{

/// The set of a single character, whose code must be below 64.
constexpr std::uint64_t Bit(int code)
{
    return std::uint64_t(1) << code;
}

/// White space: " \t\n\r".
constexpr std::uint64_t SpaceSet = Bit(' ') | Bit('\t') | Bit('\n') | Bit('\r');

/// Whether the character is in the set; characters from 64 on are in none.
template <std::uint64_t Set>
bool In(wchar_t c)
{
    const std::uint32_t code = static_cast<std::uint32_t>(c);
    return code < 64 && ((Set >> code) & 1) != 0;
}

/// " \t\n\r".
inline bool IsSpace(wchar_t c)
{
    return In<SpaceSet>(c);
}

/// A double or a single quote.
inline bool IsQuote(wchar_t c)
{
    return c == L'"' || c == L'\'';
}

/// Ends a tag name while nodes are scanned: " \t\n\r/>".
inline bool EndsTagName(wchar_t c)
{
    return In<SpaceSet | Bit('/') | Bit('>') | Bit(0)>(c);
}

/// Ends a name token: " \t\n\r<>=\\/?!".
inline bool EndsNameToken(wchar_t c)
{
    return c == L'\\' ||
           In<SpaceSet | Bit('<') | Bit('>') | Bit('=') | Bit('/') | Bit('?') | Bit('!') | Bit(0)>(
               c);
}

/// Ends the unquoted name of an attribute: "= \t\n\r>/?".
inline bool EndsAttributeName(wchar_t c)
{
    return In<SpaceSet | Bit('=') | Bit('>') | Bit('/') | Bit('?') | Bit(0)>(c);
}

/// Ends the unquoted value of an attribute: " \t\n\r>".
inline bool EndsAttributeValue(wchar_t c)
{
    return In<SpaceSet | Bit('>') | Bit(0)>(c);
}

/// May stand before the "/" of an empty element's tag: " \t\n\r'\"".
inline bool MayPrecedeSlash(wchar_t c)
{
    return In<SpaceSet | Bit('\'') | Bit('"')>(c);
}

/// May follow the part of a longer name that was matched: " =/[]".
inline bool MayFollowMatch(wchar_t c)
{
    return c == L'[' || c == L']' || In<Bit(' ') | Bit('=') | Bit('/') | Bit(0)>(c);
}

/// May stand right behind the "<" of a start tag.
inline bool BeginsName(wchar_t c)
{
    const std::uint32_t code = static_cast<std::uint32_t>(c);
    return code > '9' && !(code >= ';' && code <= '@') && !(code >= '[' && code <= '^') &&
           code != '`';
}

/// Folds the case of ASCII letters and of nothing else.
inline wchar_t Fold(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

/// Compares as many characters of either text; `ignoreCase` is about ASCII letters only.
inline bool Equal(const wchar_t* left, const wchar_t* right, std::ptrdiff_t length, bool ignoreCase)
{
    for (std::ptrdiff_t i = 0; i < length; ++i) {
        if (left[i] != right[i] && !(ignoreCase && Fold(left[i]) == Fold(right[i])))
            return false;
    }
    return true;
}

} // namespace XmlCharacters
