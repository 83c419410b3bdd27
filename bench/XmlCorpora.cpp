#include "bench/XmlCorpora.h"

#include <cstdint>
#include <fstream>
#include <iterator>

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

XmlCorpus Installed(const char* name, const char* package, const char* path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return {name, package, FromUtf8(bytes), 1 / 1.5};
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
        {"(a) typed elements", "", MakeTypedElements(60000), 1 / 1.5},
        {"(b) paragraphs", "", MakeParagraphs(), 1},
        Installed("(c) Gio-2.0.gir", "libgirepository1.0-dev", "/usr/share/gir-1.0/Gio-2.0.gir"),
        Installed("(d) freedesktop.org.xml", "shared-mime-info",
                  "/usr/share/mime/packages/freedesktop.org.xml"),
        Installed("(e) iso_639-3.xml", "iso-codes", "/usr/share/xml/iso-codes/iso_639-3.xml"),
    };
}
