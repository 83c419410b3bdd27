#include "fuzz/XmlHarness.h"
#include "fuzz/XmlInvariants.h"

#include <algorithm>
#include <vector>

namespace
{

bool IsPlain(wchar_t c)
{
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9');
}

bool IsPlainText(const std::wstring& text)
{
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return IsPlain(c) || c == L' '; });
}

bool IsPlainDoctype(const std::wstring& text)
{
    const std::wstring opening = L"<!DOCTYPE ";
    return text.size() > opening.size() && text.compare(0, opening.size(), opening) == 0 &&
           text.back() == L'>' &&
           IsPlainText(text.substr(opening.size(), text.size() - opening.size() - 1));
}

bool IsPlainName(const std::wstring& name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), IsPlain) &&
           !(name[0] >= L'0' && name[0] <= L'9');
}

// Whether all of a tag is names and quoted values.
bool IsPlainTag(const std::wstring& tag)
{
    std::size_t i = 1;
    const auto skip = [&](bool (*belongs)(wchar_t)) {
        const std::size_t from = i;
        while (i < tag.size() && belongs(tag[i]))
            ++i;
        return i > from;
    };
    const auto isSpace = [](wchar_t c) { return c == L' ' || c == L'\n'; };
    if (!skip(IsPlain))
        return false;
    while (skip(isSpace) && skip(IsPlain)) {
        const wchar_t quote = i + 1 < tag.size() ? tag[i + 1] : L'\0';
        if (tag[i] != L'=' || (quote != L'"' && quote != L'\''))
            return false;
        i = tag.find(quote, i + 2);
        if (i++ == std::wstring::npos)
            return false;
    }
    return tag.compare(i, std::wstring::npos, L">") == 0 ||
           tag.compare(i, std::wstring::npos, L"/>") == 0;
}

std::size_t CommonFront(const std::wstring& a, const std::wstring& b)
{
    const std::size_t most = std::min(a.size(), b.size());
    return static_cast<std::size_t>(
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(most), b.begin()).first -
        a.begin());
}

struct Operation {
    wchar_t letter = 0;
    std::uint32_t choice = 0;
    std::wstring first;
    std::wstring second;
    bool hasSecond = false;
};

class XmlPlayer
{
public:
    std::string Play(const std::vector<std::wstring>& parts)
    {
        Load(parts[0]);
        std::string broken = Check(false);
        for (std::size_t i = 1; i < parts.size() && broken.empty(); ++i)
            broken = Do(Parse(parts[i]));
        return broken;
    }

    const std::wstring& Told() const { return told; }

    /// Whether the law had to hold to the end.
    bool IsFresh() const { return fresh; }

private:
    static Operation Parse(const std::wstring& part)
    {
        Operation operation;
        operation.letter = part.empty() ? L'\0' : part[0];
        operation.choice = part.size() < 2 ? 0 : static_cast<std::uint32_t>(part[1]) ^ L'0';
        const std::wstring arguments = part.size() < 2 ? std::wstring() : part.substr(2);
        const std::size_t comma = arguments.find(L',');
        operation.first = arguments.substr(0, comma);
        operation.hasSecond = comma != std::wstring::npos;
        if (operation.hasSecond)
            operation.second = arguments.substr(comma + 1);
        return operation;
    }

    std::string Do(const Operation& operation)
    {
        before = document.GetDocumentText();
        switch (operation.letter) {
        case L'L':
            Load(operation.first);
            return Check(false);
        case L'a':
            return AddElement(operation);
        case L'w':
            return AddMarkup(operation);
        case L'n':
            return AddNode(operation);
        case L't':
            return SetAttribute(operation, document.GetMainIndex());
        case L'x':
            return SetAttribute(operation, static_cast<std::int32_t>(operation.choice) - 2);
        case L'm':
            return ReplaceInnerMarkup(operation);
        case L'u':
            return Convert(operation);
        default:
            Move(operation);
            if (document.GetDocumentText() != before)
                return "moving changed the text";
            return Check(fresh);
        }
    }

    void Load(const std::wstring& text)
    {
        fresh = document.LoadText(text.c_str()) == 1;
        spans = true;
    }

    void Move(const Operation& operation)
    {
        switch (operation.letter) {
        case L'f':
            return NoteAnswer(document.FindElement(operation.first.c_str()));
        case L'e':
            return NoteAnswer(document.EnterElement());
        case L'l':
            return NoteAnswer(document.LeaveElement());
        case L's':
            return NoteAnswer(document.SavePosition(operation.first.c_str()));
        case L'r':
            return NoteAnswer(document.RestorePosition(operation.first.c_str()));
        case L'g':
        case L'v':
            return Read(operation);
        case L'p':
            return Tell(std::to_wstring(document.GetParentIndex()) + L"," +
                        std::to_wstring(document.GetMainIndex()) + L"," +
                        std::to_wstring(document.GetChildIndex()));
        case L'd':
            return Tell(document.GetDocumentText());
        case L'c':
            // The index keeps the regard that it was made with.
            fresh = false;
            document.SetDocumentFlags(document.GetDocumentFlags() ^ XmlDocIgnoreCase);
            break;
        default:
            break;
        }
    }

    void Read(const Operation& operation)
    {
        const std::int32_t main = document.GetMainIndex();
        if (operation.letter == L'g')
            Tell(document.GetAttribute(main, operation.first.c_str()));
        else
            Tell(document.GetCurrentName() + L"=" + document.GetElementData(main));
        for (std::int32_t record = -1; record <= document.GetRecordCount(); ++record) {
            document.GetElementName(record);
            document.GetAttribute(record, operation.first.c_str());
            document.GetElementData(record);
            document.GetInnerMarkup(record);
        }
    }

    void Tell(const std::wstring& answer) { told += answer + L";"; }

    void NoteAnswer(bool answer) { told += answer ? L"" : L"!"; }

    static std::uint32_t Flags(std::uint32_t choice)
    {
        constexpr std::uint32_t flags[] = {
            XmlAddCdata,    XmlAddNoLineBreak,  XmlAddSpaceSlash, XmlAddKeepReferences,
            XmlAddNoEndTag, XmlAddEscapeQuotes, XmlAddBefore,     XmlAddChild};
        std::uint32_t chosen = 0;
        for (int i = 0; i < 8; ++i)
            chosen |= (choice >> i & 1) != 0 ? flags[i] : 0;
        return chosen;
    }

    std::string AddElement(const Operation& operation)
    {
        const std::uint32_t flags = Flags(operation.choice);
        const std::int32_t parent =
            (flags & XmlAddChild) != 0 ? document.GetMainIndex() : document.GetParentIndex();
        NoteParent(parent);
        const wchar_t* data = operation.hasSecond ? operation.second.c_str() : nullptr;
        if (!document.AddElement(operation.first.c_str(), data, flags))
            return Refused();
        fresh = fresh && IsPlainName(operation.first) && (flags & XmlAddNoEndTag) == 0;
        const std::int32_t added =
            document.GetChildIndex() != 0 ? document.GetChildIndex() : document.GetMainIndex();
        if (fresh && document.GetElementName(added) != operation.first)
            return "the added element has another name";
        // CDATA that ends with the text's "]]" is parted, and so loses nothing either.
        if (fresh && (flags & XmlAddKeepReferences) == 0 &&
            document.GetElementData(added) != operation.second)
            return "the added element has other data";
        return Spliced(1);
    }

    std::string AddMarkup(const Operation& operation)
    {
        const std::uint32_t flags = Flags(operation.choice & 0xC2) | XmlAddMarkup;
        NoteParent((flags & XmlAddChild) != 0 ? document.GetMainIndex()
                                              : document.GetParentIndex());
        if (!document.AddElement(operation.first.c_str(), operation.second.c_str(), flags, L"type",
                                 L"<int>"))
            return Refused();
        fresh = fresh && IsPlainName(operation.first);
        const std::int32_t added =
            document.GetChildIndex() != 0 ? document.GetChildIndex() : document.GetMainIndex();
        if (fresh && (document.GetInnerMarkup(added) != operation.second ||
                      document.GetAttribute(added, L"type") != L"<int>"))
            return "the added element has another attribute or content";
        return Spliced(1);
    }

    std::string AddNode(const Operation& operation)
    {
        const std::int32_t type = 1 << (operation.choice & 7);
        const std::uint32_t flags = Flags((operation.choice & 0x40) | (operation.choice >> 4 & 2));
        NoteParent(document.GetParentIndex());
        if (!document.AddNode(type, operation.first.c_str(), flags))
            return Refused();
        if (type == XmlNodeElement)
            fresh = fresh && IsPlainName(operation.first);
        else if (type == XmlNodeInstruction || type == XmlNodeComment)
            fresh = fresh && IsPlainText(operation.first);
        else if (type == XmlNodeDoctype)
            fresh = fresh && IsPlainDoctype(operation.first);
        return Spliced(1);
    }

    std::string SetAttribute(const Operation& operation, std::int32_t record)
    {
        const bool element = document.GetNodeLength() == 0;
        const bool plain = !element || IsPlainTag(StartTag(record));
        if (!document.SetAttribute(record, operation.first.c_str(), operation.second.c_str()))
            return Refused();
        fresh = fresh && plain && IsPlainName(operation.first);
        if (fresh && element &&
            document.GetAttribute(record, operation.first.c_str()) != operation.second)
            return "the attribute has another value";
        return Spliced(before.size());
    }

    std::string ReplaceInnerMarkup(const Operation& operation)
    {
        NoteParent(document.GetMainIndex());
        const std::wstring inner = document.GetInnerMarkup(document.GetMainIndex());
        const bool onElement = document.GetMainIndex() != 0 && document.GetNodeLength() == 0;
        const bool wellFormed = document.ReplaceInnerMarkup(operation.first.c_str()) == 1;
        if (!onElement)
            return wellFormed ? "nothing was replaced well" : Refused();
        if (fresh && document.GetInnerMarkup(document.GetMainIndex()) != operation.first)
            return "the inner markup is not the one given";
        fresh = fresh && wellFormed;
        return Spliced(std::max<std::size_t>(inner.size(), 1));
    }

    std::string Convert(const Operation& operation)
    {
        const std::wstring escaped =
            MXmlMarkup::EscapeText(operation.first.c_str(), Flags(operation.choice & 0x28));
        const std::wstring back = MXmlMarkup::UnescapeText(escaped.c_str(), -1);
        if ((operation.choice & 8) == 0 && back != operation.first)
            return "escaping and back is not the same";
        MXmlMarkup::UnescapeText(operation.first.c_str(), -1);
        for (std::size_t i = 0; i <= operation.first.size(); ++i)
            MXmlMarkup::UnescapeText(operation.first.c_str(), static_cast<std::int32_t>(i));
        MXmlMarkup::WrapCdata(operation.first.c_str());
        return std::string();
    }

    // An empty element is given an end tag with its name, which the scanner of tags may take for
    // another one.
    void NoteParent(std::int32_t parent)
    {
        if (parent != 0)
            fresh = fresh && IsPlainTag(StartTag(parent));
    }

    std::wstring StartTag(std::int32_t record) const
    {
        if (record < 0 || record >= document.GetRecordCount())
            return std::wstring();
        const MXmlElementRecord& element = document.GetRecord(record);
        const std::size_t size = before.size();
        const std::size_t start = std::min(static_cast<std::size_t>(element.start), size);
        return before.substr(start, static_cast<std::size_t>(element.StartTagLength()));
    }

    std::string Refused()
    {
        NoteAnswer(false);
        return document.GetDocumentText() == before ? Check(fresh) : "a refusal changed the text";
    }

    // The text is the old one but for one place, where no more than `most` characters are gone.
    std::string Spliced(std::size_t most)
    {
        const std::wstring& after = document.GetDocumentText();
        const std::size_t front = CommonFront(before, after);
        const std::size_t back = CommonFront(std::wstring(before.rbegin(), before.rend()),
                                             std::wstring(after.rbegin(), after.rend()));
        if (front + back + most < before.size())
            return "more of the text is gone than was replaced";
        return Check(fresh);
    }

    std::string Check(bool indexIsFresh)
    {
        spans = spans && AllHaveStartTags(document);
        if (spans && !SpansText(document))
            return "the document's record does not span the text";
        const std::string broken = BrokenRule(document);
        return broken.empty() && indexIsFresh ? StaleIndex(document) : broken;
    }

    MXmlMarkup document;
    std::wstring told;
    std::wstring before;
    // Nothing ill-formed was loaded or added.
    bool fresh = false;
    // Every element has had a start tag since.
    bool spans = true;
};

std::vector<std::wstring> Parts(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::wstring> parts(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '|')
            parts.emplace_back();
        else if (data[i] != 0)
            parts.back() += static_cast<wchar_t>(data[i] < 128 ? data[i] : data[i] + 0x100);
    }
    return parts;
}

} // namespace

std::string PlayXmlInput(const std::uint8_t* data, std::size_t size, std::wstring* told)
{
    XmlPlayer player;
    const std::string broken = player.Play(Parts(data, size));
    if (told)
        *told = player.Told();
    return broken;
}

std::string PlayXmlEdits(const std::string& input)
{
    XmlPlayer player;
    const std::string broken =
        player.Play(Parts(reinterpret_cast<const std::uint8_t*>(input.data()), input.size()));
    return broken.empty() && !player.IsFresh() ? "an edit is not well-formed" : broken;
}
