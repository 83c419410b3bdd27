#include "fuzz/XmlExpatReader.h"

#include <expat.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace
{

const std::string utf8Mark = "\xEF\xBB\xBF";

// Of the declaration, in lower case; empty if there is none.
std::string DeclaredEncoding(const std::string& bytes)
{
    const std::string declaration = bytes.substr(0, std::min(bytes.find("?>"), std::size_t(200)));
    const std::size_t at = declaration.find("encoding=");
    if (declaration.compare(0, 5, "<?xml") != 0 || at == std::string::npos)
        return std::string();
    const std::size_t begin = at + std::strlen("encoding=") + 1;
    std::string name =
        declaration.substr(begin, declaration.find(declaration[begin - 1], begin) - begin);
    for (char& c : name)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

} // namespace

XmlExpatReader::XmlExpatReader(const std::string& bytes) : encoding(EncodingOf(bytes))
{
    const XML_Parser expat = XML_ParserCreate(nullptr);
    parser = expat;
    XML_SetUserData(expat, this);
    XML_SetElementHandler(expat, OnStart, OnEnd);
    XML_SetCharacterDataHandler(expat, OnText);
    if (XML_Parse(expat, bytes.data(), static_cast<int>(bytes.size()), 1) == XML_STATUS_ERROR)
        error = XML_ErrorString(XML_GetErrorCode(expat));
    XML_ParserFree(expat);
}

void XmlExpatReader::OnStart(void* reader, const char* name, const char** attributes)
{
    XmlExpatReader& self = *static_cast<XmlExpatReader*>(reader);
    const auto text = [](const char* bytes) { return FromUtf8(bytes, std::strlen(bytes)); };
    if (!self.open.empty())
        self.elements[self.open.back()].hasChildren = true;
    self.open.push_back(self.elements.size());
    self.elements.emplace_back();
    XmlExpatElement& element = self.elements.back();
    element.name = text(name);
    const int specified = XML_GetSpecifiedAttributeCount(static_cast<XML_Parser>(self.parser));
    for (int i = 0; i < specified; i += 2)
        element.attributes.emplace_back(text(attributes[i]), text(attributes[i + 1]));
    element.hasDefaults = attributes[specified] != nullptr;
}

void XmlExpatReader::OnEnd(void* reader, const char*)
{
    static_cast<XmlExpatReader*>(reader)->open.pop_back();
}

void XmlExpatReader::OnText(void* reader, const char* text, int length)
{
    XmlExpatReader& self = *static_cast<XmlExpatReader*>(reader);
    self.elements[self.open.back()].data += FromUtf8(text, static_cast<std::size_t>(length));
}

XmlExpatReader::Encoding XmlExpatReader::EncodingOf(const std::string& bytes)
{
    if (bytes.compare(0, 2, "\xFF\xFE") == 0)
        return Utf16;
    if (bytes.compare(0, 2, "\xFE\xFF") == 0)
        return Utf16Swapped;
    const std::string declared = DeclaredEncoding(bytes);
    if (declared.empty() || declared == "utf-8" || declared == "us-ascii")
        return Utf8;
    return declared == "iso-8859-1" ? Latin1 : Other;
}

std::wstring XmlExpatReader::Decode(const std::string& bytes) const
{
    std::wstring text;
    if (encoding == Utf8) {
        const std::size_t mark = bytes.compare(0, utf8Mark.size(), utf8Mark) == 0 ? 3 : 0;
        return FromUtf8(bytes.data() + mark, bytes.size() - mark);
    }
    if (encoding == Latin1) {
        for (const char c : bytes)
            text += static_cast<wchar_t>(static_cast<unsigned char>(c));
        return text;
    }
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<wchar_t>(encoding == Utf16 ? second << 8 | first : first << 8 | second);
    }
    return text;
}

std::wstring XmlExpatReader::FromUtf8(const char* bytes, std::size_t length)
{
    std::wstring text;
    for (std::size_t i = 0; i < length;) {
        const auto lead = static_cast<unsigned char>(bytes[i++]);
        int trail = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        unsigned code = trail == 0 ? lead : lead & (0x3Fu >> trail);
        for (; trail > 0 && i < length; --trail)
            code = code << 6 | (static_cast<unsigned char>(bytes[i++]) & 0x3Fu);
        if (code > 0xFFFF)
            text += static_cast<wchar_t>(0xD7C0 + (code >> 10));
        text += static_cast<wchar_t>(code > 0xFFFF ? 0xDC00 + (code & 0x3FF) : code);
    }
    return text;
}
