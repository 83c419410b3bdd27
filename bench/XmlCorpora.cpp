#include "bench/XmlCorpora.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>

namespace
{

std::wstring MakeParagraphs()
{
    const std::wstring sentence = L"The quick brown fox jumps over the lazy dog, and the dog does "
                                  L"not mind it &amp; sleeps on. ";
    std::wstring paragraph = L"<p>";
    for (int i = 0; i < 40; ++i)
        paragraph += sentence;
    paragraph += L"</p>\n";
    std::wstring text = L"<?xml version=\"1.0\"?>\n<book>\n";
    for (int i = 0; i < 800; ++i)
        text += paragraph;
    return text + L"</book>\n";
}

// For files known to be valid UTF-8; see XmlCorpora on what becomes of it.
std::wstring FromUtf8(const std::string& bytes)
{
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size();) {
        const unsigned char lead = static_cast<unsigned char>(bytes[i++]);
        int trail = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        std::uint32_t code = trail == 0 ? lead : lead & (0x3Fu >> trail);
        for (; trail > 0 && i < bytes.size(); --trail)
            code = (code << 6) | (static_cast<unsigned char>(bytes[i++]) & 0x3Fu);
        text += code < 0x100 ? static_cast<wchar_t>(code) : L'\u00FC';
    }
    return text;
}

std::wstring Repeat(const std::wstring& piece, int count)
{
    std::wstring text;
    text.reserve(piece.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::wstring Numbered(const std::wstring& before, int count, const std::wstring& behind)
{
    std::wstring text;
    for (int i = 0; i < count; ++i)
        text += before + std::to_wstring(i) + behind;
    return text;
}

/// As services exchange them.
std::wstring MakeSchemaTypedElements(int count)
{
    std::wstring text = L"<Envelope>\n";
    for (int i = 0; i < count; ++i) {
        const std::wstring name = L"a" + std::to_wstring(i % 10);
        text +=
            L"<" + name + L" xsi:type=\"xsd:int\">" + std::to_wstring(i) + L"</" + name + L">\n";
    }
    return text + L"</Envelope>\n";
}

/// Elements of which no two look alike.
class RandomShapes
{
public:
    std::wstring Document(int elements)
    {
        left = elements;
        std::wstring text = L"<root>";
        while (left > 0)
            text += Element(6);
        return text + L"</root>";
    }

private:
    int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    std::wstring Letters(int most)
    {
        std::wstring letters;
        for (int i = 1 + Below(most); i > 0; --i)
            letters += static_cast<wchar_t>(L'a' + Below(26));
        return letters;
    }

    std::wstring Attributes()
    {
        std::wstring text;
        for (int i = Below(5); i > 0; --i) {
            const std::wstring quote(1, Below(4) == 0 ? L'\'' : L'"');
            text += L" " + Letters(10) + L"=" + quote + Letters(30) + quote;
        }
        return text;
    }

    std::wstring Element(int depth)
    {
        --left;
        const std::wstring name = Letters(12);
        const std::wstring tag = L"<" + name + Attributes();
        if (Below(5) == 0)
            return tag + L"/>";
        std::wstring content = Below(8) == 0 ? L"<!-- " + Letters(60) + L" -->" : L"";
        for (int i = depth > 0 ? Below(4) : 0; i > 0 && left > 0; --i)
            content += L"\n" + Element(depth - 1);
        if (Below(2) == 0)
            content += Letters(60);
        return tag + L">" + content + L"</" + name + L">\n";
    }

    std::mt19937 random;
    int left = 0;
};

XmlCorpus Installed(const char* name, const char* package, const char* path, double element)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return {name, package, FromUtf8(bytes), 0.62, 0.65, element};
}

} // namespace

std::wstring MakeTypedElements(int count)
{
    std::wstring text = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Settings>\n";
    for (int i = 0; i < count; ++i) {
        const std::wstring number = std::to_wstring(i);
        if (i % 3 == 0)
            text += L"<Count type=\"int\">" + number + L"</Count>\n";
        else if (i % 3 == 1)
            text += L"<Title type=\"string\">Item no. " + number + L"</Title>\n";
        else
            text += L"<Ratio type=\"float\">2.500000000000000e+000</Ratio>\n";
    }
    return text + L"</Settings>\n";
}

std::vector<XmlCorpus> XmlCorpora()
{
    return {
        {"(a) typed elements", "", MakeTypedElements(60000), 0.75, 0.65, 48},
        {"(b) paragraphs", "", MakeParagraphs(), 0.75, 0.75, 1821},
        Installed("(c) Gio-2.0.gir", "libgirepository1.0-dev", "/usr/share/gir-1.0/Gio-2.0.gir",
                  60),
        Installed("(d) freedesktop.org.xml", "shared-mime-info",
                  "/usr/share/mime/packages/freedesktop.org.xml", 42),
        Installed("(e) iso_639-3.xml", "iso-codes", "/usr/share/xml/iso-codes/iso_639-3.xml", 65),
        {"(f) schema types", "", MakeSchemaTypedElements(60000), 0.75, 0.65, 39},
        {"(g) random shapes", "", RandomShapes().Document(30000), 0.75, 0.65, 43},
    };
}

std::vector<std::wstring> SmallXmlDocuments(std::size_t length)
{
    const std::wstring all = MakeTypedElements(20000);
    std::size_t at = all.find(L"<Count");
    std::vector<std::wstring> documents;
    while (documents.size() < 100) {
        std::wstring document = L"<Values>\n";
        while (document.size() + 40 < length) {
            const std::size_t next = all.find(L'\n', at) + 1;
            document += all.substr(at, next - at);
            at = next;
        }
        documents.push_back(document + L"</Values>\n");
    }
    return documents;
}

std::vector<HostileXml> HostileXmlDocuments()
{
    return {
        {"start tags, never closed", [](int n) { return Repeat(L"<a>", n); }},
        {"start tags, closed by one outer end tag",
         [](int n) { return L"<o>" + Repeat(L"<a>", n) + L"</o>"; }},
        {"start tags, then end tags that match none",
         [](int n) { return Numbered(L"<n", n, L">") + Numbered(L"</m", n, L">"); }},
        {"the same, names alike before an =",
         [](int n) { return Numbered(L"<n=", n, L">") + Numbered(L"</n=x", n, L">"); }},
        {"two of three start tags not closed",
         [](int n) { return L"<r>" + Repeat(L"<a><b><c></a>", n / 4) + L"</r>"; }},
        {"attributes of one start tag",
         [](int n) { return L"<a" + Numbered(L" b", n, L"='c'") + L"/>"; }},
        {"<!", [](int n) { return Repeat(L"<!", n); }},
        {"comments of nothing", [](int n) { return L"<a>" + Repeat(L"<!---->", n) + L"</a>"; }},
        {"one open quote", [](int n) { return L"<a b='" + Repeat(L"<c d=\"e\">", n); }},
        {"unquoted values", [](int n) { return L"<a>" + Repeat(L"<b c=d>e</b>", n) + L"</a>"; }},
        {"> in quotes", [](int n) { return L"<a>" + Repeat(L"<b c='>'>e</b>", n) + L"</a>"; }},
    };
}
