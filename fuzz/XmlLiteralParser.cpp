#include "fuzz/XmlLiteralParser.h"

#include <cwchar>
#include <map>

namespace
{

struct Kind {
    const wchar_t* opening;
    int type;
    const wchar_t* ending;
    const wchar_t* word;
};

const Kind kinds[] = {
    {L"</", 0, L">", L"Element end tag"}, {L"<?", 16, L"?>", L"Processing instruction"},
    {L"<!--", 32, L"-->", L"Comment"},    {L"<![C", 8, L"]]>", L"CDATA Section"},
    {L"<!E", 64, L">", L"Doctype"},       {L"<!A", 64, L">", L"Doctype"},
    {L"<!N", 64, L">", L"Doctype"},
};
const Kind startTag = {L"<a", 1, L">", L"Element tag"};
const Kind whiteSpace = {L"", 4, L"", L""};
const Kind characters = {L"", 2, L"<", L""};
const Kind illFormed = {L"", -1, L">", L"tag"};

// The beginnings of openings, and what is incorrect where none goes on so.
const std::map<std::wstring, const wchar_t*> beginnings = {
    {L"<", L"tag name character"}, {L"<!", L"! tag"}, {L"<!-", L"comment tag"}, {L"<![", L"tag"}};

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
    int type = -1;
    std::int32_t start = 0;
    std::int32_t length = 0;
    bool emptyElement = false;
    // The name of a start or end tag, or the finding.
    std::wstring text;

    // While it is read: what is known of its opening, while it is not known of what kind it is.
    std::wstring opening;
    std::wstring ending;
    const wchar_t* word = illFormed.word;
    bool inDoctype = false;
    wchar_t quote = 0;
    bool awaitsValue = false;
    std::int32_t nameStart = 0;
    wchar_t last = 0;
    wchar_t beforeLast = 0;
};

struct LiteralParser {
    const std::wstring& text;
    bool ignoreCase;
    Node scan = {};
    LiteralIndex index = {};
    std::vector<MXmlElementRecord>& records = index.records;
    std::vector<std::wstring> names = {L""};
    std::int32_t current = 0;

    LiteralIndex Load()
    {
        records.resize(1);
        do {
            ScanNode();
            if (scan.type == 1)
                StartTag();
            else if (scan.type == 0)
                EndTag();
            else if (scan.type == -1)
                Mark(scan.text);
        } while (scan.type != -2);
        Dissolve(0);
        records[0].length = static_cast<std::int32_t>(text.size());
        const std::int32_t root = records[0].firstChild;
        const bool alone = records[root].nextSibling == 0;
        if (root == 0 || !alone)
            index.errorText = text.empty() ? L"Empty document"
                              : root == 0  ? L"No root element"
                                           : L"Root element has sibling";
        index.wellFormed = root != 0 && alone && !records[0].Has(XmlElementDocumentIllFormed);
        return index;
    }

    void ScanNode()
    {
        const std::int32_t start = scan.start + scan.length;
        scan = Node();
        scan.start = start;
        const std::int32_t size = static_cast<std::int32_t>(text.size());
        if (scan.start == size)
            return End(-2, size);
        for (std::int32_t i = scan.start; i < size; ++i) {
            const wchar_t c = text[i];
            if (scan.nameStart != 0) {
                if (!In(L" \t\n\r/>", c))
                    continue;
                scan.text = text.substr(scan.nameStart, i - scan.nameStart);
                scan.nameStart = scan.last = scan.beforeLast = 0;
            }
            if (scan.ending.empty()) {
                if (scan.type == 4 && c == L'<')
                    return End(4, i);
                if (scan.inDoctype && scan.opening.empty() && c == L'>')
                    return End(64, i + 1);
                Classify(i);
            }
            if (c == L'<' && !scan.ending.empty() && (scan.type == 2 || scan.type == -1))
                return End(scan.type, i);
            if (c == L'>' && scan.quote == 0 && IsEnding(i)) {
                scan.emptyElement = scan.type == 1 && scan.last == L'/' &&
                                    (scan.beforeLast == 0 || In(L" \t\n\r'\"", scan.beforeLast));
                scan.ending.clear();
                if (!scan.inDoctype)
                    return End(scan.type, i + 1);
            }
            TrackQuotes(c);
        }
        if (scan.type == 2 || scan.type == 4)
            return End(scan.type, size);
        scan.text =
            (scan.inDoctype ? L"Doctype" : scan.word) + AtOffset(scan.start) + L" unterminated";
        return End(-1, size);
    }

    void End(int type, std::int32_t end)
    {
        scan.type = type;
        scan.length = end - scan.start;
    }

    void Classify(std::int32_t i)
    {
        const wchar_t c = text[i];
        if (scan.opening.empty() && c != L'<') {
            if (!scan.inDoctype)
                Begin(In(Space, c) ? whiteSpace : characters);
            return;
        }
        const std::wstring before = scan.opening;
        scan.opening += c;
        for (const Kind& kind : kinds) {
            if (scan.opening == kind.opening) {
                scan.nameStart = kind.type == 0 || kind.type == 16 ? i + 1 : 0;
                return Begin(kind);
            }
        }
        if (before == L"<" && c > L'9' && !In(L";<=>?@[\\]^`", c)) {
            scan.nameStart = i;
            Begin(startTag);
        } else if (scan.opening == L"<!D" && !scan.inDoctype) {
            scan.inDoctype = true;
            scan.opening.clear();
        } else if (beginnings.count(scan.opening) == 0 ||
                   (scan.opening == L"<![" && scan.inDoctype)) {
            scan.text = L"Incorrect " + (beginnings.at(before) + AtOffset(scan.start));
            Begin(illFormed);
        }
    }

    void Begin(const Kind& kind)
    {
        scan.type = kind.type;
        scan.ending = kind.ending;
        scan.word = kind.word;
        scan.opening.clear();
    }

    bool IsEnding(std::int32_t i) const
    {
        const std::int32_t length = static_cast<std::int32_t>(scan.ending.size());
        return length == 1 ||
               (length > 1 && i > length && text.compare(i + 1 - length, length, scan.ending) == 0);
    }

    void TrackQuotes(wchar_t c)
    {
        const bool inTag = scan.type == 1 || scan.type == -1;
        if (!inTag && scan.type != 64)
            return;
        const bool opens = In(L"\"'", c) && (!inTag || scan.awaitsValue);
        if (scan.quote == 0 && inTag)
            scan.awaitsValue = scan.awaitsValue ? In(Space, c) : c == L'=' && scan.last != L'=';
        if (scan.quote == 0 || scan.quote == c)
            scan.quote = scan.quote == 0 && opens ? c : L'\0';
        if (inTag) {
            scan.beforeLast = scan.last;
            scan.last = c;
        }
    }

    void StartTag()
    {
        const std::int32_t added = static_cast<std::int32_t>(records.size());
        MXmlElementRecord record = MXmlElementRecord();
        record.parent = current;
        record.start = scan.start;
        record.length = scan.length;
        record.SetStartTagLength(scan.length);
        record.SetLevel(current == 0 ? 0 : records[current].Level() + 1);
        std::int32_t& first = records[current].firstChild;
        if (first == 0) {
            first = record.previousSibling = added;
            record.Set(XmlElementFirstChild);
        } else {
            record.previousSibling = records[first].previousSibling;
            records[record.previousSibling].nextSibling = added;
            records[first].previousSibling = added;
        }
        records.push_back(record);
        names.push_back(scan.text);
        current = scan.emptyElement ? current : added;
    }

    void EndTag()
    {
        std::int32_t closed = current;
        while (closed != 0 && !Closes(names[closed]))
            closed = records[closed].parent;
        if (closed == 0)
            return Mark(L"No start tag for end tag '" + scan.text + L"'" + AtOffset(scan.start));
        records[closed].length = scan.start + scan.length - records[closed].start;
        records[closed].SetEndTagLength(scan.length);
        Dissolve(closed);
        current = records[closed].parent;
    }

    bool Closes(const std::wstring& name) const
    {
        const auto compare = ignoreCase ? _wcsnicmp : std::wcsncmp;
        const std::size_t length = scan.text.size();
        return compare(name.c_str(), scan.text.c_str(), length) == 0 &&
               (name.size() == length || In(L" =/[]", name[length]));
    }

    // The open elements below that one never got an end tag.
    void Dissolve(std::int32_t last)
    {
        for (; current != last; current = records[current].parent) {
            DissolveElement(current);
            const std::wstring element =
                L"'" + names[current] + L"'" + AtOffset(records[current].start);
            Note(scan.type == -2 ? L"Element " + element + L" not ended"
                                 : L"End tag '" + scan.text + L"'" + AtOffset(scan.start + 1) +
                                       L" does not match start tag " + element);
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
        if (record.Has(XmlElementIllFormed))
            records[record.parent].Set(XmlElementIllFormed);
        record.Clear(XmlElementIllFormed);
        for (std::int32_t before = dissolved; child != 0; child = records[child].nextSibling) {
            records[child].parent = record.parent;
            records[child].previousSibling = before;
            records[before].nextSibling = child;
            before = child;
        }
    }

    void Mark(const std::wstring& finding)
    {
        records[current].Set(XmlElementIllFormed);
        Note(finding);
    }

    void Note(const std::wstring& finding)
    {
        records[0].Set(XmlElementDocumentIllFormed);
        if (index.errorText.empty())
            index.errorText = finding;
    }
};

} // namespace

LiteralIndex ParseLiterally(const std::wstring& text, bool ignoreCase)
{
    return LiteralParser{text, ignoreCase}.Load();
}
