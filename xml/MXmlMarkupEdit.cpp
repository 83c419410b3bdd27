#include "xml/document/MXmlInsertion.h"
#include "xml/index/MXmlRecordsTaken.h"
#include "xml/MXmlMarkup.h"
#include "xml/parse/MXmlElementParser.h"
#include "xml/scan/MXmlTagTokens.h"

#include <cassert>

namespace
{

std::int32_t LengthOf(const std::wstring& text)
{
    return static_cast<std::int32_t>(text.size());
}

std::wstring QuotedValue(const wchar_t* value)
{
    return L"\"" + MXmlMarkup::EscapeText(value, XmlAddEscapeQuotes) + L"\"";
}

std::wstring AttributeText(const std::wstring& name, const wchar_t* value)
{
    return L" " + name + L"=" + QuotedValue(value);
}

std::wstring DataText(const wchar_t* data, std::uint32_t flags)
{
    if ((flags & XmlAddMarkup) != 0)
        return data;
    return (flags & XmlAddCdata) != 0 ? MXmlMarkup::WrapCdata(data)
                                      : MXmlMarkup::EscapeText(data, flags);
}

// The element's text, and its record but for place and links.
MXmlElementRecord BuildElement(const std::wstring& name, const std::wstring& attribute,
                               const wchar_t* data, std::uint32_t flags, std::wstring& text)
{
    MXmlElementRecord element = MXmlElementRecord();
    text = L"<" + name + attribute;
    if (data) {
        text += L'>';
        element.SetStartTagLength(LengthOf(text));
        text += DataText(data, flags) + L"</" + name + L">";
        element.SetEndTagLength(LengthOf(name) + 3);
    } else {
        const bool spaced = (flags & XmlAddSpaceSlash) != 0;
        const bool unclosed = (flags & XmlAddNoEndTag) != 0;
        text += unclosed ? L">" : spaced ? L" />" : L"/>";
        element.SetStartTagLength(LengthOf(text));
        if (unclosed)
            element.Set(XmlElementNoEndTag);
    }
    element.length = LengthOf(text);
    return element;
}

} // namespace

// Every edit is: splice the text, shift what lies behind, link what is new. What may run out of
// memory comes before the first change of the index.

bool MXmlMarkup::SetAttribute(std::int32_t record, const wchar_t* name, const wchar_t* value)
{
    MXmlTokenCursor cursor = documentText.CursorAt(0, documentFlags);
    if (!name || !OpenTag(record, cursor) || !index.IsInDocument(record))
        return false;
    std::wstring text = QuotedValue(value);
    std::int32_t offset = 0;
    std::int32_t count = 0;
    if (FindXmlAttribute(cursor, name, 0)) {
        offset = cursor.Quoted() ? cursor.start - 1 : cursor.start;
        count = cursor.next - offset;
    } else {
        offset = cursor.next;
        text = AttributeText(name, value);
    }
    documentText.Replace(offset, count, text);
    const std::int32_t delta = LengthOf(text) - count;
    if (nodeType == XmlNodeInstruction) {
        index.ShiftOffsetsAfter(parentIndex, mainIndex, delta);
        nodeLength += delta;
    } else {
        index.GrowTag(record, delta);
    }
    assert(index.IsSound());
    return true;
}

bool MXmlMarkup::AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags)
{
    return AddElement(name, data, flags, nullptr, nullptr);
}

bool MXmlMarkup::AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags,
                            const wchar_t* attribute, const wchar_t* value)
{
    const bool asChild = (flags & XmlAddChild) != 0;
    const bool asMarkup = data && (flags & XmlAddMarkup) != 0;
    const bool hasData = asMarkup || (data && *data != 0);
    if ((asChild && mainIndex == 0) || ((flags & XmlAddNoEndTag) != 0 && hasData))
        return false;
    MXmlInsertRequest request = {XmlNodeElement, asChild ? 0 : nodeOffset, asChild ? 0 : nodeLength,
                                 flags, std::wstring()};
    MXmlElementRecord element = BuildElement(
        name ? name : L"", attribute ? AttributeText(attribute, value) : std::wstring(),
        hasData ? data : nullptr, flags, request.text);
    element.parent = asChild ? mainIndex : parentIndex;
    MXmlDocumentText::CheckLength(request.text.size());

    const std::int32_t added = SpliceElement(asChild ? childIndex : mainIndex, request, element,
                                             asMarkup ? data : nullptr);
    if (added == 0)
        return false;
    if (asChild)
        MoveTo(parentIndex, mainIndex, added);
    else
        MoveTo(parentIndex, added, 0);
    return true;
}

// Answers 0 where the markup that the element is to contain is not well-formed. Whatever can fail
// comes before the text changes, and keeps no record.
std::int32_t MXmlMarkup::SpliceElement(std::int32_t sibling, MXmlInsertRequest& request,
                                       MXmlElementRecord& element, const wchar_t* markup)
{
    MXmlRecordsTaken taken(index);
    const std::int32_t fragment =
        markup ? ParseFragment(markup, index.LevelBelow(element.parent) + 1) : 0;
    if (fragment != 0 && index[fragment].Has(XmlElementDocumentIllFormed))
        return 0;
    index.MakeRoom();

    MXmlInsertion insertion(documentText, index, element.parent, sibling, request);
    const std::int32_t delta = insertion.Splice();
    taken.Keep();
    element.start = request.offset;
    index.ShiftOffsetsAfter(element.parent, insertion.Sibling(), delta);
    const std::int32_t added = index.LinkElement(element.parent, insertion.Sibling(), element);
    if (fragment != 0)
        index.AdoptFragment(added, fragment, index[added].ContentStart());
    assert(index.IsSound());
    return added;
}

bool MXmlMarkup::AddNode(std::int32_t type, const wchar_t* text, std::uint32_t flags)
{
    const bool declares =
        type == XmlNodeInstruction || type == XmlNodeComment || type == XmlNodeDoctype;
    MXmlInsertRequest request = {type, nodeOffset, nodeLength,
                                 declares ? flags : flags | XmlAddNoLineBreak, std::wstring()};
    if (!BuildNodeText(type, text, request.text))
        return false;
    index.MakeRoom();

    MXmlInsertion insertion(documentText, index, parentIndex, mainIndex, request);
    const std::int32_t delta = insertion.Splice();
    index.ShiftOffsetsAfter(parentIndex, insertion.Sibling(), delta);
    MoveTo(parentIndex, insertion.Sibling(), 0);
    if (type == XmlNodeElement) {
        MXmlElementRecord element = MXmlElementRecord();
        element.start = request.offset;
        element.length = request.length;
        element.SetStartTagLength(request.length);
        MoveTo(parentIndex, index.LinkElement(parentIndex, insertion.Sibling(), element), 0);
    } else {
        nodeType = type;
        nodeOffset = request.offset;
        nodeLength = request.length;
    }
    assert(index.IsSound());
    return true;
}

int MXmlMarkup::ReplaceInnerMarkup(const wchar_t* markup)
{
    if (mainIndex == 0 || nodeLength != 0)
        return 0;
    MXmlInsertRequest request = {0, 0, 0, XmlAddReplaceContent | XmlAddNoLineBreak,
                                 markup ? markup : L""};
    MXmlDocumentText::CheckLength(request.text.size());
    if (index[mainIndex].firstChild != 0) {
        index.DeleteDescendants(mainIndex);
        PurgeSavedPositions();
    }

    const std::int32_t fragment = ParseFragment(request.text, index.LevelBelow(mainIndex));
    const bool wellFormed = !index[fragment].Has(XmlElementDocumentIllFormed);
    index[mainIndex].Clear(XmlElementIllFormed);
    if (index[fragment].Has(XmlElementIllFormed))
        index[mainIndex].Set(XmlElementIllFormed);

    const std::int32_t delta = MXmlInsertion(documentText, index, mainIndex, 0, request).Splice();
    // Without an element in the markup the document's record takes the offset, where nothing reads
    // it, until the next load.
    if (index[fragment].firstChild == 0)
        index[0].MoveBy(request.offset);
    index.ShiftOffsets(mainIndex, delta, true);
    index[mainIndex].GrowBy(delta);
    index.AdoptFragment(mainIndex, fragment, request.offset);
    assert(index.IsSound());
    MoveTo(parentIndex, mainIndex, 0);
    return wellFormed ? 1 : 0;
}

// Answers a record that stands for a document of which the markup is all; offsets are counted from
// its front.
std::int32_t MXmlMarkup::ParseFragment(const std::wstring& markup, std::uint32_t level)
{
    const std::int32_t fragment = index.TakeFragment(level);
    MXmlTokenCursor cursor(markup.c_str(), LengthOf(markup), documentFlags);
    MXmlElementParser(index, fragment, cursor, errorText).Run();
    return fragment;
}
