#include "xml/MXmlNodeScan.h"
#include "xml/MXmlDoctypeScanner.h"
#include "xml/XmlCharacters.h"
#include "xml/XmlRunSearch.h"

namespace
{

using XmlCharacters::EndsTagName;
using XmlCharacters::IsQuote;
using XmlCharacters::IsSpace;

// Every scan of a kind below answers where its node ends, and fills the rest of `scan`.

std::int32_t Unterminated(const MXmlTokenCursor& cursor, const wchar_t* finding, MXmlNodeScan& scan)
{
    scan.type = XmlScanIllFormed;
    scan.finding = finding;
    return cursor.textLength;
}

std::int32_t ScanName(MXmlTokenCursor& cursor, std::int32_t offset)
{
    const wchar_t* at = cursor.text + offset;
    while (!EndsTagName(*at))
        ++at;
    cursor.start = offset;
    cursor.end = static_cast<std::int32_t>(at - cursor.text) - 1;
    return cursor.end + 1;
}

std::int32_t ScanText(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeText;
    offset = FindEitherCharacter(cursor.text, offset, cursor.textLength, L'<', L'>');
    return cursor.text[offset] == L'>' ? offset + 1 : offset;
}

std::int32_t ScanSpace(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    do
        ++offset;
    while (IsSpace(cursor.text[offset]));
    if (cursor.text[offset] != L'<' && cursor.text[offset] != 0)
        return ScanText(cursor, offset, scan);
    scan.type = XmlNodeWhitespace;
    return offset;
}

// What follows an "=" outside quotes: answers the closing quote of a quoted value, the ">" or end
// of text where there is no value, and else the first character of an unquoted value.
const wchar_t* SkipValue(const wchar_t* at)
{
    while (IsSpace(*at))
        ++at;
    if (!IsQuote(*at))
        return at;
    const wchar_t quote = *at;
    do
        ++at;
    while (*at != quote && *at != 0);
    return at;
}

// The ">" that ends the start tag, or the end of text.
const wchar_t* FindTagEnd(const wchar_t* at)
{
    for (;;) {
        const wchar_t c = *at;
        if (c == L'>' || c == 0)
            return at;
        if (c == L'=' && at[-1] != L'=') {
            at = SkipValue(at + 1);
            if (*at == L'>' || *at == 0)
                return at;
        }
        ++at;
    }
}

bool ClosesEmptyElement(const wchar_t* tagEnd, const wchar_t* nameEnd)
{
    if (tagEnd[-1] != L'/')
        return false;
    return tagEnd - 1 == nameEnd || XmlCharacters::MayPrecedeSlash(tagEnd[-2]);
}

std::int32_t ScanStartTag(MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeElement;
    const wchar_t* nameEnd = cursor.text + ScanName(cursor, offset);
    const wchar_t* tagEnd = FindTagEnd(nameEnd);
    if (*tagEnd == 0)
        return Unterminated(cursor, L"Element tag at offset %d unterminated", scan);
    if (ClosesEmptyElement(tagEnd, nameEnd))
        scan.flags = XmlScanEmptyElement;
    return static_cast<std::int32_t>(tagEnd - cursor.text) + 1;
}

std::int32_t ScanEndTag(MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlScanEndTag;
    offset =
        FindEitherCharacter(cursor.text, ScanName(cursor, offset), cursor.textLength, L'>', L'>');
    if (offset == cursor.textLength)
        return Unterminated(cursor, L"Element end tag at offset %d unterminated", scan);
    return offset + 1;
}

// Looks for the ">" with the `length` characters of `ending` before it.
std::int32_t ScanToEnding(const MXmlTokenCursor& cursor, std::int32_t offset, const wchar_t* ending,
                          std::int32_t length, const wchar_t* unterminated, MXmlNodeScan& scan)
{
    for (;; ++offset) {
        offset = FindEitherCharacter(cursor.text, offset, cursor.textLength, L'>', L'>');
        if (offset == cursor.textLength)
            return Unterminated(cursor, unterminated, scan);
        // An ending is never seen in the very first characters of the text, whole or not.
        if (offset > length + 1 &&
            XmlCharacters::Equal(cursor.text + offset - length, ending, length, false))
            return offset + 1;
    }
}

std::int32_t ScanInstruction(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeInstruction;
    return ScanToEnding(cursor, offset, L"?", 1,
                        L"Processing instruction at offset %d unterminated", scan);
}

std::int32_t ScanComment(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeComment;
    return ScanToEnding(cursor, offset, L"--", 2, L"Comment at offset %d unterminated", scan);
}

std::int32_t ScanCdata(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeCdata;
    return ScanToEnding(cursor, offset, L"]]", 2, L"CDATA Section at offset %d unterminated", scan);
}

// A declaration outside a doctype: "<!" followed by "E", "A" or "N".
std::int32_t ScanDeclaration(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    scan.type = XmlNodeDoctype;
    wchar_t openQuote = 0;
    for (; offset < cursor.textLength; ++offset) {
        const wchar_t c = cursor.text[offset];
        if (c == L'>' && openQuote == 0)
            return offset + 1;
        if (c == openQuote)
            openQuote = 0;
        else if (openQuote == 0 && IsQuote(c))
            openQuote = c;
    }
    return Unterminated(cursor, L"Doctype at offset %d unterminated", scan);
}

// `offset` is on the character that makes the node ill-formed. Quoted values hide a ">", but
// nothing hides a "<".
std::int32_t ScanIllFormed(const MXmlTokenCursor& cursor, std::int32_t offset,
                           const wchar_t* finding, MXmlNodeScan& scan)
{
    scan.type = XmlScanIllFormed;
    scan.finding = finding;
    wchar_t openQuote = 0;
    bool awaitsValue = false;
    for (; offset < cursor.textLength; ++offset) {
        const wchar_t c = cursor.text[offset];
        if (c == L'<')
            return offset;
        if (openQuote != 0) {
            if (c == openQuote)
                openQuote = 0;
        } else if (c == L'>') {
            return offset + 1;
        } else if (awaitsValue) {
            openQuote = IsQuote(c) ? c : L'\0';
            awaitsValue = IsSpace(c);
        } else {
            awaitsValue = c == L'=' && cursor.text[offset - 1] != L'=';
        }
    }
    return Unterminated(cursor, L"tag at offset %d unterminated", scan);
}

// `offset` is behind the "<!".
std::int32_t ScanBangTag(const MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    switch (cursor.text[offset]) {
    case L'-':
        if (cursor.text[offset + 1] == L'-')
            return ScanComment(cursor, offset + 2, scan);
        return ScanIllFormed(cursor, offset + 1, L"Incorrect comment tag at offset %d", scan);
    case L'[':
        if (cursor.text[offset + 1] == L'C')
            return ScanCdata(cursor, offset + 2, scan);
        return ScanIllFormed(cursor, offset + 1, L"Incorrect tag at offset %d", scan);
    case L'D':
        return MXmlDoctypeScanner().Run(cursor, offset + 1, scan);
    case L'E':
    case L'A':
    case L'N':
        return ScanDeclaration(cursor, offset + 1, scan);
    default:
        return ScanIllFormed(cursor, offset, L"Incorrect ! tag at offset %d", scan);
    }
}

// `offset` is behind the "<".
std::int32_t ScanTag(MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    const wchar_t c = cursor.text[offset];
    if (XmlCharacters::BeginsName(c))
        return ScanStartTag(cursor, offset, scan);
    if (c == L'/')
        return ScanEndTag(cursor, offset + 1, scan);
    if (c == L'!')
        return ScanBangTag(cursor, offset + 1, scan);
    if (c == L'?')
        return ScanInstruction(cursor, offset + 1, scan);
    return ScanIllFormed(cursor, offset, L"Incorrect tag name character at offset %d", scan);
}

std::int32_t ScanNodeAt(MXmlTokenCursor& cursor, std::int32_t offset, MXmlNodeScan& scan)
{
    const wchar_t c = cursor.text[offset];
    if (c == L'<')
        return ScanTag(cursor, offset + 1, scan);
    if (IsSpace(c))
        return ScanSpace(cursor, offset, scan);
    return ScanText(cursor, offset, scan);
}

} // namespace

std::int32_t ScanXmlNode(MXmlTokenCursor& cursor, MXmlNodeScan& scan)
{
    scan.start = cursor.next;
    scan.flags = 0;
    scan.finding = L"";
    if (cursor.text[cursor.next] == 0) {
        scan.type = 0;
        scan.length = 0;
        return XmlScanEndOfText;
    }
    cursor.next = ScanNodeAt(cursor, scan.start, scan);
    scan.length = cursor.next - scan.start;
    return scan.type;
}

std::wstring MXmlNodeScan::Message() const
{
    std::wstring message = finding;
    const std::size_t place = message.find(L"%d");
    if (place != std::wstring::npos)
        message.replace(place, 2, std::to_wstring(start));
    return message;
}
