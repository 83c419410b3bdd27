#include "xml/MXmlMarkup.h"

bool MXmlMarkup::SetAttribute(std::int32_t record, const wchar_t* name, const wchar_t* value)
{
    MXmlTokenCursor cursor = CursorAt(0);
    if (!name || !OpenTag(record, cursor) || !IsInDocument(record))
        return false;
    std::wstring text = L"\"" + EscapeText(value, XmlAddEscapeQuotes) + L"\"";
    std::int32_t offset = 0;
    std::int32_t count = 0;
    if (FindAttribute(cursor, name, 0)) {
        offset = cursor.Quoted() ? cursor.start - 1 : cursor.start;
        count = cursor.next - offset;
    } else {
        offset = cursor.next;
        text = std::wstring(L" ") + name + L"=" + text;
    }
    ReplaceText(offset, count, text);
    GrowTag(record, static_cast<std::int32_t>(text.size()) - count);
    return true;
}

void MXmlMarkup::GrowTag(std::int32_t record, std::int32_t delta)
{
    if (nodeType == XmlNodeInstruction) {
        ShiftOffsetsAfter(parentIndex, mainIndex, delta);
        nodeLength += delta;
        return;
    }
    records[record].SetStartTagLength(records[record].StartTagLength() + delta);
    records[record].GrowBy(delta);
    ShiftOffsets(record, delta, false);
}

bool MXmlMarkup::AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags)
{
    const bool asChild = (flags & XmlAddChild) != 0;
    const bool hasData = data && *data != 0;
    if ((asChild && mainIndex == 0) || ((flags & XmlAddNoEndTag) != 0 && hasData))
        return false;
    const std::int32_t parent = asChild ? mainIndex : parentIndex;
    std::int32_t sibling = asChild ? childIndex : mainIndex;
    MXmlInsertRequest request = {XmlNodeElement, asChild ? 0 : nodeOffset, asChild ? 0 : nodeLength,
                                 flags, std::wstring()};

    const std::int32_t added = TakeRecord();
    MXmlElementRecord element = MXmlElementRecord();
    BuildElement(name ? name : L"", hasData ? data : nullptr, flags, request.text, element);
    const std::int32_t replaced = InsertNodeText(parent, sibling, request);
    element.start = request.offset;
    records[added] = element;
    LinkElement(parent, sibling, added);
    ShiftOffsets(added, static_cast<std::int32_t>(request.text.size()) - replaced, false);
    if (asChild)
        MoveTo(parentIndex, parent, added);
    else
        MoveTo(parent, added, 0);
    return true;
}

// The element's text, and its record but for place and links.
void MXmlMarkup::BuildElement(const std::wstring& name, const wchar_t* data, std::uint32_t flags,
                              std::wstring& text, MXmlElementRecord& element)
{
    text = L"<" + name;
    if (data) {
        const bool asCdata = (flags & XmlAddCdata) != 0;
        text += L">" + (asCdata ? WrapCdata(data) : EscapeText(data, flags));
        text += L"</" + name + L">";
        element.SetStartTagLength(static_cast<std::int32_t>(name.size()) + 2);
        element.SetEndTagLength(static_cast<std::int32_t>(name.size()) + 3);
    } else {
        const bool spaced = (flags & XmlAddSpaceSlash) != 0;
        const bool unclosed = (flags & XmlAddNoEndTag) != 0;
        text += unclosed ? L">" : spaced ? L" />" : L"/>";
        element.SetStartTagLength(static_cast<std::int32_t>(text.size()));
        if (unclosed)
            element.Set(XmlElementNoEndTag);
    }
    element.length = static_cast<std::int32_t>(text.size());
}

bool MXmlMarkup::AddNode(std::int32_t type, const wchar_t* text, std::uint32_t flags)
{
    const bool declares =
        type == XmlNodeInstruction || type == XmlNodeComment || type == XmlNodeDoctype;
    MXmlInsertRequest request = {type, nodeOffset, nodeLength,
                                 declares ? flags : flags | XmlAddNoLineBreak, std::wstring()};
    if (!BuildNodeText(type, text, request.text))
        return false;
    std::int32_t sibling = mainIndex;
    const std::int32_t replaced = InsertNodeText(parentIndex, sibling, request);
    if (type == XmlNodeElement) {
        sibling = AddEmptyElement(sibling, request);
        MoveTo(parentIndex, sibling, 0);
    } else {
        MoveTo(parentIndex, sibling, 0);
        nodeType = type;
        nodeOffset = request.offset;
        nodeLength = request.length;
    }
    ShiftOffsetsAfter(parentIndex, sibling,
                      static_cast<std::int32_t>(request.text.size()) - replaced);
    return true;
}

std::int32_t MXmlMarkup::AddEmptyElement(std::int32_t sibling, const MXmlInsertRequest& request)
{
    const std::int32_t added = TakeRecord();
    MXmlElementRecord& element = records[added];
    element = MXmlElementRecord();
    element.start = request.offset;
    element.length = request.length;
    element.SetStartTagLength(request.length);
    LinkElement(parentIndex, sibling, added);
    return added;
}

int MXmlMarkup::ReplaceInnerMarkup(const wchar_t* markup)
{
    if (mainIndex == 0 || nodeLength != 0)
        return 0;
    MXmlInsertRequest request = {0, 0, 0, XmlAddReplaceContent | XmlAddNoLineBreak,
                                 markup ? markup : L""};
    CheckLength(request.text.size());
    if (records[mainIndex].firstChild != 0) {
        DeleteDescendants(mainIndex);
        PurgeSavedPositions();
    }

    const std::int32_t scratch = TakeRecord();
    records[scratch] = MXmlElementRecord();
    records[scratch].SetLevel(records[mainIndex].Level() + 1);
    MXmlTokenCursor cursor(request.text.c_str(), static_cast<std::int32_t>(request.text.size()),
                           documentFlags);
    const std::int32_t first = ParseElements(scratch, cursor);
    const bool wellFormed = !records[scratch].Has(XmlElementDocumentIllFormed);

    MXmlElementRecord& element = records[mainIndex];
    element.Clear(XmlElementIllFormed);
    if (records[scratch].Has(XmlElementIllFormed))
        element.Set(XmlElementIllFormed);
    std::int32_t sibling = 0;
    const std::int32_t replaced = InsertNodeText(mainIndex, sibling, request);
    // Without an element in the markup this moves the `start` of the document's record until the
    // next load, where nothing reads it. The walk stops there at once.
    ShiftOffsets(first, request.offset, false);
    records[first].MoveBy(request.offset);
    AdoptChildren(mainIndex, first);
    DeleteRecord(scratch);
    const std::int32_t delta = static_cast<std::int32_t>(request.text.size()) - replaced;
    ShiftOffsets(mainIndex, delta, true);
    element.GrowBy(delta);
    MoveTo(parentIndex, mainIndex, 0);
    return wellFormed ? 1 : 0;
}

// Each record after its own descendants.
void MXmlMarkup::DeleteDescendants(std::int32_t record)
{
    std::int32_t at = FirstLeaf(record);
    while (at != record) {
        const std::int32_t sibling = records[at].nextSibling;
        const std::int32_t parent = records[at].parent;
        DeleteRecord(at);
        at = sibling != 0 ? FirstLeaf(sibling) : parent;
    }
}

std::int32_t MXmlMarkup::FirstLeaf(std::int32_t record) const
{
    while (records[record].firstChild != 0)
        record = records[record].firstChild;
    return record;
}

void MXmlMarkup::DeleteRecord(std::int32_t record)
{
    records[record].flagsAndLevel = XmlElementDeleted;
    records[record].nextSibling = deletedHead;
    deletedHead = record;
}

void MXmlMarkup::AdoptChildren(std::int32_t parent, std::int32_t firstChild)
{
    records[parent].firstChild = firstChild;
    for (std::int32_t child = firstChild; child != 0; child = records[child].nextSibling)
        records[child].parent = parent;
}
