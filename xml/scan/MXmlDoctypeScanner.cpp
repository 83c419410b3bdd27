#include "xml/scan/MXmlDoctypeScanner.h"
#include "xml/scan/XmlCharacters.h"

std::int32_t MXmlDoctypeScanner::Run(const MXmlTokenCursor& cursor, std::int32_t offset,
                                     MXmlNodeScan& scan)
{
    for (; offset < cursor.textLength; ++offset) {
        const wchar_t c = cursor.text[offset];
        if (readsName) {
            if (!XmlCharacters::EndsTagName(c))
                continue;
            readsName = false;
            last = 0;
        }
        if (state == Between && c == L'>') {
            scan.type = XmlNodeDoctype;
            return offset + 1;
        }
        if (state != InNode)
            Classify(c);
        if (state == InNode && c == L'<' && type == XmlScanIllFormed) {
            scan.type = XmlScanIllFormed;
            scan.finding = finding;
            return offset;
        }
        if (state == InNode && c == L'>' && openQuote == 0 && Terminates(cursor.text + offset))
            state = Between;
        TrackQuotes(c);
    }
    scan.type = XmlScanIllFormed;
    scan.finding = L"Doctype at offset %d unterminated";
    return offset;
}

void MXmlDoctypeScanner::Classify(wchar_t c)
{
    if (state == BehindLess)
        ClassifyBehindLess(c);
    else if (state == BehindBang)
        ClassifyBehindBang(c);
    else if (state == BehindDash)
        ClassifyBehindDash(c);
    else if (c == L'<')
        state = BehindLess;
}

void MXmlDoctypeScanner::ClassifyBehindLess(wchar_t c)
{
    if (XmlCharacters::BeginsName(c))
        Begin(XmlNodeElement, L"");
    else if (c == L'/')
        Begin(XmlScanEndTag, L"");
    else if (c == L'?')
        Begin(XmlNodeInstruction, L"?");
    else if (c == L'!')
        state = BehindBang;
    else
        BeginIllFormed(L"Incorrect tag name character at offset %d");
    readsName = state == InNode && type != XmlScanIllFormed;
}

void MXmlDoctypeScanner::ClassifyBehindBang(wchar_t c)
{
    if (c == L'-')
        state = BehindDash;
    else if (c == L'E' || c == L'A' || c == L'N')
        Begin(XmlNodeDoctype, L"");
    else
        BeginIllFormed(L"Incorrect ! tag at offset %d");
}

void MXmlDoctypeScanner::ClassifyBehindDash(wchar_t c)
{
    if (c == L'-')
        Begin(XmlNodeComment, L"--");
    else
        BeginIllFormed(L"Incorrect comment tag at offset %d");
}

void MXmlDoctypeScanner::Begin(std::int32_t nodeType, const wchar_t* nodeTerminator)
{
    state = InNode;
    type = nodeType;
    terminator = nodeTerminator;
}

void MXmlDoctypeScanner::BeginIllFormed(const wchar_t* nodeFinding)
{
    Begin(XmlScanIllFormed, L"");
    finding = nodeFinding;
}

bool MXmlDoctypeScanner::Terminates(const wchar_t* at) const
{
    // A doctype begins with three characters, so there is always enough text before `at`.
    if (terminator[0] != 0 && at[-1] != terminator[0])
        return false;
    return terminator[0] == 0 || terminator[1] == 0 || at[-2] == terminator[1];
}

void MXmlDoctypeScanner::TrackQuotes(wchar_t c)
{
    if (type == XmlNodeDoctype)
        TrackDeclaration(c);
    else if (type == XmlNodeElement || type == XmlScanIllFormed)
        TrackValue(c);
}

void MXmlDoctypeScanner::TrackDeclaration(wchar_t c)
{
    if (openQuote == c)
        openQuote = 0;
    else if (openQuote == 0 && XmlCharacters::IsQuote(c))
        openQuote = c;
}

void MXmlDoctypeScanner::TrackValue(wchar_t c)
{
    if (openQuote != 0) {
        if (c == openQuote)
            openQuote = 0;
    } else if (awaitsValue) {
        if (XmlCharacters::IsQuote(c))
            openQuote = c;
        awaitsValue = XmlCharacters::IsSpace(c);
    } else {
        awaitsValue = c == L'=' && last != L'=';
    }
    last = c;
}
