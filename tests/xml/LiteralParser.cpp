#include "tests/xml/LiteralParser.h"

#include <cwchar>
#include <map>

namespace
{

const wchar_t* const Space = L" \t\n\r";

bool In(const wchar_t* set, wchar_t c)
{
    return c != 0 && std::wcschr(set, c) != nullptr;
}

std::wstring AtOffset(std::int32_t offset)
{
    return L" at offset " + std::to_wstring(offset);
}

struct Node {
    int type;
    std::int32_t start;
    std::int32_t length;
    bool emptyElement;
    // The name of a start or end tag, or the finding.
    std::wstring text;
};

class NodeScanner
{
public:
    NodeScanner(const std::wstring& source, std::int32_t start)
        : text(source), scan{-1, start, 0, false, std::wstring()}
    {
    }

    Node Run()
    {
        const std::int32_t size = static_cast<std::int32_t>(text.size());
        if (scan.start == size)
            return End(-2, size);
        for (std::int32_t i = scan.start; i < size; ++i) {
            const wchar_t c = text[i];
            if (nameStart != 0) {
                if (!In(L" \t\n\r/>", c))
                    continue;
                scan.text = text.substr(nameStart, i - nameStart);
                nameStart = 0;
                last = beforeLast = 0;
            }
            if (terminator.empty()) {
                if (state == 16 && c == L'<')
                    return End(4, i);
                if ((state & ~(64 | 128 | 256)) == 32 && c == L'>')
                    return End(64, i + 1);
                Classify(i);
            }
            if (c == L'<' && !terminator.empty() && (scan.type == 2 || scan.type == -1))
                return End(scan.type, i);
            if (c == L'>' && (state & (64 | 128)) == 0 && Terminates(i)) {
                terminator.clear();
                if (scan.type == 1 && last == L'/')
                    scan.emptyElement = beforeLast == 0 || In(L" \t\n\r'\"", beforeLast);
                if ((state & 32) == 0)
                    return End(scan.type, i + 1);
            }
            TrackQuotes(c);
        }
        if (scan.type == 2 || scan.type == 4)
            return End(scan.type, size);
        const std::map<int, std::wstring> words = {
            {-1, L"tag"},          {0, L"Element end tag"},         {1, L"Element tag"},
            {8, L"CDATA Section"}, {16, L"Processing instruction"}, {32, L"Comment"},
            {64, L"Doctype"}};
        const int kind = (state & 32) != 0 ? 64 : scan.type;
        scan.text = words.at(kind) + AtOffset(scan.start) + L" unterminated";
        return End(-1, size);
    }

private:
    Node End(int type, std::int32_t end)
    {
        scan.type = type;
        scan.length = end - scan.start;
        return scan;
    }

    // The bits of the state: 1 just behind "<", 2 behind "<!", 4 behind "<!-", 8 behind "<![", 16
    // in leading white space, 32 in a doctype, 64 in single quotes, 128 in double quotes, 256
    // behind "=", before the value.
    void Classify(std::int32_t i)
    {
        const wchar_t c = text[i];
        if (state == 0 || state == 16) {
            state = c == L'<' ? 1 : In(Space, c) ? 16 : 0;
            if (state == 16)
                scan.type = 4;
            if (state == 0)
                Expect(2, L"<");
        } else if ((state & 1) != 0) {
            state &= ~1;
            ClassifyTag(i);
        } else if ((state & 2) != 0) {
            state &= ~2;
            if (c == L'-')
                state |= 4;
            else if (c == L'[' && (state & 32) == 0)
                state |= 8;
            else if (c == L'D' && (state & 32) == 0)
                state |= 32;
            else if (In(L"EAN", c))
                Expect(64, L">");
            else
                Fail(L"! tag");
        } else if ((state & 4) != 0) {
            state &= ~4;
            if (c == L'-')
                Expect(32, L"-->");
            else
                Fail(L"comment tag");
        } else if ((state & 8) != 0) {
            state &= ~8;
            if (c == L'C')
                Expect(8, L"]]>");
            else
                Fail(L"tag");
        } else if ((state & 32) != 0 && c == L'<') {
            state |= 1;
        }
    }

    void ClassifyTag(std::int32_t i)
    {
        const wchar_t c = text[i];
        if (static_cast<std::uint32_t>(c) > '9' && !In(L";<=>?@[\\]^`", c)) {
            Expect(1, L">");
            nameStart = i;
        } else if (c == L'/') {
            Expect(0, L">");
            nameStart = i + 1;
        } else if (c == L'!') {
            state |= 2;
        } else if (c == L'?') {
            Expect(16, L"?>");
            nameStart = i + 1;
        } else {
            Fail(L"tag name character");
        }
    }

    void Expect(int type, const wchar_t* ending)
    {
        scan.type = type;
        terminator = ending;
    }

    void Fail(const wchar_t* what)
    {
        Expect(-1, L">");
        scan.text = std::wstring(L"Incorrect ") + what + AtOffset(scan.start);
    }

    bool Terminates(std::int32_t i) const
    {
        const std::int32_t length = static_cast<std::int32_t>(terminator.size());
        return length == 1 ||
               (length > 1 && i > length &&
                text.compare(i - (length - 1), length - 1, terminator, 0, length - 1) == 0);
    }

    void TrackQuotes(wchar_t c)
    {
        if (scan.type == 64 && c == L'"' && (state & 64) == 0)
            state ^= 128;
        if (scan.type == 64 && c == L'\'' && (state & 128) == 0)
            state ^= 64;
        if (scan.type != 1 && scan.type != -1)
            return;
        if ((state & (64 | 128)) != 0) {
            if (c == ((state & 64) != 0 ? L'\'' : L'"'))
                state &= ~(64 | 128);
        } else if ((state & 256) != 0) {
            if (!In(Space, c))
                state &= ~256;
            if (c == L'"')
                state |= 128;
            if (c == L'\'')
                state |= 64;
        } else if (c == L'=' && last != L'=') {
            state |= 256;
        }
        beforeLast = last;
        last = c;
    }

    const std::wstring& text;
    Node scan;
    int state = 0;
    std::wstring terminator;
    std::int32_t nameStart = 0;
    wchar_t last = 0;
    wchar_t beforeLast = 0;
};

class LiteralParser
{
public:
    LiteralParser(const std::wstring& source, bool ignoresCase)
        : text(source), ignoreCase(ignoresCase)
    {
    }

    LiteralIndex Load()
    {
        records.assign(1, MXmlElementRecord());
        ParseElements();
        records[0].length = static_cast<std::int32_t>(text.size());
        const std::int32_t root = records[0].firstChild;
        const bool alone = records[root].nextSibling == 0;
        if (text.empty())
            index.errorText = L"Empty document";
        else if (root == 0)
            index.errorText = L"No root element";
        else if (!alone)
            index.errorText = L"Root element has sibling";
        index.wellFormed = root != 0 && alone && !records[0].Has(XmlElementDocumentIllFormed);
        return index;
    }

private:
    struct Open {
        std::int32_t record;
        std::wstring name;
    };

    void ParseElements()
    {
        do {
            scan = NodeScanner(text, scan.start + scan.length).Run();
            if (scan.type == 1)
                StartTag();
            if (scan.type == 0)
                EndTag();
            if (scan.type == -1)
                Mark(scan.text);
        } while (scan.type != -2);
        Dissolve(0);
    }

    void StartTag()
    {
        const std::int32_t added = static_cast<std::int32_t>(records.size());
        records.push_back(MXmlElementRecord());
        MXmlElementRecord& record = records.back();
        const std::int32_t first = records[current].firstChild;
        if (first != 0) {
            record.previousSibling = records[first].previousSibling;
            records[record.previousSibling].nextSibling = added;
            records[first].previousSibling = added;
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

    void EndTag()
    {
        std::size_t depth = stack.size();
        while (depth != 0 && !Matches(stack[depth - 1].name))
            --depth;
        if (depth == 0) {
            Mark(L"No start tag for end tag '" + scan.text + L"'" + AtOffset(scan.start));
            return;
        }
        MXmlElementRecord& record = records[stack[depth - 1].record];
        record.length = scan.start + scan.length - record.start;
        record.SetEndTagLength(scan.length);
        Dissolve(depth);
        current = record.parent;
        stack.pop_back();
    }

    // The open elements above that depth never got an end tag.
    void Dissolve(std::size_t depth)
    {
        for (; stack.size() > depth; stack.pop_back()) {
            const Open& top = stack.back();
            const std::wstring where = L"'" + top.name + L"'" + AtOffset(records[top.record].start);
            records[0].Set(XmlElementDocumentIllFormed);
            DissolveElement(top.record);
            if (scan.type == -2)
                Note(L"Element " + where + L" not ended");
            else
                Note(L"End tag '" + scan.text + L"'" + AtOffset(scan.start + 1) +
                     L" does not match start tag " + where);
        }
    }

    void DissolveElement(std::int32_t dissolved)
    {
        MXmlElementRecord& record = records[dissolved];
        std::int32_t child = record.firstChild;
        record.SetEndTagLength(0);
        record.Set(XmlElementNoEndTag);
        record.firstChild = 0;
        record.length = record.StartTagLength();
        if (record.Has(XmlElementIllFormed)) {
            record.Clear(XmlElementIllFormed);
            records[record.parent].Set(XmlElementIllFormed);
        }
        std::int32_t before = dissolved;
        for (; child != 0; child = records[child].nextSibling) {
            records[child].parent = record.parent;
            records[child].previousSibling = before;
            records[before].nextSibling = child;
            before = child;
        }
    }

    void Mark(const std::wstring& finding)
    {
        records[0].Set(XmlElementDocumentIllFormed);
        records[current].Set(XmlElementIllFormed);
        Note(finding);
    }

    void Note(const std::wstring& finding)
    {
        if (index.errorText.empty())
            index.errorText = finding;
    }

    bool Matches(const std::wstring& name) const
    {
        const std::size_t length = scan.text.size();
        return Folded(name.substr(0, length)) == Folded(scan.text) &&
               (name.size() == length || In(L" =/[]", name[length]));
    }

    std::wstring Folded(std::wstring name) const
    {
        for (wchar_t& c : name)
            c = ignoreCase && c >= L'A' && c <= L'Z' ? c + (L'a' - L'A') : c;
        return name;
    }

    const std::wstring& text;
    bool ignoreCase;
    Node scan = Node();
    LiteralIndex index;
    std::vector<MXmlElementRecord>& records = index.records;
    std::vector<Open> stack;
    std::int32_t current = 0;
};

} // namespace

LiteralIndex ParseLiterally(const std::wstring& text, bool ignoreCase)
{
    return LiteralParser(text, ignoreCase).Load();
}
