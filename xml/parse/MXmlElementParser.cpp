#include "xml/parse/MXmlElementParser.h"
#include "xml/scan/XmlCharacters.h"
#include "xml/scan/XmlRuns.h"

#include <algorithm>

MXmlElementParser::MXmlElementParser(MXmlElementIndex& elements, std::int32_t startRecord,
                                     MXmlTokenCursor& freshCursor, std::wstring& firstFinding,
                                     std::wstring* copy)
    : index(elements), cursor(freshCursor), finding(firstFinding), target(copy), text(cursor.text),
      textEnd(cursor.TextEnd()), copied(text), map(textEnd),
      open(text, (cursor.flags & XmlDocIgnoreCase) != 0, startRecord),
      startLevel(index[startRecord].Level()), countBefore(index.Count())
{
    finding.clear();
}

void MXmlElementParser::Run()
{
    for (const wchar_t* at = text; at != textEnd;) {
        map.Draw(at);
        CopyUpTo(map.End());
        at = IndexStretch();
        ForeseeRest(at);
    }
    CopyUpTo(textEnd);
    OnEndOfText();
    if (open[0].record == 0)
        index.NoteParsed();
}

// What is to come will be much like what was there so far, of which there must be enough to tell.
void MXmlElementParser::ForeseeRest(const wchar_t* at)
{
    constexpr std::int32_t enough = 1024;
    const std::int64_t added = index.Count() - countBefore;
    if (added >= enough)
        index.Foresee(countBefore + added * (textEnd - text) / (at - text));
}

void MXmlElementParser::CopyUpTo(const wchar_t* end)
{
    if (target && end > copied) {
        target->append(copied, static_cast<std::size_t>(end - copied));
        copied = end;
    }
}

// Answers where the next stretch is to begin.
const wchar_t* MXmlElementParser::IndexStretch()
{
    const wchar_t* const end = map.End();
    for (Brackets at = map.Brackets(); *at < end;) {
        // A ">" in character data leaves no trace.
        const Brackets behind = **at == L'<' ? TakePlainNode(at) : at + 1;
        if (behind != at)
            at = behind;
        else if (MayGoOn(at))
            return *at;
        else
            at = TakeNode(at);
    }
    return std::max(cursor.Next(), end);
}

// Whether the node may be plain, but goes on behind the stretch.
bool MXmlElementParser::MayGoOn(Brackets at) const
{
    return at[1] == map.End() && map.End() != textEnd && at[0] != map.Begin();
}

// Answers the bracket behind what was taken: the same one if this is no plain node.
inline MXmlElementParser::Brackets MXmlElementParser::TakePlainNode(Brackets at)
{
    const wchar_t* const inside = at[0] + 1;
    if (at[1] == map.End() || *at[1] != L'>')
        return at;
    if (XmlCharacters::BeginsName(*inside))
        return TakeStartTag(at);
    if (*inside == L'/')
        return TakeEndTag(at);
    return IsComment(inside, at[1]) ? at + 2 : at;
}

// Most elements contain no others: their end tag comes next.
inline MXmlElementParser::Brackets MXmlElementParser::TakeStartTag(Brackets at)
{
    const wchar_t* const start = at[0];
    const wchar_t* const name = start + 1;
    const Brackets close = FindTagEnd(at);
    if (!close)
        return at;
    Brackets behind = close + 1;
    std::uint32_t tagLengths = static_cast<std::uint32_t>(TagLength(start, *close));
    const wchar_t* const last = *close - 1;
    const bool closesItself = *last == L'/' && ClosesXmlElement(name, last);
    const bool isLeaf = !closesItself && IsEndTag(behind, name);
    if (isLeaf) {
        tagLengths |= static_cast<std::uint32_t>(TagLength(behind[0], behind[1]))
                      << MXmlElementRecord::EndTagShift;
        behind += 2;
    }
    const std::int32_t added =
        AddElement(cursor.OffsetOf(start), TagLength(start, behind[-1]), tagLengths);
    if (!closesItself && !isLeaf)
        open.Push({added, cursor.OffsetOf(name), 0, 0});
    return behind;
}

inline MXmlElementParser::Brackets MXmlElementParser::TakeEndTag(Brackets at)
{
    if (open.Depth() == 0 || !IsEndTag(at, text + open.Top().nameStart))
        return at;
    Close(open.Depth(), cursor.OffsetOf(at[0]), TagLength(at[0], at[1]));
    return at + 2;
}

// Whether what begins with "<" and ends with that ">", the first one, is a whole comment.
inline bool MXmlElementParser::IsComment(const wchar_t* inside, const wchar_t* close)
{
    return inside[0] == L'!' && inside[1] == L'-' && inside[2] == L'-' && close[-1] == L'-' &&
           close[-2] == L'-';
}

// The ">" that ends the start tag, null if it does not end in this stretch.
inline MXmlElementParser::Brackets MXmlElementParser::FindTagEnd(Brackets at) const
{
    Brackets close = at + 1;
    if (!MayBeQuoted(at[0] + 1, *close))
        return close;
    const wchar_t* const end = FindXmlTagEnd(at[0] + 1, textEnd);
    while (*close < end && *close != map.End())
        ++close;
    return *close == map.End() ? nullptr : close;
}

// Whether that ">" may be in a quoted value. The value's opening quote would stand behind "=" or
// white space, with no other of its kind behind it. A tag whose last character is a closing quote,
// and has none of the other kind, has no such value.
inline bool MXmlElementParser::MayBeQuoted(const wchar_t* name, const wchar_t* close) const
{
    if (textEnd - close < 32)
        return true;
    const wchar_t* last = close - 1;
    if (*last == L'/')
        --last;
    while (XmlCharacters::IsSpace(*last))
        --last;
    if (!XmlCharacters::IsQuote(*last))
        return HasCharacter(name, last + 1, L'"') || HasCharacter(name, last + 1, L'\'');
    return last[-1] == L'=' || XmlCharacters::IsSpace(last[-1]) ||
           HasCharacter(name, last, *last == L'"' ? L'\'' : L'"');
}

// Whether a tag stands there that closes the element whose name begins there. It does if all that
// it contains stands behind that too and is followed by what ends a name: whether that is the name,
// or the name and more, both names are the same then.
inline bool MXmlElementParser::IsEndTag(Brackets at, const wchar_t* name) const
{
    const wchar_t* const inside = at[0] + 2;
    if (at[1] == map.End() || inside[-2] != L'<' || inside[-1] != L'/' || *at[1] != L'>')
        return false;
    const std::ptrdiff_t length = at[1] - inside;
    return XmlCharacters::EndsTagName(name[length]) &&
           SameCharacters(name, inside, length, textEnd);
}

// Answers the bracket behind the node.
inline MXmlElementParser::Brackets MXmlElementParser::TakeNode(Brackets at)
{
    cursor.next = cursor.OffsetOf(*at);
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
    const wchar_t* const behind = std::min(cursor.Next(), map.End());
    while (*at < behind)
        ++at;
    return at;
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
    std::int32_t before = parent.lastChild;
    std::uint32_t flagsAndLevel =
        (startLevel + static_cast<std::uint32_t>(open.Depth())) & MXmlElementRecord::LevelMask;
    if (before != 0) {
        Record(before).nextSibling = added;
    } else {
        parent.firstChild = before = added;
        flagsAndLevel |= XmlElementFirstChild;
    }
    parent.lastChild = added;
    Record(added) = {start, length, tagLengths, flagsAndLevel, parent.record, 0, 0, before};
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
    if (!wellFormed)
        Record(open[0].record).Set(XmlElementDocumentIllFormed);
}

void MXmlElementParser::MarkIllFormed()
{
    wellFormed = false;
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
    wellFormed = false;
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
