#include "xml/scan/XmlMarkupText.h"
#include "xml/scan/XmlCharacters.h"

#include <cwchar>

namespace
{

struct MEscape {
    wchar_t character;
    const wchar_t* reference;
    std::int32_t referenceLength;

    const wchar_t* Name() const { return reference + 1; }
    std::int32_t NameLength() const { return referenceLength - 1; }
};

constexpr std::int32_t WithoutQuotes = 3;
constexpr std::int32_t WithQuotes = 5;

constexpr MEscape Escapes[WithQuotes] = {{L'<', L"&lt;", 4},
                                         {L'&', L"&amp;", 5},
                                         {L'>', L"&gt;", 4},
                                         {L'\'', L"&apos;", 6},
                                         {L'"', L"&quot;", 6}};

constexpr wchar_t CdataOpening[] = L"<![CDATA[";
constexpr wchar_t CdataEnding[] = L"]]>";

const wchar_t* OrEmpty(const wchar_t* text)
{
    return text ? text : L"";
}

const MEscape* FindEscape(wchar_t c, std::int32_t count)
{
    for (const MEscape* escape = Escapes; escape != Escapes + count; ++escape) {
        if (escape->character == c)
            return escape;
    }
    return nullptr;
}

bool IsLetter(wchar_t c)
{
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

bool MayBeginReference(wchar_t c)
{
    return c == L'#' || c == L':' || c == L'_' || IsLetter(c) ||
           static_cast<std::uint32_t>(c) >= 128;
}

bool MayStandInReference(wchar_t c)
{
    return c == L'-' || c == L'.' || (c >= L'0' && c <= L'9') ||
           (c != L'#' && MayBeginReference(c));
}

// Length of the reference whose "&" the text begins with, through its ";", or 0.
std::size_t ReferenceLength(const wchar_t* text)
{
    if (!MayBeginReference(text[1]))
        return 0;
    const wchar_t* at = text + 2;
    while (MayStandInReference(*at))
        ++at;
    return *at == L';' ? static_cast<std::size_t>(at - text) + 1 : 0;
}

// What a digit is worth; what is no ASCII digit is worth more than any base allows.
std::uint32_t DigitValue(wchar_t c)
{
    const std::uint32_t code = static_cast<std::uint32_t>(XmlCharacters::Fold(c));
    if (code >= '0' && code <= '9')
        return code - '0';
    return code >= 'a' && code <= 'f' ? code - 'a' + 10 : 16;
}

// The run time's conversion would take digits of other scripts on one platform and not on another.
std::uint32_t ReadNumber(const wchar_t* digits, std::uint32_t base)
{
    std::uint32_t number = 0;
    for (; DigitValue(*digits) < base; ++digits)
        number = number * base + DigitValue(*digits);
    return number;
}

// A text that is resolved reference by reference.
class MUnescaper
{
public:
    MUnescaper(const wchar_t* source, std::int32_t sourceLength)
        : text(source), length(sourceLength)
    {
    }

    std::wstring Run()
    {
        result.reserve(static_cast<std::size_t>(length));
        std::int32_t offset = 0;
        while (offset < length) {
            const std::int32_t ampersand = FindAmpersand(offset);
            result.append(text + offset, static_cast<std::size_t>(ampersand - offset));
            offset = ampersand < length ? Resolve(ampersand) : length;
        }
        return std::move(result);
    }

private:
    std::int32_t FindAmpersand(std::int32_t offset) const
    {
        while (offset < length && text[offset] != L'&')
            ++offset;
        return offset;
    }

    // Answers where the scan goes on.
    std::int32_t Resolve(std::int32_t ampersand)
    {
        const std::int32_t behind = ampersand + 1;
        if (behind < length && text[behind] == L'#')
            return ResolveNumber(ampersand);
        for (const MEscape& escape : Escapes) {
            if (length - ampersand > escape.NameLength() &&
                std::wcsncmp(text + behind, escape.Name(),
                             static_cast<std::size_t>(escape.NameLength())) == 0) {
                result += escape.character;
                return behind + escape.NameLength();
            }
        }
        result += L'&';
        return behind;
    }

    std::int32_t ResolveNumber(std::int32_t ampersand)
    {
        std::int32_t digits = ampersand + 2;
        const bool hexadecimal = digits < length && text[digits] == L'x';
        if (hexadecimal)
            ++digits;
        const std::int32_t semicolon = FindSemicolon(digits);
        if (semicolon < 0) {
            result += L'&';
            return ampersand + 1;
        }
        const std::uint32_t code = ReadNumber(text + digits, hexadecimal ? 16 : 10);
        result += static_cast<wchar_t>(static_cast<std::uint16_t>(code));
        if (code != 0)
            return semicolon + 1;
        result += L'&';
        return ampersand + 1;
    }

    // Looks at the 8 characters from `digits`; -1 if there is none.
    std::int32_t FindSemicolon(std::int32_t digits) const
    {
        for (std::int32_t i = 0; i < 8 && i < length - digits; ++i) {
            if (text[digits + i] == L';')
                return digits + i;
        }
        return -1;
    }

    const wchar_t* text;
    std::int32_t length;
    std::wstring result;
};

} // namespace

std::wstring XmlMarkupText::Escape(const wchar_t* text, bool quotes, bool keepReferences)
{
    text = OrEmpty(text);
    const std::int32_t escapes = quotes ? WithQuotes : WithoutQuotes;
    const std::size_t length = std::wcslen(text);
    std::wstring result;
    result.reserve(length + length / 10 + 7);
    while (*text != 0) {
        const MEscape* escape = FindEscape(*text, escapes);
        const bool mayKeep = *text == L'&' && keepReferences;
        const std::size_t kept = mayKeep ? ReferenceLength(text) : 0;
        if (kept != 0)
            result.append(text, kept);
        else if (escape)
            result.append(escape->reference, static_cast<std::size_t>(escape->referenceLength));
        else
            result += *text;
        text += kept != 0 ? kept : 1;
    }
    return result;
}

std::wstring XmlMarkupText::Unescape(const wchar_t* text, std::int32_t length)
{
    return MUnescaper(OrEmpty(text), length).Run();
}

std::wstring XmlMarkupText::WrapCdata(const wchar_t* text)
{
    constexpr wchar_t split[] = L"]]]]><![CDATA[>";
    text = OrEmpty(text);
    std::wstring result = CdataOpening;
    while (const wchar_t* ending = std::wcsstr(text, CdataEnding)) {
        result.append(text, static_cast<std::size_t>(ending - text));
        result += split;
        text = ending + 3;
    }
    result += text;
    return result += CdataEnding;
}

bool XmlMarkupText::Build(std::int32_t type, const wchar_t* text, std::wstring& result)
{
    const std::wstring source = OrEmpty(text);
    result.clear();
    switch (type) {
    case XmlNodeElement:
        result = L"<" + source + L"/>";
        return true;
    case XmlNodeText:
    case XmlNodeWhitespace:
        result = Escape(source.c_str(), false, false);
        return true;
    case XmlNodeCdata:
        if (source.find(CdataEnding) != std::wstring::npos)
            return false;
        result = CdataOpening + source + CdataEnding;
        return true;
    case XmlNodeInstruction:
        result = L"<?" + source + L"?>";
        return true;
    case XmlNodeComment:
        result = L"<!--" + source + L"-->";
        return true;
    case XmlNodeDoctype:
        result = source;
        return true;
    case XmlNodeLoneEndTag:
        return false;
    default:
        return true;
    }
}
