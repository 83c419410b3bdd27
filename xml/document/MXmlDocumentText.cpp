#include "xml/document/MXmlDocumentText.h"
#include "xml/index/MXmlElementRecord.h"
#include "xml/scan/MXmlTagTokens.h"
#include "xml/scan/XmlMarkupText.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

constexpr std::size_t MXmlDocumentText::MaxLength;

void MXmlDocumentText::CheckLength(std::size_t length)
{
    if (length > MaxLength)
        throw std::length_error("MXmlMarkup: text too long");
}

bool MXmlDocumentText::Owns(const wchar_t* source) const
{
    const std::less_equal<const wchar_t*> before;
    return before(characters.data(), source) &&
           before(source, characters.data() + characters.size());
}

std::wstring& MXmlDocumentText::Empty(std::size_t length)
{
    characters.clear();
    characters.reserve(length);
    return characters;
}

void MXmlDocumentText::Replace(std::int32_t offset, std::int32_t count, const std::wstring& text)
{
    const std::size_t length = characters.size() + text.size() - static_cast<std::size_t>(count);
    CheckLength(length);
    if (length > characters.capacity())
        characters.reserve(length + length / 2 + 128);
    characters.replace(static_cast<std::size_t>(offset), static_cast<std::size_t>(count), text);
}

std::int32_t MXmlDocumentText::Cut(std::int32_t offset) const
{
    return std::min(std::max(offset, 0), Length());
}

std::wstring MXmlDocumentText::At(std::int32_t offset, std::int32_t length) const
{
    const std::int32_t from = Cut(offset);
    const std::int32_t to = Cut(XmlOffsetSum(offset, length));
    return to > from ? characters.substr(static_cast<std::size_t>(from),
                                         static_cast<std::size_t>(to - from))
                     : std::wstring();
}

std::wstring MXmlDocumentText::UnescapedAt(std::int32_t offset, std::int32_t length) const
{
    const std::int32_t from = Cut(offset);
    const std::int32_t to = Cut(XmlOffsetSum(offset, length));
    return XmlMarkupText::Unescape(characters.c_str() + from, std::max(to - from, 0));
}

std::wstring MXmlDocumentText::NameAt(std::int32_t offset) const
{
    MXmlTokenCursor cursor = CursorAt(offset, 0);
    NextXmlNameToken(cursor);
    return At(cursor.start, cursor.TokenLength());
}

MXmlTokenCursor MXmlDocumentText::CursorAt(std::int32_t offset, std::uint32_t documentFlags) const
{
    MXmlTokenCursor cursor(characters.c_str(), Length(), documentFlags);
    cursor.next = Cut(offset);
    return cursor;
}
