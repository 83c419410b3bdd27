#include "xml/parse/MXmlElementParser.h"
#include "xml/scan/XmlCharacters.h"
#include "xml/scan/XmlRuns.h"

#include <algorithm>

MXmlElementParser::MXmlElementParser(MXmlElementIndex& elements, std::int32_t startRecord,
                                     MXmlTokenCursor& freshCursor, std::wstring& firstFinding,
                                     std::wstring* copy)
    : index(elements), cursor(freshCursor), finding(firstFinding), target(copy), text(cursor.text),
      map(cursor.text, cursor.textLength),
      open(cursor.text, (cursor.flags & XmlDocIgnoreCase) != 0, startRecord),
      startLevel(index[startRecord].Level())
{
    finding.clear();
}

void MXmlElementParser::Run()
{
    for (std::int32_t at = 0; at < cursor.textLength;) {
        map.Draw(at);
        CopyUpTo(map.End());
        at = IndexStretch();
    }
    CopyUpTo(cursor.textLength);
    OnEndOfText();
    if (open[0].record == 0)
        index.NoteParsed();
}

void MXmlElementParser::CopyUpTo(std::int32_t offset)
{
    if (target && offset > copied) {
        target->append(text + copied, static_cast<std::size_t>(offset - copied));
        copied = offset;
    }
}

// Answers where the next stretch is to begin.
std::int32_t MXmlElementParser::IndexStretch()
{
    const std::int32_t end = map.End();
    for (const std::int32_t* at = map.Brackets(); *at < end;) {
        // A ">" in character data leaves no trace.
        const std::int32_t taken = text[*at] == L'<' ? TakePlainTag(at) : 1;
        at += taken;
        if (taken != 0)
            continue;
        if (MayGoOn(at))
            return *at;
        TakeNode(*at);
        while (*at < cursor.next && *at < end)
            ++at;
    }
    return std::max(cursor.next, end);
}

// Whether the tag may be plain, but goes on behind the stretch.
bool MXmlElementParser::MayGoOn(const std::int32_t* brackets) const
{
    return brackets[1] == map.End() && map.End() != cursor.textLength && brackets[0] != map.Begin();
}

// Answers how many brackets were taken, 0 if this is no plain tag.
inline std::int32_t MXmlElementParser::TakePlainTag(const std::int32_t* brackets)
{
    const std::int32_t start = brackets[0];
    const std::int32_t close = brackets[1];
    if (close == map.End() || text[close] != L'>')
        return 0;
    if (text[start + 1] != L'/')
        return TakeStartTag(brackets);
    if (open.Depth() == 0 || !IsEndTag(brackets, open.Top().nameStart))
        return 0;
    Close(open.Depth(), start, close + 1 - start);
    return 2;
}

// Most elements contain no others: their end tag comes next.
inline std::int32_t MXmlElementParser::TakeStartTag(const std::int32_t* brackets)
{
    const std::int32_t start = brackets[0];
    const std::int32_t close = brackets[1];
    const bool slash = text[close - 1] == L'/';
    if (!XmlCharacters::BeginsName(text[start + 1]) || MayBeQuoted(start, close - slash))
        return 0;
    const std::int32_t length = close + 1 - start;
    const std::uint32_t tagLengths = static_cast<std::uint32_t>(length);
    if (slash && ClosesItself(start, close)) {
        AddElement(start, length, tagLengths);
        return 2;
    }
    if (brackets[3] != map.End() && text[brackets[2]] == L'<' && text[brackets[2] + 1] == L'/' &&
        text[brackets[3]] == L'>' && IsEndTag(brackets + 2, start + 1)) {
        const std::int32_t endTagLength = brackets[3] + 1 - brackets[2];
        AddElement(start, brackets[3] + 1 - start,
                   tagLengths | static_cast<std::uint32_t>(endTagLength)
                                    << MXmlElementRecord::EndTagShift);
        return 4;
    }
    open.Push({AddElement(start, length, tagLengths), start + 1, 0, 0});
    return 2;
}

// Whether the first ">" of a start tag, which stands at or right behind `end`, may be in a quoted
// value. The value's opening quote would stand behind "=" or white space, with no other of its kind
// behind it. A tag whose last character is a closing quote, and has none of the other kind, has no
// such value.
inline bool MXmlElementParser::MayBeQuoted(std::int32_t start, std::int32_t end) const
{
    if (cursor.textLength - end < 32)
        return true;
    const wchar_t* const front = text + start + 1;
    const wchar_t* last = text + end - 1;
    while (XmlCharacters::IsSpace(*last))
        --last;
    if (XmlCharacters::IsQuote(*last) && last[-1] != L'=' && !XmlCharacters::IsSpace(last[-1]))
        return HasCharacter(front, last, *last == L'"' ? L'\'' : L'"');
    return HasCharacter(front, last + 1, L'"') || HasCharacter(front, last + 1, L'\'');
}

// Whether the tag from "</" to ">" closes the element whose name begins there. It does if all that
// it contains stands there too and is followed by what ends a name: whether that is the name, or
// the name and more, both names are the same then.
inline bool MXmlElementParser::IsEndTag(const std::int32_t* brackets, std::int32_t nameStart) const
{
    const std::int32_t inside = brackets[0] + 2;
    const std::int32_t length = brackets[1] - inside;
    return XmlCharacters::EndsTagName(text[nameStart + length]) &&
           SameCharacters(text + nameStart, text + inside, length, cursor.TextEnd());
}

// As the scanner decides it of a tag with a "/" in front of its ">": that stands behind the name,
// or behind what may precede it.
bool MXmlElementParser::ClosesItself(std::int32_t start, std::int32_t close) const
{
    if (XmlCharacters::MayPrecedeSlash(text[close - 2]))
        return true;
    std::int32_t nameEnd = start + 1;
    while (!XmlCharacters::EndsTagName(text[nameEnd]))
        ++nameEnd;
    return nameEnd == close - 1;
}

void MXmlElementParser::TakeNode(std::int32_t start)
{
    cursor.next = start;
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
    default:
        break;
    }
}

void MXmlElementParser::OnStartTag()
{
    const std::int32_t added =
        AddElement(scan.start, scan.length,
                   static_cast<std::uint32_t>(scan.length) & MXmlElementRecord::StartTagMask);
    if (Record(added).StartTagLength() != scan.length)
        index.LoseOrder();
    if ((scan.flags & XmlScanEmptyElement) == 0)
        open.Push({added, cursor.start, 0, 0});
}

// Under the innermost open element.
inline std::int32_t MXmlElementParser::AddElement(std::int32_t start, std::int32_t length,
                                                  std::uint32_t tagLengths)
{
    const std::int32_t added = index.TakeRecord();
    MXmlOpenElement& parent = open.Top();
    const bool isFirst = parent.firstChild == 0;
    const std::uint32_t level =
        (startLevel + static_cast<std::uint32_t>(open.Depth())) & MXmlElementRecord::LevelMask;
    if (isFirst)
        parent.firstChild = added;
    else
        Record(parent.lastChild).nextSibling = added;
    Record(added) = {
        start,         length, tagLengths, isFirst ? level | XmlElementFirstChild : level,
        parent.record, 0,      0,          isFirst ? added : parent.lastChild};
    parent.lastChild = added;
    return added;
}

void MXmlElementParser::OnEndTag()
{
    const std::int32_t depth = open.FindNewest(cursor.Token(), cursor.TokenLength());
    if (depth != 0) {
        if (depth != open.Depth())
            Dissolve(depth);
        Close(depth, scan.start, scan.length);
        return;
    }
    MarkIllFormed();
    if (!HasFinding())
        finding = L"No start tag for end tag '" + TokenName() + L"' at offset " +
                  std::to_wstring(scan.start);
}

// By the end tag that stands there.
void MXmlElementParser::Close(std::int32_t depth, std::int32_t start, std::int32_t length)
{
    MXmlOpenElement& element = open[depth];
    MXmlElementRecord& record = Record(element.record);
    record.length = start + length - record.start;
    record.SetEndTagLength(length);
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
    index.LoseOrder();
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
        finding = L"Element '" + open.Name(open.Depth()) + L"' at offset " + offset + L" not ended";
    else
        finding = L"End tag '" + TokenName() + L"' at offset " + std::to_wstring(cursor.start - 1) +
                  L" does not match start tag '" + open.Name(open.Depth()) + L"' at offset " +
                  offset;
}

std::wstring MXmlElementParser::TokenName() const
{
    return std::wstring(cursor.Token(), static_cast<std::size_t>(cursor.TokenLength()));
}
