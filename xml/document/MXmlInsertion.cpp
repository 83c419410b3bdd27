#include "xml/document/MXmlInsertion.h"
#include "xml/scan/XmlCharacters.h"

MXmlInsertion::MXmlInsertion(MXmlDocumentText& documentText, MXmlElementIndex& elements,
                             std::int32_t parentRecord, std::int32_t siblingRecord,
                             MXmlInsertRequest& insertRequest)
    : text(documentText), index(elements), request(insertRequest), parent(parentRecord),
      sibling(siblingRecord), intoEmpty(parent != 0 && index[parent].IsEmptyElement()),
      noContent(parent != 0 && index[parent].ContentLength() == 0),
      breaksLine(!Wants(XmlAddNoLineBreak))
{
}

std::int32_t MXmlInsertion::Splice()
{
    const bool replacesContent = Wants(XmlAddReplaceContent);
    const bool breaksInFront = noContent && !intoEmpty && !replacesContent;
    request.offset = text.Cut(Offset());
    if (breaksLine && !replacesContent && !intoEmpty)
        request.offset = SkipLineBreak(request.offset);
    if (request.length == 0)
        sibling = SiblingToLink();
    request.length = static_cast<std::int32_t>(request.text.size());
    if (breaksLine)
        request.text += L'\n';
    // The node itself begins behind the line break that comes in front.
    if (breaksLine ? intoEmpty || noContent : breaksInFront)
        ++request.offset;

    if (intoEmpty)
        return SpliceIntoEmpty();
    if (replacesContent)
        return SpliceForContent();
    if (!breaksInFront)
        return Replace(request.offset, 0);
    request.text.insert(0, 1, L'\n');
    return Replace(text.Cut(index[parent].ContentStart()), 0);
}

std::int32_t MXmlInsertion::Offset() const
{
    const bool before = Wants(XmlAddBefore);
    if (request.length != 0)
        return before ? request.offset : XmlOffsetSum(request.offset, request.length);
    if (sibling != 0)
        return before ? index[sibling].start : index[sibling].End();
    // Whatever the document's record says: front and end of the text are these.
    if (parent == 0)
        return before || Wants(XmlAddReplaceContent) ? 0 : text.Length();
    return OffsetInParent();
}

std::int32_t MXmlInsertion::OffsetInParent() const
{
    const MXmlElementRecord& element = index[parent];
    if (intoEmpty)
        return XmlOffsetSum(element.ContentStart(), element.Has(XmlElementNoEndTag) ? 0 : -1);
    if (Wants(XmlAddBefore) || Wants(XmlAddReplaceContent))
        return element.ContentStart();
    return element.ContentEnd();
}

// A new node comes behind the line break of the one before it, but not behind the white space that
// leads to text.
std::int32_t MXmlInsertion::SkipLineBreak(std::int32_t offset) const
{
    const wchar_t* const front = text.Characters().c_str();
    const wchar_t* at = front + offset;
    while (XmlCharacters::IsSpace(*at))
        ++at;
    const bool leadsToText = *at != L'<' && *at != 0;
    return leadsToText ? offset : static_cast<std::int32_t>(at - front);
}

std::int32_t MXmlInsertion::SiblingToLink() const
{
    const bool before = Wants(XmlAddBefore);
    if (sibling != 0)
        return before ? index.SiblingInFront(sibling) : sibling;
    return before ? 0 : index.LastChild(parent);
}

// Gives an element without an end tag one, with the new text before it.
std::int32_t MXmlInsertion::SpliceIntoEmpty()
{
    MXmlElementRecord& element = index[parent];
    const std::wstring name = text.NameAt(XmlOffsetSum(element.start, 1));
    request.text = (breaksLine ? L">\n" : L">") + request.text + L"</" + name;

    const bool unclosed = element.Has(XmlElementNoEndTag);
    const std::int32_t place = text.Cut(XmlOffsetSum(element.End(), unclosed ? -1 : -2));
    const std::int32_t slash = unclosed ? 0 : text.Cut(place + 1) - place;
    const std::int32_t grown = Replace(place, slash);
    if (unclosed)
        element.Clear(XmlElementNoEndTag);
    else
        element.SetStartTagLength(element.StartTagLength() - 1);
    element.SetEndTagLength(static_cast<std::int32_t>(name.size()) + 3);
    return grown;
}

std::int32_t MXmlInsertion::SpliceForContent()
{
    const std::int32_t start = text.Cut(index[parent].ContentStart());
    const std::int32_t end = text.Cut(index[parent].ContentEnd());
    return Replace(start, end > start ? end - start : 0);
}

std::int32_t MXmlInsertion::Replace(std::int32_t offset, std::int32_t count)
{
    text.Replace(offset, count, request.text);
    return static_cast<std::int32_t>(request.text.size()) - count;
}
