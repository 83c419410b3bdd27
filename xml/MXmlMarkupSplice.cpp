#include "xml/MXmlMarkup.h"
#include "xml/XmlCharacters.h"

#include <stdexcept>

void MXmlMarkup::CheckLength(std::size_t length)
{
    if (length > MaxTextLength)
        throw std::length_error("MXmlMarkup: text too long");
}

void MXmlMarkup::ReplaceText(std::int32_t offset, std::int32_t count, const std::wstring& text)
{
    const std::size_t length = documentText.size() + text.size() - static_cast<std::size_t>(count);
    CheckLength(length);
    if (length > documentText.capacity())
        documentText.reserve(length + length / 2 + 128);
    documentText.replace(static_cast<std::size_t>(offset), static_cast<std::size_t>(count), text);
}

// Decides place and form of everything that is added, and splices it in. Answers how many
// characters it replaced.
std::int32_t MXmlMarkup::InsertNodeText(std::int32_t parent, std::int32_t& sibling,
                                        MXmlInsertRequest& request)
{
    const bool atNode = request.length != 0;
    const bool intoEmpty = parent != 0 && records[parent].IsEmptyElement();
    const bool noContent = parent != 0 && records[parent].ContentLength() == 0;
    const bool breaksLine = (request.flags & XmlAddNoLineBreak) == 0;
    const bool replacesContent = (request.flags & XmlAddReplaceContent) != 0;

    request.offset = CutToText(InsertOffset(parent, sibling, request));
    if (breaksLine && !replacesContent && !intoEmpty)
        request.offset = SkipLineBreak(request.offset);
    if (!atNode)
        sibling = SiblingToLink(parent, sibling, request.flags);
    request.length = static_cast<std::int32_t>(request.text.size());
    if (breaksLine)
        request.text += L'\n';
    // The node itself begins behind the line break that comes in front.
    if (breaksLine ? intoEmpty || noContent : noContent && !intoEmpty && !replacesContent)
        ++request.offset;

    if (intoEmpty)
        return InsertIntoEmpty(parent, request);
    if (replacesContent)
        return InsertForContent(parent, request);
    if (noContent) {
        request.text.insert(0, 1, L'\n');
        ReplaceText(CutToText(records[parent].ContentStart()), 0, request.text);
    } else {
        ReplaceText(request.offset, 0, request.text);
    }
    return 0;
}

std::int32_t MXmlMarkup::InsertOffset(std::int32_t parent, std::int32_t sibling,
                                      const MXmlInsertRequest& request) const
{
    const bool before = (request.flags & XmlAddBefore) != 0;
    if (request.length != 0)
        return before ? request.offset : XmlOffsetSum(request.offset, request.length);
    if (sibling != 0)
        return before ? records[sibling].start : records[sibling].End();
    // Whatever the document's record says: front and end of the text are these.
    if (parent == 0)
        return before ? 0 : static_cast<std::int32_t>(documentText.size());
    const MXmlElementRecord& element = records[parent];
    if (element.IsEmptyElement())
        return XmlOffsetSum(element.ContentStart(), element.Has(XmlElementNoEndTag) ? 0 : -1);
    if (before || (request.flags & XmlAddReplaceContent) != 0)
        return element.ContentStart();
    return element.ContentEnd();
}

// A new node comes behind the line break of the one before it, but not behind the white space that
// leads to text.
std::int32_t MXmlMarkup::SkipLineBreak(std::int32_t offset) const
{
    const wchar_t* at = documentText.c_str() + offset;
    while (XmlCharacters::IsSpace(*at))
        ++at;
    const bool leadsToText = *at != L'<' && *at != 0;
    return leadsToText ? offset : static_cast<std::int32_t>(at - documentText.c_str());
}

// The sibling behind which an added element is linked; 0 puts it in front.
std::int32_t MXmlMarkup::SiblingToLink(std::int32_t parent, std::int32_t sibling,
                                       std::uint32_t flags) const
{
    const bool before = (flags & XmlAddBefore) != 0;
    if (sibling != 0 && before)
        return records[sibling].Has(XmlElementFirstChild) ? 0 : records[sibling].previousSibling;
    if (sibling == 0 && !before && records[parent].firstChild != 0)
        return records[records[parent].firstChild].previousSibling;
    return sibling;
}

// Gives an element without an end tag one, with the new text before it.
std::int32_t MXmlMarkup::InsertIntoEmpty(std::int32_t parent, MXmlInsertRequest& request)
{
    const std::wstring name = GetElementName(parent);
    const bool breaksLine = (request.flags & XmlAddNoLineBreak) == 0;
    request.text = (breaksLine ? L">\n" : L">") + request.text + L"</" + name;

    MXmlElementRecord& element = records[parent];
    const bool unclosed = element.Has(XmlElementNoEndTag);
    const std::int32_t offset = CutToText(element.End() - (unclosed ? 1 : 2));
    const std::int32_t replaced = unclosed ? 0 : CutToText(offset + 1) - offset;
    ReplaceText(offset, replaced, request.text);
    element.SetEndTagLength(static_cast<std::int32_t>(name.size()) + 3);
    if (unclosed)
        element.Clear(XmlElementNoEndTag);
    else
        element.SetStartTagLength(element.StartTagLength() - 1);
    return replaced;
}

std::int32_t MXmlMarkup::InsertForContent(std::int32_t parent, const MXmlInsertRequest& request)
{
    const std::int32_t start = CutToText(records[parent].ContentStart());
    const std::int32_t end = CutToText(records[parent].ContentEnd());
    const std::int32_t replaced = end > start ? end - start : 0;
    ReplaceText(start, replaced, request.text);
    return replaced;
}

void MXmlMarkup::LinkElement(std::int32_t parent, std::int32_t sibling, std::int32_t added)
{
    MXmlElementRecord& element = records[added];
    element.parent = parent;
    if (sibling != 0)
        LinkBehind(parent, sibling, added);
    else
        LinkInFront(parent, added);
    if (parent != 0)
        element.SetLevel(records[parent].Level() + 1);
}

void MXmlMarkup::LinkBehind(std::int32_t parent, std::int32_t sibling, std::int32_t added)
{
    MXmlElementRecord& element = records[added];
    element.Clear(XmlElementFirstChild);
    element.previousSibling = sibling;
    element.nextSibling = records[sibling].nextSibling;
    records[sibling].nextSibling = added;
    const std::int32_t behind =
        element.nextSibling != 0 ? element.nextSibling : records[parent].firstChild;
    records[behind].previousSibling = added;
}

void MXmlMarkup::LinkInFront(std::int32_t parent, std::int32_t added)
{
    MXmlElementRecord& element = records[added];
    const std::int32_t first = records[parent].firstChild;
    element.Set(XmlElementFirstChild);
    element.nextSibling = first;
    element.previousSibling = first != 0 ? records[first].previousSibling : added;
    records[parent].firstChild = added;
    if (first != 0) {
        records[first].Clear(XmlElementFirstChild);
        records[first].previousSibling = added;
    }
}

// Walks through all records behind the change, in the order of the document: one that lies behind
// it moves, one that contains it grows, and the document's own is the last.
void MXmlMarkup::ShiftOffsets(std::int32_t record, std::int32_t delta, bool behindOnly)
{
    if (records[record].IsDocument())
        return;
    std::int32_t top = records[record].parent;
    bool enters = !behindOnly;
    do {
        record = NextInDocument(record, top, enters);
        enters = record != top;
        if (enters) {
            records[record].MoveBy(delta);
        } else {
            records[record].GrowBy(delta);
            top = records[record].parent;
        }
    } while (!records[record].IsDocument());
}

// Answers `top` when there is nothing more below it.
std::int32_t MXmlMarkup::NextInDocument(std::int32_t record, std::int32_t top, bool enters) const
{
    if (enters && records[record].firstChild != 0)
        return records[record].firstChild;
    while (records[record].nextSibling == 0) {
        record = records[record].parent;
        if (record == top)
            return top;
    }
    return records[record].nextSibling;
}

// For a change behind `sibling`, or with 0 at the front of the level.
void MXmlMarkup::ShiftOffsetsAfter(std::int32_t parent, std::int32_t sibling, std::int32_t delta)
{
    const std::int32_t first = records[parent].firstChild;
    if (sibling != 0) {
        ShiftOffsets(sibling, delta, true);
    } else if (first != 0) {
        records[first].MoveBy(delta);
        ShiftOffsets(first, delta, false);
    } else {
        records[parent].GrowBy(delta);
        ShiftOffsets(parent, delta, true);
    }
}
