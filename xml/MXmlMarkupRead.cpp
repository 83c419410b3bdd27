#include "xml/MXmlMarkup.h"
#include "xml/scan/MXmlTagTokens.h"
#include "xml/scan/XmlRuns.h"

std::wstring MXmlMarkup::GetCurrentName() const
{
    if (nodeLength == 0)
        return GetElementName(mainIndex);
    switch (nodeType) {
    case XmlNodeText:
    case XmlNodeWhitespace:
        return L"#text";
    case XmlNodeCdata:
        return L"#cdata-section";
    case XmlNodeComment:
        return L"#comment";
    default:
        return NameInNode();
    }
}

// Of an instruction, or of a doctype, where it stands behind the "DOCTYPE".
std::wstring MXmlMarkup::NameInNode() const
{
    MXmlTokenCursor cursor = documentText.CursorAt(nodeOffset + 2, documentFlags);
    NextXmlNameToken(cursor);
    if (nodeType == XmlNodeDoctype)
        NextXmlNameToken(cursor);
    return documentText.At(cursor.start, cursor.TokenLength());
}

std::wstring MXmlMarkup::GetElementName(std::int32_t record) const
{
    if (!index.IsElement(record))
        return std::wstring();
    return documentText.NameAt(XmlOffsetSum(index[record].start, 1));
}

// Right behind the "<" of the start tag.
MXmlTokenCursor MXmlMarkup::CursorInTag(std::int32_t record) const
{
    return documentText.CursorAt(XmlOffsetSum(index[record].start, 1), documentFlags);
}

// Puts the cursor behind the "<" or "<?" of the tag that attributes are read from.
bool MXmlMarkup::OpenTag(std::int32_t record, MXmlTokenCursor& cursor) const
{
    if (index.IsElement(record) && nodeType == XmlNodeElement)
        cursor = CursorInTag(record);
    else if (IsOnNode(record) && nodeType == XmlNodeInstruction)
        cursor = documentText.CursorAt(nodeOffset + 2, documentFlags);
    else
        return false;
    return true;
}

std::wstring MXmlMarkup::GetAttribute(std::int32_t record, const wchar_t* name) const
{
    MXmlTokenCursor cursor = documentText.CursorAt(0, documentFlags);
    if (!name || !OpenTag(record, cursor) || !FindXmlAttribute(cursor, name, 0))
        return std::wstring();
    return documentText.UnescapedAt(cursor.start, cursor.TokenLength());
}

std::wstring MXmlMarkup::GetElementData(std::int32_t record) const
{
    if (IsOnNode(record))
        return NodeData();
    if (record != 0 && !index.IsElement(record))
        return std::wstring();
    const MXmlElementRecord& element = index[record];
    if (element.firstChild != 0 || element.IsEmptyElement())
        return std::wstring();
    const std::int32_t start = documentText.Cut(element.ContentStart());
    const std::int32_t end = documentText.Cut(element.ContentEnd());
    const wchar_t* text = documentText.Characters().c_str();
    if (FindCharacter<L'<'>(text + start, text + documentText.Length()) < text + end)
        return ContentData(start, end);
    return documentText.UnescapedAt(start, end - start);
}

std::wstring MXmlMarkup::NodeData() const
{
    switch (nodeType) {
    case XmlNodeComment:
        return documentText.At(nodeOffset + 4, nodeLength - 7);
    case XmlNodeInstruction:
        return documentText.At(nodeOffset + 2, nodeLength - 4);
    case XmlNodeCdata:
        return documentText.At(nodeOffset + 9, nodeLength - 12);
    case XmlNodeText:
        return documentText.UnescapedAt(nodeOffset, nodeLength);
    default:
        return documentText.At(nodeOffset, nodeLength);
    }
}

std::wstring MXmlMarkup::ContentData(std::int32_t start, std::int32_t end) const
{
    std::wstring data;
    MXmlTokenCursor cursor = documentText.CursorAt(start, documentFlags);
    MXmlNodeScan scan;
    while (cursor.next < end) {
        ScanXmlNode(cursor, scan);
        if (scan.type == XmlNodeText)
            data += documentText.UnescapedAt(scan.start, scan.length);
        else if (scan.type == XmlNodeCdata)
            data += documentText.At(scan.start + 9, scan.length - 12);
    }
    return data;
}

std::wstring MXmlMarkup::GetInnerMarkup(std::int32_t record) const
{
    if (!index.IsElement(record) || index[record].IsEmptyElement())
        return std::wstring();
    return documentText.At(index[record].ContentStart(), index[record].ContentLength());
}
