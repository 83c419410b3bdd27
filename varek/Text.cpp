#include "varek/Text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <ostream>
#include <stdexcept>

#include <windows.h>

namespace varek
{

namespace
{

int SizeOf(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("text");
    return static_cast<int>(length);
}

} // namespace

int TextView::Compare(TextView a, TextView b)
{
    const int order =
        std::char_traits<wchar_t>::compare(a.start, b.start, std::min(a.size, b.size));
    if (order == 0)
        return (a.size > b.size) - (a.size < b.size);
    return (order > 0) - (order < 0);
}

MString ToMString(TextView text)
{
    return detail::Join(text, L"");
}

std::string ToUtf8(TextView text)
{
    const int length = SizeOf(text.length());
    std::string bytes(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length,
                                                                   nullptr, 0, nullptr, nullptr)),
                      '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, &bytes[0], SizeOf(bytes.size()), nullptr,
                        nullptr);
    return bytes;
}

std::wstring FromUtf8(const std::string& bytes)
{
    const int size = SizeOf(bytes.size());
    std::wstring text(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, nullptr, 0)),
        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, &text[0], SizeOf(text.size()));
    return text;
}

MString detail::Join(TextView a, TextView b)
{
    const int length = SizeOf(a.length() + b.length());
    MString joined;
    if (length == 0)
        return joined;
    wchar_t* const buffer = joined.GetBuffer(length, true);
    std::copy_n(a.data(), a.length(), buffer);
    std::copy_n(b.data(), b.length(), buffer + a.length());
    buffer[length] = L'\0';
    return joined;
}

void detail::Insert(std::wostream& out, TextView text)
{
    out.write(text.data(), static_cast<std::streamsize>(text.length()));
}

} // namespace varek
