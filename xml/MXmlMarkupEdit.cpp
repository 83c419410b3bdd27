#include "xml/MXmlMarkup.h"

bool MXmlMarkup::SetAttribute(std::int32_t record, const wchar_t* name, const wchar_t* value)
{
    MXmlTokenCursor cursor = CursorAt(0);
    if (!name || !OpenTag(record, cursor) || !IsInDocument(record))
        return false;
    std::wstring text = QuotedValue(value);
    std::int32_t offset = 0;
    std::int32_t count = 0;
    if (FindAttribute(cursor, name, 0)) {
        offset = cursor.Quoted() ? cursor.start - 1 : cursor.start;
        count = cursor.next - offset;
    } else {
        offset = cursor.next;
        text = AttributeText(name, value);
    }
    ReplaceText(offset, count, text);
    GrowTag(record, static_cast<std::int32_t>(text.size()) - count);
    return true;
}

std::wstring MXmlMarkup::QuotedValue(const wchar_t* value)
{
    return L"\"" + EscapeText(value, XmlAddEscapeQuotes) + L"\"";
}

std::wstring MXmlMarkup::AttributeText(const std::wstring& name, const wchar_t* value)
{
    return L" " + name + L"=" + QuotedValue(value);
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
    return AddElement(name, data, flags, nullptr, nullptr);
}

bool MXmlMarkup::AddElement(const wchar_t* name, const wchar_t* data, std::uint32_t flags,
                            const wchar_t* attribute, const wchar_t* value)
{
    const bool asChild = (flags & XmlAddChild) != 0;
    const bool hasData = data && *data != 0;
    if ((asChild && mainIndex == 0) || ((flags & XmlAddNoEndTag) != 0 && hasData))
        return false;
    const std::int32_t parent = asChild ? mainIndex : parentIndex;
    MXmlInsertRequest request = {XmlNodeElement, asChild ? 0 : nodeOffset, asChild ? 0 : nodeLength,
                                 flags, std::wstring()};
    MXmlElementRecord element = MXmlElementRecord();
    BuildElement(name ? name : L"", attribute ? AttributeText(attribute, value) : std::wstring(),
                 hasData ? data : nullptr, flags, request.text, element);
    element.parent = parent;

    const bool hasMarkup = hasData && (flags & XmlAddMarkup) != 0;
    const std::int32_t added = SpliceElement(asChild ? childIndex : mainIndex, request, element,
                                             hasMarkup ? data : nullptr);
    if (added == 0)
        return false;
    if (asChild)
        MoveTo(parentIndex, parent, added);
    else
        MoveTo(parent, added, 0);
    return true;
}

// The element's text, and its record but for place and links.
void MXmlMarkup::BuildElement(const std::wstring& name, const std::wstring& attribute,
                              const wchar_t* data, std::uint32_t flags, std::wstring& text,
                              MXmlElementRecord& element)
{
    text = L"<" + name + attribute;
    if (data) {
        text += L'>';
        element.SetStartTagLength(static_cast<std::int32_t>(text.size()));
        if ((flags & XmlAddMarkup) != 0)
            text += data;
        else
            text += (flags & XmlAddCdata) != 0 ? WrapCdata(data) : EscapeText(data, flags);
        text += L"</" + name + L">";
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

// Answers 0 where the markup that the element is to contain is not well-formed. Whatever can fail
// comes before the text changes, and keeps no record.
std::int32_t MXmlMarkup::SpliceElement(std::int32_t sibling, MXmlInsertRequest& request,
                                       const MXmlElementRecord& element, const wchar_t* markup)
{
    CheckLength(request.text.size());
    const std::int32_t parent = element.parent;
    const std::int32_t inUse = nextFreeIndex;
    try {
        const std::uint32_t contentLevel = parent != 0 ? records[parent].Level() + 2 : 1;
        const std::int32_t content = markup ? IndexMarkup(markup, contentLevel) : 0;
        if (content == 0 || !records[content].Has(XmlElementDocumentIllFormed)) {
            MakeRoomForRecord();
            const std::int32_t replaced = InsertNodeText(parent, sibling, request);
            MXmlElementRecord placed = element;
            placed.start = request.offset;
            return PlaceElement(sibling, placed,
                                static_cast<std::int32_t>(request.text.size()) - replaced, content);
        }
    } catch (...) {
        nextFreeIndex = inUse;
        throw;
    }
    nextFreeIndex = inUse;
    return 0;
}

// Gives an element that is in the text its record. What it contains is indexed from its own front,
// below the record `content`, unless that is 0.
std::int32_t MXmlMarkup::PlaceElement(std::int32_t sibling, const MXmlElementRecord& element,
                                      std::int32_t delta, std::int32_t content)
{
    const std::int32_t added = TakeRecord();
    records[added] = element;
    LinkElement(element.parent, sibling, added);
    ShiftOffsets(added, delta, false);
    if (content == 0)
        return added;
    const std::int32_t first = records[content].firstChild;
    if (first != 0) {
        ShiftOffsets(first, records[added].ContentStart(), false);
        records[first].MoveBy(records[added].ContentStart());
        AdoptChildren(added, first);
    }
    DeleteRecord(content);
    return added;
}

// Indexes markup by itself, its places counted from its own front, below a record that takes the
// marks of what is ill-formed.
std::int32_t MXmlMarkup::IndexMarkup(const std::wstring& markup, std::uint32_t level)
{
    const std::int32_t scratch = TakeRecord();
    records[scratch] = MXmlElementRecord();
    records[scratch].SetLevel(level);
    MXmlTokenCursor cursor(markup.c_str(), static_cast<std::int32_t>(markup.size()), documentFlags);
    ParseElements(scratch, cursor);
    return scratch;
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

    const std::int32_t scratch = IndexMarkup(request.text, records[mainIndex].Level() + 1);
    const std::int32_t first = records[scratch].firstChild;
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
