#include "xml/MXmlMarkup.h"
#include "xml/XmlRunSearch.h"

#include <algorithm>

MXmlTokenCursor MXmlMarkup::CursorAt(std::int32_t offset) const
{
    MXmlTokenCursor cursor(documentText.c_str(), static_cast<std::int32_t>(documentText.size()),
                           documentFlags);
    cursor.next = CutToText(offset);
    return cursor;
}

// Right behind the "<" of the start tag.
MXmlTokenCursor MXmlMarkup::CursorInTag(std::int32_t record) const
{
    return CursorAt(XmlOffsetSum(records[record].start, 1));
}

// What an ill-formed document has put out of order may name places outside the text.
std::int32_t MXmlMarkup::CutToText(std::int32_t offset) const
{
    const std::int32_t size = static_cast<std::int32_t>(documentText.size());
    return std::min(std::max(offset, 0), size);
}

std::wstring MXmlMarkup::TextAt(std::int32_t offset, std::int32_t length) const
{
    const std::int32_t from = CutToText(offset);
    const std::int32_t to = CutToText(XmlOffsetSum(offset, length));
    return to > from ? documentText.substr(static_cast<std::size_t>(from),
                                           static_cast<std::size_t>(to - from))
                     : std::wstring();
}

std::wstring MXmlMarkup::UnescapedTextAt(std::int32_t offset, std::int32_t length) const
{
    const std::int32_t from = CutToText(offset);
    const std::int32_t to = CutToText(XmlOffsetSum(offset, length));
    return UnescapeText(documentText.c_str() + from, std::max(to - from, 0));
}

std::wstring MXmlMarkup::TokenText(const MXmlTokenCursor& cursor) const
{
    return TextAt(cursor.start, cursor.TokenLength());
}

std::wstring MXmlMarkup::GetCurrentName() const
{
    if (nodeLength == 0)
        return GetElementName(mainIndex);
    MXmlTokenCursor cursor = CursorAt(nodeOffset + 2);
    switch (nodeType) {
    case XmlNodeText:
    case XmlNodeWhitespace:
        return L"#text";
    case XmlNodeCdata:
        return L"#cdata-section";
    case XmlNodeComment:
        return L"#comment";
    case XmlNodeInstruction:
    case XmlNodeLoneEndTag:
        NextNameToken(cursor);
        return TokenText(cursor);
    case XmlNodeDoctype:
        NextNameToken(cursor);
        NextNameToken(cursor);
        return TokenText(cursor);
    default:
        return std::wstring();
    }
}

std::wstring MXmlMarkup::GetElementName(std::int32_t record) const
{
    if (!IsElement(record))
        return std::wstring();
    MXmlTokenCursor cursor = CursorInTag(record);
    NextNameToken(cursor);
    return TokenText(cursor);
}

// Puts the cursor behind the "<" or "<?" of the tag that attributes are read from.
bool MXmlMarkup::OpenTag(std::int32_t record, MXmlTokenCursor& cursor) const
{
    if (IsElement(record) && nodeType == XmlNodeElement)
        cursor = CursorInTag(record);
    else if (IsOnNode(record) && nodeType == XmlNodeInstruction)
        cursor = CursorAt(nodeOffset + 2);
    else
        return false;
    return true;
}

std::wstring MXmlMarkup::GetAttribute(std::int32_t record, const wchar_t* name) const
{
    MXmlTokenCursor cursor = CursorAt(0);
    if (!name || !OpenTag(record, cursor) || !FindAttribute(cursor, name, 0))
        return std::wstring();
    return UnescapedTextAt(cursor.start, cursor.TokenLength());
}

std::wstring MXmlMarkup::GetElementData(std::int32_t record) const
{
    if (IsOnNode(record))
        return NodeData();
    if (record != 0 && !IsElement(record))
        return std::wstring();
    const MXmlElementRecord& element = records[record];
    if (element.firstChild != 0 || element.IsEmptyElement())
        return std::wstring();
    const std::int32_t start = CutToText(element.ContentStart());
    const std::int32_t end = CutToText(element.ContentEnd());
    const wchar_t* text = documentText.c_str();
    if (FindCharacter<L'<'>(text + start, text + documentText.size()) < text + end)
        return ContentData(start, end);
    return UnescapedTextAt(start, end - start);
}

std::wstring MXmlMarkup::NodeData() const
{
    switch (nodeType) {
    case XmlNodeComment:
        return TextAt(nodeOffset + 4, nodeLength - 7);
    case XmlNodeInstruction:
        return TextAt(nodeOffset + 2, nodeLength - 4);
    case XmlNodeCdata:
        return TextAt(nodeOffset + 9, nodeLength - 12);
    case XmlNodeLoneEndTag:
        return TextAt(nodeOffset + 2, nodeLength - 3);
    case XmlNodeText:
        return UnescapedTextAt(nodeOffset, nodeLength);
    default:
        return TextAt(nodeOffset, nodeLength);
    }
}

std::wstring MXmlMarkup::ContentData(std::int32_t start, std::int32_t end) const
{
    std::wstring data;
    MXmlTokenCursor cursor = CursorAt(start);
    MXmlNodeScan scan;
    while (cursor.next < end && ScanXmlNode(cursor, scan) != XmlScanEndOfText) {
        if (scan.type == XmlNodeText)
            data += UnescapedTextAt(scan.start, scan.length);
        else if (scan.type == XmlNodeCdata)
            data += TextAt(scan.start + 9, scan.length - 12);
    }
    return data;
}

std::wstring MXmlMarkup::GetInnerMarkup(std::int32_t record) const
{
    if (!IsElement(record) || records[record].IsEmptyElement())
        return std::wstring();
    return TextAt(records[record].ContentStart(), records[record].ContentLength());
}
