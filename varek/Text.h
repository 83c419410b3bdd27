#pragma once

#include "foundation/MString.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <type_traits>

#if __cplusplus >= 201703L
#include <string_view>
#endif

// What a string is expected to do, for `MString`: comparison, concatenation, iteration, streaming,
// and the way to and from the standard's strings.
//
//     if (error.GetCode() == L"Kettle.Heat:Boils")
//         std::wcout << L"too hot: " + error.GetMessageText() << L"\n";
//
// The operators stand beside `MString`, in the global namespace; the functions in `varek`. Lengths
// and order are those of `MString`: by 16-bit unit, no locale. Only what makes a new text
// allocates.

namespace varek
{

/// A look at a wide text of whatever kind, good for as long as that text. A null pointer is the
/// empty text.
class TextView
{
public:
    /// @{
    /// Looks at the whole text.
    TextView(const wchar_t* text)
        : start(text ? text : L""), size(std::char_traits<wchar_t>::length(start))
    {
    }
    TextView(const MString& text)
        : start(text.c_str()), size(static_cast<std::size_t>(text.GetLength()))
    {
    }
    TextView(const std::wstring& text) : start(text.data()), size(text.size()) {}
#if __cplusplus >= 201703L
    TextView(std::wstring_view text) : start(text.data()), size(text.size()) {}
#endif
    /// @}

    /// Not terminated.
    const wchar_t* data() const
    {
        return start;
    }

    /// Number of characters.
    std::size_t length() const
    {
        return size;
    }

    /// -1, 0 or 1, by 16-bit unit, a text before its continuations.
    static int Compare(TextView a, TextView b);

private:
    const wchar_t* start;
    std::size_t size;
};

/// The text as an `MString`. std::length_error beyond 2,147,483,647 characters.
MString ToMString(TextView text);

/// The text as a standard string.
inline std::wstring ToString(TextView text)
{
    return std::wstring(text.data(), text.length());
}

/// The text in UTF-8; a lone surrogate becomes a replacement character.
std::string ToUtf8(TextView text);

/// The text that UTF-8 stands for; bytes that are none become replacement characters.
std::wstring FromUtf8(const std::string& bytes);

namespace detail
{

/// The operators are for pairs of which one is an `MString` and the other any wide text.
template <class A, class B, class Result>
using IfText =
    typename std::enable_if<(std::is_same<typename std::decay<A>::type, MString>::value ||
                             std::is_same<typename std::decay<B>::type, MString>::value) &&
                                std::is_convertible<const A&, TextView>::value &&
                                std::is_convertible<const B&, TextView>::value,
                            Result>::type;

MString Join(TextView a, TextView b);
void Insert(std::wostream& out, TextView text);

} // namespace detail
} // namespace varek

/// @{
/// By 16-bit unit. The other side may be any wide text.
template <class A, class B>
varek::detail::IfText<A, B, bool> operator==(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) == 0;
}

template <class A, class B>
varek::detail::IfText<A, B, bool> operator!=(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) != 0;
}

template <class A, class B>
varek::detail::IfText<A, B, bool> operator<(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) < 0;
}

template <class A, class B>
varek::detail::IfText<A, B, bool> operator>(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) > 0;
}

template <class A, class B>
varek::detail::IfText<A, B, bool> operator<=(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) <= 0;
}

template <class A, class B>
varek::detail::IfText<A, B, bool> operator>=(const A& a, const B& b)
{
    return varek::TextView::Compare(a, b) >= 0;
}
/// @}

/// Both texts, in one buffer that fits.
template <class A, class B>
varek::detail::IfText<A, B, MString> operator+(const A& a, const B& b)
{
    return varek::detail::Join(a, b);
}

/// The text alone: width and fill of the stream are left as they are.
template <class Text>
varek::detail::IfText<Text, Text, std::wostream&> operator<<(std::wostream& out, const Text& text)
{
    varek::detail::Insert(out, text);
    return out;
}

/// @{
/// Over the characters, without the terminator.
inline const wchar_t* begin(const MString& text)
{
    return text.c_str();
}

inline const wchar_t* end(const MString& text)
{
    return text.c_str() + text.GetLength();
}
/// @}
