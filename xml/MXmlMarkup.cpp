#include "xml/MXmlMarkup.h"
#include "xml/parse/MXmlElementParser.h"
#include "xml/scan/MXmlTagTokens.h"
#include "xml/scan/XmlMarkupText.h"
#include "xml/scan/XmlRuns.h"

#include <algorithm>
#include <cassert>
#include <cwchar>

constexpr std::size_t MXmlMarkup::MaxTextLength;

MXmlMarkup::MXmlMarkup()
{
    LoadText(nullptr);
}

int MXmlMarkup::LoadText(const wchar_t* text)
{
    const wchar_t* const source = text ? text : L"";
    const std::size_t length = TextLength(source);
    MXmlDocumentText::CheckLength(length);
    errorText.clear();
    return ParseDocument(source, static_cast<std::int32_t>(length));
}

int MXmlMarkup::ParseDocument(const wchar_t* source, std::int32_t length)
{
    ClearPosition();
    savedPositions.Clear();
    index.Clear(length / 64 + 8);

    IndexDocument(source, length);
    index.Trim();
    assert(index.IsSound());
    ClearPosition();

    const std::int32_t root = index[0].firstChild;
    return !index[0].Has(XmlElementDocumentIllFormed) && root != 0 && index[root].nextSibling == 0;
}

void MXmlMarkup::IndexDocument(const wchar_t* source, std::int32_t length)
{
    TakeAndIndex(source, length);
    if (length == 0) {
        errorText = L"Empty document";
        return;
    }
    const std::int32_t root = index[0].firstChild;
    index[0].length = length;
    if (root == 0)
        errorText = L"No root element";
    else if (index[root].nextSibling != 0)
        errorText = L"Root element has sibling";
}

// The source is copied while it is parsed, unless it is the document's own text.
void MXmlMarkup::TakeAndIndex(const wchar_t* source, std::int32_t length)
{
    const bool own = documentText.Owns(source);
    if (own)
        documentText.Keep(source, length);
    std::wstring* const copy = own ? nullptr : &documentText.Empty(length);
    MXmlTokenCursor cursor(own ? documentText.Characters().c_str() : source, length, documentFlags);
    MXmlElementParser(index, 0, cursor, errorText, copy).Run();
}

bool MXmlMarkup::GrowRecords(std::int32_t count)
{
    index.GrowRecords(count);
    return true;
}

void MXmlMarkup::ClearPosition()
{
    MoveTo(0, 0, 0);
}

// Stands on an element if there is a current one, and never on another node.
void MXmlMarkup::MoveTo(std::int32_t parent, std::int32_t main, std::int32_t child)
{
    parentIndex = parent;
    mainIndex = main;
    childIndex = child;
    nodeType = main != 0 ? XmlNodeElement : 0;
    nodeOffset = 0;
    nodeLength = 0;
}

bool MXmlMarkup::FindElement(const wchar_t* name)
{
    const std::int32_t found = FindNextSibling(parentIndex, mainIndex, name);
    if (found == 0)
        return false;
    MoveTo(index[found].parent, found, 0);
    return true;
}

std::int32_t MXmlMarkup::FindNextSibling(std::int32_t parent, std::int32_t sibling,
                                         const wchar_t* name) const
{
    std::int32_t found = sibling != 0 ? index[sibling].nextSibling : index[parent].firstChild;
    if (!name || *name == 0)
        return found;
    for (; found != 0; found = index[found].nextSibling) {
        MXmlTokenCursor cursor = CursorInTag(found);
        NextXmlNameToken(cursor);
        if (XmlTokenMatches(cursor, name))
            break;
    }
    return found;
}

bool MXmlMarkup::EnterElement()
{
    if (mainIndex == 0 || nodeType != XmlNodeElement)
        return false;
    MoveTo(mainIndex, childIndex, 0);
    return true;
}

bool MXmlMarkup::LeaveElement()
{
    if (parentIndex == 0)
        return false;
    MoveTo(index[parentIndex].parent, parentIndex, mainIndex);
    return true;
}

bool MXmlMarkup::SavePosition(const wchar_t* name)
{
    if (!name)
        return false;
    if (childIndex != 0)
        savedPositions.Save(name, childIndex, XmlSavedChild);
    else if (mainIndex != 0)
        savedPositions.Save(name, mainIndex, XmlSavedMain);
    else
        savedPositions.Save(name, parentIndex, 0);
    return true;
}

bool MXmlMarkup::RestorePosition(const wchar_t* name)
{
    const MXmlSavedPosition* saved = name ? savedPositions.Find(name) : nullptr;
    if (!saved)
        return false;
    const std::int32_t above = index[saved->index].parent;
    if ((saved->flags & XmlSavedChild) != 0)
        MoveTo(index[above].parent, above, saved->index);
    else if ((saved->flags & XmlSavedMain) != 0)
        MoveTo(above, saved->index, 0);
    else
        MoveTo(saved->index, 0, 0);
    return true;
}

void MXmlMarkup::PurgeSavedPositions()
{
    savedPositions.Purge(index);
}

std::wstring MXmlMarkup::EscapeText(const wchar_t* text, std::uint32_t flags)
{
    return XmlMarkupText::Escape(text, (flags & XmlAddEscapeQuotes) != 0,
                                 (flags & XmlAddKeepReferences) != 0);
}

std::wstring MXmlMarkup::UnescapeText(const wchar_t* text, std::int32_t length)
{
    if (length == -1) {
        const std::size_t whole = text ? std::wcslen(text) : 0;
        MXmlDocumentText::CheckLength(whole);
        length = static_cast<std::int32_t>(whole);
    }
    return XmlMarkupText::Unescape(text, std::max(length, 0));
}

std::wstring MXmlMarkup::WrapCdata(const wchar_t* text)
{
    return XmlMarkupText::WrapCdata(text);
}

bool MXmlMarkup::BuildNodeText(std::int32_t type, const wchar_t* text, std::wstring& result)
{
    return XmlMarkupText::Build(type, text, result);
}

bool MXmlMarkup::NextNameToken(MXmlTokenCursor& cursor)
{
    return NextXmlNameToken(cursor);
}

bool MXmlMarkup::FindAttribute(MXmlTokenCursor& cursor, const wchar_t* name, std::int32_t number)
{
    return FindXmlAttribute(cursor, name, number);
}
