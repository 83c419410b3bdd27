#include "tests/xml/LiteralParser.h"

#include <cwchar>
#include <cwctype>

namespace
{

bool In(const wchar_t* set, wchar_t c)
{
    return c != 0 && std::wcschr(set, c) != nullptr;
}

const wchar_t* const Space = L" \t\n\r";

std::wstring Number(std::int32_t value)
{
    return std::to_wstring(value);
}

} // namespace

int LiteralParser::ScanNode(Scan& scan)
{
    scan = Scan();
    scan.start = next;
    state = 0;
    terminator = nullptr;
    nameStart = 0;
    last = beforeLast = 0;
    if (next == static_cast<std::int32_t>(text.size()))
        return -2;
    scan.type = -1;
    scan.type = ScanCharacters(scan);
    scan.length = next - scan.start;
    return scan.type;
}

int LiteralParser::ScanCharacters(Scan& scan)
{
    const std::int32_t size = static_cast<std::int32_t>(text.size());
    for (std::int32_t i = next; i < size; ++i) {
        const wchar_t c = text[i];
        if (nameStart != 0) {
            if (!In(L" \t\n\r/>", c))
                continue;
            if (scan.type == 0) {
                tokenStart = nameStart;
                tokenLength = i - nameStart;
            } else {
                scan.text = text.substr(nameStart, i - nameStart);
            }
            nameStart = 0;
            last = beforeLast = 0;
        }
        if (!terminator) {
            if (state == 16 && c == L'<') {
                next = i;
                return 4;
            }
            const int quotes = state & (64 | 128 | 256);
            if ((state & ~quotes) == 32 && c == L'>') {
                next = i + 1;
                return 64;
            }
            Classify(scan, i);
        }
        if (terminator && c == L'<' && (scan.type == 2 || scan.type == -1)) {
            next = i;
            return scan.type;
        }
        if (c == L'>' && (state & (64 | 128)) == 0 && terminator) {
            bool ended = true;
            if (terminatorLength > 1)
                ended = i > terminatorLength &&
                        text.compare(i - (terminatorLength - 1), terminatorLength - 1, terminator,
                                     terminatorLength - 1) == 0;
            else if (scan.type == 1 && last == L'/' &&
                     (beforeLast == 0 || In(L" \t\n\r'\"", beforeLast)))
                scan.emptyElement = true;
            if (ended) {
                terminator = nullptr;
                if ((state & 32) == 0) {
                    next = i + 1;
                    return scan.type;
                }
            }
        }
        TrackQuotes(scan.type, c);
    }
    next = size;
    if (scan.type == 2 || scan.type == 4)
        return scan.type;
    const wchar_t* word = L"tag";
    if ((state & 32) != 0 || scan.type == 64)
        word = L"Doctype";
    else if (scan.type == 1)
        word = L"Element tag";
    else if (scan.type == 0)
        word = L"Element end tag";
    else if (scan.type == 8)
        word = L"CDATA Section";
    else if (scan.type == 16)
        word = L"Processing instruction";
    else if (scan.type == 32)
        word = L"Comment";
    scan.text = std::wstring(word) + L" at offset " + Number(scan.start) + L" unterminated";
    return -1;
}

void LiteralParser::Classify(Scan& scan, std::int32_t i)
{
    const wchar_t c = text[i];
    if (state == 0 || state == 16) {
        if (c == L'<') {
            state = 1;
        } else if (In(Space, c)) {
            state = 16;
            scan.type = 4;
        } else {
            state = 0;
            scan.type = 2;
            Expect(L"<");
        }
    } else if ((state & 1) != 0) {
        state &= ~1;
        ClassifyTag(scan, i);
    } else if ((state & 2) != 0) {
        state &= ~2;
        if (c == L'-') {
            state |= 4;
        } else if (c == L'[' && (state & 32) == 0) {
            state |= 8;
        } else if (c == L'D' && (state & 32) == 0) {
            state |= 32;
        } else if (In(L"EAN", c)) {
            scan.type = 64;
            Expect(L">");
        } else {
            Fail(scan, L"! tag");
        }
    } else if ((state & 4) != 0) {
        state &= ~4;
        if (c == L'-') {
            scan.type = 32;
            Expect(L"-->");
        } else {
            Fail(scan, L"comment tag");
        }
    } else if ((state & 8) != 0) {
        state &= ~8;
        if (c == L'C') {
            scan.type = 8;
            Expect(L"]]>");
        } else {
            Fail(scan, L"tag");
        }
    } else if ((state & 32) != 0 && c == L'<') {
        state |= 1;
    }
}

void LiteralParser::ClassifyTag(Scan& scan, std::int32_t i)
{
    const wchar_t c = text[i];
    if (static_cast<std::uint32_t>(c) > '9' && !In(L";<=>?@[\\]^`", c)) {
        scan.type = 1;
        nameStart = i;
        Expect(L">");
    } else if (c == L'/') {
        scan.type = 0;
        nameStart = i + 1;
        Expect(L">");
    } else if (c == L'!') {
        state |= 2;
    } else if (c == L'?') {
        scan.type = 16;
        nameStart = i + 1;
        Expect(L"?>");
    } else {
        Fail(scan, L"tag name character");
    }
}

void LiteralParser::Expect(const wchar_t* ending)
{
    terminator = ending;
    terminatorLength = static_cast<std::int32_t>(std::wcslen(ending));
}

void LiteralParser::Fail(Scan& scan, const wchar_t* what)
{
    scan.text = std::wstring(L"Incorrect ") + what + L" at offset " + Number(scan.start);
    scan.type = -1;
    Expect(L">");
}

void LiteralParser::TrackQuotes(int type, wchar_t c)
{
    if (type == 64) {
        if (c == L'"' && (state & 64) == 0)
            state ^= 128;
        if (c == L'\'' && (state & 128) == 0)
            state ^= 64;
    }
    if (type != 1 && type != -1)
        return;
    if ((state & (64 | 128)) != 0) {
        if (c == ((state & 64) != 0 ? L'\'' : L'"'))
            state &= ~(64 | 128);
    } else if ((state & 256) != 0) {
        if (c == L'"')
            state ^= 256 | 128;
        else if (c == L'\'')
            state ^= 256 | 64;
        else if (!In(Space, c))
            state &= ~256;
    } else if (c == L'=' && last != L'=') {
        state |= 256;
    }
    beforeLast = last;
    last = c;
}

int LiteralParser::Load()
{
    records.assign(1, MXmlElementRecord());
    errorText.clear();
    if (text.empty()) {
        errorText = L"Empty document";
        return 0;
    }
    const std::int32_t root = ParseElements();
    records[0].length = static_cast<std::int32_t>(text.size());
    if (root == 0)
        errorText = L"No root element";
    else if (records[root].nextSibling != 0)
        errorText = L"Root element has sibling";
    return root != 0 && records[root].nextSibling == 0 &&
           !records[0].Has(XmlElementDocumentIllFormed);
}

std::int32_t LiteralParser::ParseElements()
{
    Scan scan;
    for (;;) {
        const int type = ScanNode(scan);
        if (type == 1)
            StartTag(scan);
        if (type == 0)
            EndTag(scan);
        if (type == -1) {
            Mark();
            if (errorText.empty())
                errorText = scan.text;
        }
        if (type == -2) {
            Dissolve(0, true);
            return first;
        }
    }
}

void LiteralParser::StartTag(const Scan& scan)
{
    const std::int32_t added = static_cast<std::int32_t>(records.size());
    records.push_back(MXmlElementRecord());
    MXmlElementRecord& record = records.back();
    if (first == 0)
        first = added;
    const std::int32_t head = records[current].firstChild;
    if (head != 0) {
        record.previousSibling = records[head].previousSibling;
        records[record.previousSibling].nextSibling = added;
        records[head].previousSibling = added;
    } else {
        records[current].firstChild = added;
        record.previousSibling = added;
        record.Set(XmlElementFirstChild);
    }
    record.parent = current;
    record.SetLevel(static_cast<std::uint32_t>(stack.size()));
    record.start = scan.start;
    record.SetStartTagLength(scan.length);
    if (scan.emptyElement) {
        record.length = scan.length;
        return;
    }
    stack.push_back({added, scan.text});
    current = added;
}

void LiteralParser::EndTag(const Scan& scan)
{
    std::size_t depth = stack.size();
    while (depth != 0 && !Matches(stack[depth - 1].name))
        --depth;
    if (depth == 0) {
        Mark();
        if (errorText.empty())
            errorText = L"No start tag for end tag '" + text.substr(tokenStart, tokenLength) +
                        L"' at offset " + Number(scan.start);
        return;
    }
    MXmlElementRecord& record = records[stack[depth - 1].record];
    record.length = scan.start + scan.length - record.start;
    record.SetEndTagLength(scan.length);
    Dissolve(depth, false);
    current = record.parent;
    stack.pop_back();
}

void LiteralParser::Dissolve(std::size_t depth, bool atEnd)
{
    while (stack.size() > depth) {
        const Open top = stack.back();
        const std::wstring offset = Number(records[top.record].start);
        records[0].Set(XmlElementDocumentIllFormed);
        DissolveTop(top.record);
        if (errorText.empty() && atEnd)
            errorText = L"Element '" + top.name + L"' at offset " + offset + L" not ended";
        if (errorText.empty())
            errorText = L"End tag '" + text.substr(tokenStart, tokenLength) + L"' at offset " +
                        Number(tokenStart - 1) + L" does not match start tag '" + top.name +
                        L"' at offset " + offset;
        stack.pop_back();
    }
}

void LiteralParser::DissolveTop(std::int32_t index)
{
    MXmlElementRecord& record = records[index];
    std::int32_t child = record.firstChild;
    record.SetEndTagLength(0);
    record.Set(XmlElementNoEndTag);
    record.firstChild = 0;
    record.length = record.StartTagLength();
    if (record.Has(XmlElementIllFormed)) {
        record.Clear(XmlElementIllFormed);
        records[record.parent].Set(XmlElementIllFormed);
    }
    std::int32_t before = index;
    for (; child != 0; child = records[child].nextSibling) {
        records[child].parent = record.parent;
        records[child].previousSibling = before;
        records[before].nextSibling = child;
        before = child;
    }
}

void LiteralParser::Mark()
{
    records[0].Set(XmlElementDocumentIllFormed);
    records[current].Set(XmlElementIllFormed);
}

bool LiteralParser::Matches(const std::wstring& name) const
{
    if (name.size() < static_cast<std::size_t>(tokenLength))
        return false;
    for (std::int32_t i = 0; i < tokenLength; ++i) {
        const wchar_t a = text[tokenStart + i];
        const wchar_t b = name[i];
        const bool same =
            a == b || (ignoreCase && a < 128 && b < 128 && std::towlower(a) == std::towlower(b));
        if (!same)
            return false;
    }
    return name.size() == static_cast<std::size_t>(tokenLength) || In(L" =/[]", name[tokenLength]);
}
