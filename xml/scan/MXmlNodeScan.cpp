#include "xml/scan/MXmlNodeScan.h"
#include "xml/scan/MXmlDoctypeScanner.h"
#include "xml/scan/XmlCharacters.h"
#include "xml/scan/XmlRuns.h"

namespace
{

using XmlCharacters::IsQuote;
using XmlCharacters::IsSpace;

// Every scan of a kind below begins at `at`, answers where its node ends, and fills the rest of
// `scan`.

const wchar_t* Unterminated(const MXmlTokenCursor& cursor, const wchar_t* finding,
                            MXmlNodeScan& scan)
{
    scan.type = XmlScanIllFormed;
    scan.finding = finding;
    return cursor.TextEnd();
}

const wchar_t* FindNameEnd(const wchar_t* at)
{
    while (!XmlCharacters::EndsTagName(*at))
        ++at;
    return at;
}

// Makes the name the token of the cursor, and answers its end.
const wchar_t* ScanName(MXmlTokenCursor& cursor, const wchar_t* at)
{
    cursor.start = cursor.OffsetOf(at);
    at = FindNameEnd(at);
    cursor.end = cursor.OffsetOf(at) - 1;
    return at;
}

const wchar_t* ScanText(const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeText;
    using XmlCharacters::Bit;
    while (!XmlCharacters::In<Bit('<') | Bit('>') | Bit(0)>(*at))
        ++at;
    return *at == L'>' ? at + 1 : at;
}

const wchar_t* ScanSpace(const wchar_t* at, MXmlNodeScan& scan)
{
    while (IsSpace(*at))
        ++at;
    if (*at != L'<' && *at != 0)
        return ScanText(at, scan);
    scan.type = XmlNodeWhitespace;
    return at;
}

// What follows an "=" outside quotes: answers the closing quote of a quoted value, the ">" or end
// of text where there is no value, and else the first character of an unquoted value.
const wchar_t* SkipValue(const wchar_t* at, const wchar_t* end)
{
    while (IsSpace(*at))
        ++at;
    if (*at == L'"')
        return FindCharacter<L'"'>(at + 1, end);
    if (*at == L'\'')
        return FindCharacter<L'\''>(at + 1, end);
    return at;
}

// The ">" that ends the start tag, or the end of text. Begins behind the name.
const wchar_t* FindTagEnd(const wchar_t* at, const wchar_t* end)
{
    using XmlCharacters::Bit;
    for (;; ++at) {
        while (!XmlCharacters::In<Bit('=') | Bit('>') | Bit(0)>(*at))
            ++at;
        if (*at == L'=' && at[-1] != L'=')
            at = SkipValue(at + 1, end);
        if (*at == L'>' || *at == 0)
            return at;
    }
}

const wchar_t* ScanStartTag(MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeElement;
    const wchar_t* tagEnd = FindTagEnd(ScanName(cursor, at), cursor.TextEnd());
    if (*tagEnd == 0)
        return Unterminated(cursor, L"Element tag at offset %d unterminated", scan);
    if (tagEnd[-1] == L'/' && ClosesXmlElement(at, tagEnd - 1))
        scan.flags = XmlScanEmptyElement;
    return tagEnd + 1;
}

const wchar_t* ScanEndTag(MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlScanEndTag;
    at = FindCharacter<L'>'>(ScanName(cursor, at), cursor.TextEnd());
    if (*at == 0)
        return Unterminated(cursor, L"Element end tag at offset %d unterminated", scan);
    return at + 1;
}

// Looks for the ">" with the `length` characters of `ending` before it.
const wchar_t* ScanToEnding(const MXmlTokenCursor& cursor, const wchar_t* at, const wchar_t* ending,
                            std::int32_t length, const wchar_t* unterminated, MXmlNodeScan& scan)
{
    for (;; ++at) {
        at = FindCharacter<L'>'>(at, cursor.TextEnd());
        if (*at == 0)
            return Unterminated(cursor, unterminated, scan);
        // An ending is never seen in the very first characters of the text, whole or not.
        if (cursor.OffsetOf(at) > length + 1 &&
            XmlCharacters::Equal(at - length, ending, length, false))
            return at + 1;
    }
}

const wchar_t* ScanInstruction(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeInstruction;
    return ScanToEnding(cursor, at, L"?", 1, L"Processing instruction at offset %d unterminated",
                        scan);
}

const wchar_t* ScanComment(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeComment;
    return ScanToEnding(cursor, at, L"--", 2, L"Comment at offset %d unterminated", scan);
}

const wchar_t* ScanCdata(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeCdata;
    return ScanToEnding(cursor, at, L"]]", 2, L"CDATA Section at offset %d unterminated", scan);
}

const wchar_t* ScanDoctype(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    return cursor.text + MXmlDoctypeScanner().Run(cursor, cursor.OffsetOf(at), scan);
}

// A declaration outside a doctype: "<!" followed by "E", "A" or "N".
const wchar_t* ScanDeclaration(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    scan.type = XmlNodeDoctype;
    wchar_t openQuote = 0;
    for (; *at != 0; ++at) {
        if (*at == L'>' && openQuote == 0)
            return at + 1;
        if (*at == openQuote)
            openQuote = 0;
        else if (openQuote == 0 && IsQuote(*at))
            openQuote = *at;
    }
    return Unterminated(cursor, L"Doctype at offset %d unterminated", scan);
}

// Begins on the character that makes the node ill-formed. Quoted values hide a ">", but nothing
// hides a "<".
const wchar_t* ScanIllFormed(const MXmlTokenCursor& cursor, const wchar_t* at,
                             const wchar_t* finding, MXmlNodeScan& scan)
{
    scan.type = XmlScanIllFormed;
    scan.finding = finding;
    wchar_t openQuote = 0;
    bool awaitsValue = false;
    for (; *at != 0; ++at) {
        const wchar_t c = *at;
        if (c == L'<')
            return at;
        if (openQuote != 0) {
            if (c == openQuote)
                openQuote = 0;
        } else if (c == L'>') {
            return at + 1;
        } else if (awaitsValue) {
            openQuote = IsQuote(c) ? c : L'\0';
            awaitsValue = IsSpace(c);
        } else {
            awaitsValue = c == L'=' && at[-1] != L'=';
        }
    }
    return Unterminated(cursor, L"tag at offset %d unterminated", scan);
}

// Begins behind the "<!".
const wchar_t* ScanBangTag(const MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    switch (*at) {
    case L'-':
        if (at[1] == L'-')
            return ScanComment(cursor, at + 2, scan);
        return ScanIllFormed(cursor, at + 1, L"Incorrect comment tag at offset %d", scan);
    case L'[':
        if (at[1] == L'C')
            return ScanCdata(cursor, at + 2, scan);
        return ScanIllFormed(cursor, at + 1, L"Incorrect tag at offset %d", scan);
    case L'D':
        return ScanDoctype(cursor, at + 1, scan);
    case L'E':
    case L'A':
    case L'N':
        return ScanDeclaration(cursor, at + 1, scan);
    default:
        return ScanIllFormed(cursor, at, L"Incorrect ! tag at offset %d", scan);
    }
}

// Begins behind the "<".
const wchar_t* ScanTag(MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    if (XmlCharacters::BeginsName(*at))
        return ScanStartTag(cursor, at, scan);
    if (*at == L'/')
        return ScanEndTag(cursor, at + 1, scan);
    if (*at == L'!')
        return ScanBangTag(cursor, at + 1, scan);
    if (*at == L'?')
        return ScanInstruction(cursor, at + 1, scan);
    return ScanIllFormed(cursor, at, L"Incorrect tag name character at offset %d", scan);
}

const wchar_t* ScanNode(MXmlTokenCursor& cursor, const wchar_t* at, MXmlNodeScan& scan)
{
    if (*at == L'<')
        return ScanTag(cursor, at + 1, scan);
    if (IsSpace(*at))
        return ScanSpace(at, scan);
    return ScanText(at, scan);
}

} // namespace

std::int32_t ScanXmlNode(MXmlTokenCursor& cursor, MXmlNodeScan& scan)
{
    const wchar_t* at = cursor.Next();
    scan.start = cursor.next;
    scan.flags = 0;
    cursor.next = cursor.OffsetOf(ScanNode(cursor, at, scan));
    scan.length = cursor.next - scan.start;
    return scan.type;
}

const wchar_t* FindXmlTagEnd(const wchar_t* name, const wchar_t* textEnd)
{
    return FindTagEnd(FindNameEnd(name), textEnd);
}

bool ClosesXmlElement(const wchar_t* name, const wchar_t* slash)
{
    return XmlCharacters::MayPrecedeSlash(slash[-1]) || FindNameEnd(name) == slash;
}

std::wstring MXmlNodeScan::Message() const
{
    std::wstring message = finding;
    return message.replace(message.find(L"%d"), 2, std::to_wstring(start));
}
