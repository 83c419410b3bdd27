#include "xml/parse/MXmlElementParser.h"
#include "xml/scan/XmlCharacters.h"
#include "xml/scan/XmlRunSearch.h"

MXmlElementParser::MXmlElementParser(MXmlElementIndex& elements, std::int32_t startRecord,
                                     MXmlTokenCursor& freshCursor, std::wstring& firstFinding)
    : index(elements), cursor(freshCursor), finding(firstFinding),
      open(cursor.text, (cursor.flags & XmlDocIgnoreCase) != 0, startRecord),
      startLevel(index[startRecord].Level())
{
    finding.clear();
}

std::int32_t MXmlElementParser::Run()
{
    for (;;) {
        // Text leaves no trace, so its nodes are passed over in one go.
        cursor.next = cursor.OffsetOf(FindCharacter<L'<'>(cursor.Next(), cursor.TextEnd()));
        if (ClosesTop()) {
            Close(open.Depth());
            continue;
        }
        switch (ScanXmlNode(cursor, scan)) {
        case XmlNodeElement:
            OnStartTag();
            break;
        case XmlScanEndTag:
            OnEndTag();
            break;
        case XmlScanIllFormed:
            OnIllFormedNode();
            break;
        case XmlScanEndOfText:
            OnEndOfText();
            return open[0].firstChild;
        default:
            break;
        }
    }
}

// Whether an end tag comes that spells the innermost open element's name and nothing more, as most
// do. It is then scanned.
bool MXmlElementParser::ClosesTop()
{
    const wchar_t* at = cursor.Next();
    if (open.Depth() == 0 || *at == 0 || at[1] != L'/')
        return false;
    const MXmlOpenElement& top = open.Top();
    if (!XmlCharacters::Equal(cursor.text + top.nameStart, at + 2, top.nameLength, false) ||
        at[2 + top.nameLength] != L'>')
        return false;
    scan.start = cursor.next;
    scan.length = top.nameLength + 3;
    cursor.next = scan.End();
    return true;
}

void MXmlElementParser::OnStartTag()
{
    const std::int32_t added = index.TakeRecord();
    MXmlOpenElement& parent = open.Top();
    MXmlElementRecord& record = Record(added);
    record.start = scan.start;
    record.length = scan.length;
    record.tagLengths = static_cast<std::uint32_t>(scan.length) & MXmlElementRecord::StartTagMask;
    record.flagsAndLevel =
        (startLevel + static_cast<std::uint32_t>(open.Depth())) & MXmlElementRecord::LevelMask;
    record.parent = parent.record;
    record.firstChild = 0;
    record.nextSibling = 0;
    if (parent.firstChild == 0) {
        record.Set(XmlElementFirstChild);
        record.previousSibling = added;
        parent.firstChild = added;
    } else {
        record.previousSibling = parent.lastChild;
        Record(parent.lastChild).nextSibling = added;
    }
    parent.lastChild = added;
    if ((scan.flags & XmlScanEmptyElement) == 0)
        open.Push({added, cursor.start, cursor.TokenLength(), 0, 0});
}

void MXmlElementParser::OnEndTag()
{
    const std::int32_t depth = open.FindNewest(cursor.Token(), cursor.TokenLength());
    if (depth != 0) {
        if (depth != open.Depth())
            Dissolve(depth);
        Close(depth);
        return;
    }
    MarkIllFormed();
    if (!HasFinding())
        finding = L"No start tag for end tag '" + TokenName() + L"' at offset " +
                  std::to_wstring(scan.start);
}

void MXmlElementParser::Close(std::int32_t depth)
{
    MXmlOpenElement& element = open[depth];
    MXmlElementRecord& record = Record(element.record);
    record.length = scan.End() - record.start;
    record.SetEndTagLength(scan.length);
    KeepChildren(element);
    open.PopTo(depth - 1);
}

// The first child's link to the last one is written once, and not moved on with each child.
void MXmlElementParser::KeepChildren(MXmlOpenElement& element)
{
    if (element.firstChild == 0)
        return;
    Record(element.record).firstChild = element.firstChild;
    Record(element.firstChild).previousSibling = element.lastChild;
}

void MXmlElementParser::OnIllFormedNode()
{
    MarkIllFormed();
    if (!HasFinding())
        finding = scan.Message();
}

void MXmlElementParser::OnEndOfText()
{
    if (open.Depth() != 0)
        Dissolve(0);
    KeepChildren(open[0]);
}

void MXmlElementParser::MarkIllFormed()
{
    Record(open[0].record).Set(XmlElementDocumentIllFormed);
    Record(open.Top().record).Set(XmlElementIllFormed);
}

// The elements above `depth` end with their start tags, and what seemed to be their children comes
// behind them, all in one chain under the element at `depth`. Each open element is the last child
// of the one before it, so one walk outward in makes the chain in the order of the text. The last
// child that `depth` is known to have stays the outermost dissolved element.
void MXmlElementParser::Dissolve(std::int32_t depth)
{
    if (!HasFinding())
        NoteUnclosed(depth);
    Record(open[0].record).Set(XmlElementDocumentIllFormed);
    MXmlElementRecord& parent = Record(open[depth].record);
    std::int32_t last = open[depth + 1].record;
    for (std::int32_t i = depth + 1; i <= open.Depth(); ++i) {
        MXmlElementRecord& dissolved = Record(open[i].record);
        if (dissolved.Has(XmlElementIllFormed))
            parent.Set(XmlElementIllFormed);
        DissolveTag(dissolved);
        for (std::int32_t child = open[i].firstChild; child != 0;) {
            MXmlElementRecord& moved = Record(child);
            moved.parent = open[depth].record;
            moved.previousSibling = last;
            Record(last).nextSibling = child;
            last = child;
            child = moved.nextSibling;
        }
    }
}

void MXmlElementParser::DissolveTag(MXmlElementRecord& record)
{
    record.Clear(XmlElementIllFormed);
    record.Set(XmlElementNoEndTag);
    record.SetEndTagLength(0);
    record.length = record.StartTagLength();
}

void MXmlElementParser::NoteUnclosed(std::int32_t depth)
{
    const MXmlOpenElement& top = open.Top();
    const std::wstring offset = std::to_wstring(Record(top.record).start);
    if (depth == 0)
        finding = L"Element '" + OpenName(top) + L"' at offset " + offset + L" not ended";
    else
        finding = L"End tag '" + TokenName() + L"' at offset " + std::to_wstring(cursor.start - 1) +
                  L" does not match start tag '" + OpenName(top) + L"' at offset " + offset;
}

std::wstring MXmlElementParser::TokenName() const
{
    return std::wstring(cursor.Token(), static_cast<std::size_t>(cursor.TokenLength()));
}

std::wstring MXmlElementParser::OpenName(const MXmlOpenElement& element) const
{
    return std::wstring(cursor.text + element.nameStart,
                        static_cast<std::size_t>(element.nameLength));
}
