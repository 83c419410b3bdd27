// Documents as the engine reads them beside expat: the verdict, and of each element its name, its
// attributes and its data. Differences of the known kinds are counted; any other one is an error.
//
//     xml-beside-expat SECONDS <FILES    names a line; ends early when the seconds are over

#include "fuzz/XmlExpatReader.h"
#include "xml/MXmlMarkup.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>

namespace
{

const std::wstring spaces = L" \t\n\r";

std::wstring Replaced(std::wstring text, const std::wstring& what, const std::wstring& with)
{
    for (std::size_t at = 0; (at = text.find(what, at)) != std::wstring::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

std::wstring WithLineEnds(const std::wstring& text)
{
    return Replaced(Replaced(text, L"\r\n", L"\n"), L"\r", L"\n");
}

std::wstring WithBlanks(std::wstring text)
{
    for (wchar_t& c : text)
        c = spaces.find(c) != std::wstring::npos ? L' ' : c;
    return text;
}

std::wstring WithoutSpaces(std::wstring text)
{
    const auto isSpace = [](wchar_t c) { return spaces.find(c) != std::wstring::npos; };
    text.erase(std::remove_if(text.begin(), text.end(), isSpace), text.end());
    return text;
}

/// Pairs of surrogates as the low half of their code.
std::wstring WithCutCodes(const std::wstring& text)
{
    std::wstring cut;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] >= 0xD800 && text[i] < 0xDC00 && i + 1 < text.size();
        cut +=
            pair ? static_cast<wchar_t>((text[i] & 0x3F) << 10 | (text[i + 1] & 0x3FF)) : text[i];
        i += pair ? 1 : 0;
    }
    return cut;
}

/// Whether the text has a reference by name, with what is around it standing in the other one.
bool HasEntity(const std::wstring& ours, const std::wstring& theirs)
{
    const std::size_t at = ours.find(L'&');
    const std::size_t end = ours.find(L';', at);
    if (end == std::wstring::npos)
        return false;
    const std::wstring behind = ours.substr(ours.find_last_of(L';') + 1);
    return theirs.compare(0, at, ours, 0, at) == 0 && theirs.size() >= behind.size() &&
           theirs.compare(theirs.size() - behind.size(), behind.size(), behind) == 0;
}

std::string TextDifference(const std::wstring& ours, const std::wstring& theirs, bool inAttribute)
{
    if (ours == theirs)
        return std::string();
    if (WithLineEnds(ours) == theirs)
        return "line ends";
    if (inAttribute && WithBlanks(WithLineEnds(ours)) == theirs)
        return "white space in attributes";
    if (inAttribute && WithoutSpaces(ours) == WithoutSpaces(theirs))
        return "attributes of declared types";
    if (HasEntity(ours, theirs))
        return "entities";
    if (ours == WithCutCodes(theirs))
        return "references above FFFF";
    if (!inAttribute && WithoutSpaces(ours) == WithoutSpaces(theirs))
        return "white space beside comments and CDATA";
    return inAttribute ? "! an attribute" : "! the data";
}

/// Goes through a document beside what expat told of it.
class Comparer
{
public:
    Comparer(MXmlMarkup& document, const XmlExpatReader& expat) : document(document), expat(expat)
    {
    }

    /// The kinds of differences, those that are not known with a "!" in front.
    std::map<std::string, int> Differences()
    {
        do {
            while (document.FindElement()) {
                CompareElement();
                document.EnterElement();
            }
        } while (document.LeaveElement());
        if (next != expat.Elements().size())
            ++differences["! the number of elements"];
        return differences;
    }

private:
    void CompareElement()
    {
        if (next == expat.Elements().size())
            return;
        const XmlExpatElement& theirs = expat.Elements()[next++];
        const std::int32_t element = document.GetMainIndex();
        if (document.GetElementName(element) != theirs.name)
            ++differences["! a name"];
        CompareAttributes(element, theirs);
        if (!theirs.hasChildren)
            Note(TextDifference(document.GetElementData(element), theirs.data, false));
        else if (!document.GetElementData(element).empty())
            ++differences["! data beside elements"];
    }

    void CompareAttributes(std::int32_t element, const XmlExpatElement& theirs)
    {
        for (const auto& attribute : theirs.attributes)
            Note(TextDifference(document.GetAttribute(element, attribute.first.c_str()),
                                attribute.second, true));
        const std::wstring& text = document.GetDocumentText();
        MXmlTokenCursor cursor(text.c_str(), static_cast<std::int32_t>(text.size()), 0);
        int count = 0;
        for (bool found = true; found; count += found ? 1 : 0) {
            cursor.next = document.GetRecord(element).start + 1;
            found = MXmlMarkup::FindAttribute(cursor, nullptr, count);
        }
        if (static_cast<std::size_t>(count) != theirs.attributes.size())
            ++differences["! the number of attributes"];
        if (theirs.hasDefaults)
            ++differences["attributes that the doctype adds"];
    }

    void Note(const std::string& kind)
    {
        if (!kind.empty())
            ++differences[kind];
    }

    MXmlMarkup& document;
    const XmlExpatReader& expat;
    std::size_t next = 0;
    std::map<std::string, int> differences;
};

std::map<std::string, int> Compare(const std::string& bytes, const XmlExpatReader& expat)
{
    MXmlMarkup document;
    const bool wellFormed = document.LoadText(expat.Decode(bytes).c_str()) == 1;
    if (!expat.Error().empty())
        return {{wellFormed ? "refused by expat alone: " + expat.Error() : "refused by both", 1}};
    if (!wellFormed)
        return {{"! refused by the engine alone", 1}};
    return Comparer(document, expat).Differences();
}

double Seconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

struct Kind {
    int files = 0;
    std::string example;
};

} // namespace

int main(int count, char** arguments)
{
    const double end = Seconds() + (count > 1 ? std::atof(arguments[1]) : 15);
    std::map<std::string, Kind> kinds;
    int files = 0;
    int left = 0;
    for (std::string name; std::getline(std::cin, name);) {
        if (Seconds() > end) {
            ++left;
            continue;
        }
        std::ifstream file(name, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const XmlExpatReader expat(bytes);
        std::map<std::string, int> found = {{"in an encoding that is not tried", 1}};
        if (expat.KnowsEncoding())
            found = Compare(bytes, expat);
        for (const auto& difference : found) {
            Kind& kind = kinds[difference.first];
            kind.example = kind.files++ == 0 ? name : kind.example;
        }
        ++files;
    }
    bool known = true;
    for (const auto& kind : kinds) {
        std::printf("%6d  %-44s %s\n", kind.second.files, kind.first.c_str(),
                    kind.second.example.c_str());
        known = known && kind.first[0] != '!';
    }
    std::printf("%6d  files read; %d for which there was no time\n", files, left);
    return known && files > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
