#include "fuzz/XmlExhaustiveTexts.h"
#include "fuzz/XmlLiteralParser.h"

#include <cstring>

namespace
{

const std::wstring alphabet = L"<>/=\"' !-?[]CDEa";

// What is fast may need it behind what it reads.
const std::wstring room(40, L'x');

const wchar_t* const frames[][2] = {
    {L"<a", L">x</a>"},
    {L"<a ", L"/>"},
    {L"<a b=", L"/><b/>"},
    {L"<a b='", L"'/>"},
    {L"<a b=\"1\" c", L"\"2\"></a>"},
    {L"<a", L"=b></a>"},
    {L"<a ", L" b='>' c=\">\"/><b/>"},
    {L"<a>", L"</a>"},
    {L"<r><a>x", L"</a></r>"},
    {L"<r><aCDEaCDEaCDEaCDE>", L"</aCDEaCDEaCDEaCDE></r>"},
    {L"<a></a", L"></a>"},
    {L"<r><a><C><D><E><a>", L"</C></r>"},
    {L"</", L">"},
    {L"<", L"></a>"},
    {L"<!", L"><a/>"},
    {L"<1", L"'> <a/>"},
    {L"<a/><1==", L"'>"},
    {L"<!--", L"--><a/>"},
    {L"<a><!--", L"--></a>"},
    {L"<![C", L"]]><a/>"},
    {L"<a><![CDATA[", L"]]></a>"},
    {L"<?", L"?><a/>"},
    {L"<a><?a", L"?></a>"},
    {L"<!D", L"><a/>"},
    {L"<!DOCTYPE a [", L"]><a/>"},
    {L"<!D <a ==", L"'>><a/>"},
    {L"<!D <!--", L"--> > <a/>"},
    {L"<!D <!-", L"> ><a/>"},
    {L"<!D <!E '", L"'> <?a?> > <a/>"},
    {L"<!E", L"\"><a/>"},
};

std::wstring Repeated(const std::wstring& piece, std::size_t length)
{
    std::wstring text;
    while (text.size() < length)
        text += piece;
    return text;
}

std::size_t NextPrime(std::size_t number)
{
    const auto isPrime = [&] {
        for (std::size_t i = 2; i * i <= number; ++i) {
            if (number % i == 0)
                return false;
        }
        return true;
    };
    while (!isPrime())
        ++number;
    return number;
}

} // namespace

void XmlExhaustiveTexts::All(std::size_t most)
{
    for (std::size_t length = 0; length <= most; ++length)
        Vary(L"", length, L"");
    Vary(L"", most - 1, room);
}

void XmlExhaustiveTexts::Framed(std::size_t most)
{
    for (const auto& frame : frames) {
        const std::wstring before = frame[0];
        const std::wstring behind = frame[1];
        for (std::size_t length = 0; length <= most; ++length)
            Vary(before, length, behind);
        Vary(before, most, behind + room);
        for (std::size_t front : {61, 62})
            Vary(std::wstring(front - before.size(), L'x') + before, most - 1, behind + room);
    }
    Vary(L"<a", most + 1, L">x</a>" + room);
}

void XmlExhaustiveTexts::Edges(std::size_t window)
{
    for (const auto& frame : frames) {
        const std::wstring before = frame[0];
        for (const wchar_t* inside : {L"", L"'>", L" = \"/\""})
            Repeat(before + inside + frame[1], window);
        for (std::size_t length = 0; length < 140; ++length)
            Stretch(before, frame[1] + room, length);
        for (std::size_t length = 1024; length <= window; length *= 2)
            Stretch(before, frame[1], length + length / 3);
    }
}

void XmlExhaustiveTexts::Vary(const std::wstring& before, std::size_t length,
                              const std::wstring& behind)
{
    std::wstring text = before + std::wstring(length, alphabet[0]) + behind;
    for (std::uint64_t number = 0; number >> (4 * length) == 0 && differing.empty(); ++number) {
        for (std::size_t i = 0; i < length; ++i)
            text[before.size() + i] = alphabet[number >> (4 * i) & 15];
        Compare(text);
    }
}

// A piece whose length is a prime number, repeated often enough, lies across the boundaries of
// windows of any other length at each of its characters.
void XmlExhaustiveTexts::Repeat(const std::wstring& construct, std::size_t window)
{
    std::wstring piece = construct;
    piece.resize(NextPrime(construct.size() + 2), L'x');
    const std::wstring text = Repeated(piece, window * piece.size());
    Compare(text);
    for (std::size_t edge = 64; edge <= window; edge += edge < 256 ? 64 : 1024 - edge % 1024)
        for (std::size_t end = edge - 2; end <= edge + 2; ++end)
            Compare(text.substr(0, end));
}

void XmlExhaustiveTexts::Stretch(const std::wstring& before, const std::wstring& behind,
                                 std::size_t length)
{
    for (const wchar_t c : alphabet + L"\n\u4E3C\uFF3E")
        Compare(before + std::wstring(length, c) + behind);
}

void XmlExhaustiveTexts::Compare(const std::wstring& text)
{
    if (!differing.empty())
        return;
    ++count;
    if (!IsDocument(text, count % 3 == 0) || (count % 5 == 0 && !IsMarkup(text)))
        differing = text;
}

bool XmlExhaustiveTexts::IsDocument(const std::wstring& text, bool ignoreCase)
{
    const LiteralIndex literal = ParseLiterally(text, ignoreCase);
    document.SetDocumentFlags(ignoreCase ? XmlDocIgnoreCase : 0);
    bool same = document.LoadText(text.c_str()) == literal.wellFormed &&
                document.GetDocumentText() == text &&
                document.GetErrorText() == literal.errorText &&
                static_cast<std::size_t>(document.GetRecordCount()) == literal.records.size();
    for (std::int32_t i = 0; same && i < document.GetRecordCount(); ++i)
        same = std::memcmp(&document.GetRecord(i), &literal.records[static_cast<std::size_t>(i)],
                           sizeof(MXmlElementRecord)) == 0;
    return same;
}

// Put into an element, a text gives the records of a parse of its own, behind those of the element
// and of the stand-in that it is parsed under. What is ill-formed is not shifted as a whole.
bool XmlExhaustiveTexts::IsMarkup(const std::wstring& text)
{
    const std::wstring opening = L"<r>";
    LiteralIndex literal = ParseLiterally(text, false);
    const bool wellFormed = !literal.records[0].Has(XmlElementDocumentIllFormed);
    document.SetDocumentFlags(0);
    document.LoadText((opening + L"</r>").c_str());
    document.FindElement();
    bool same = (document.ReplaceInnerMarkup(text.c_str()) == 1) == wellFormed &&
                document.GetDocumentText() == opening + text + L"</r>" &&
                static_cast<std::size_t>(document.GetRecordCount()) == literal.records.size() + 2;
    for (std::size_t i = 1; same && wellFormed && i < literal.records.size(); ++i) {
        MXmlElementRecord& record = literal.records[i];
        record.start += static_cast<std::int32_t>(opening.size());
        record.SetLevel(record.Level() + 1);
        record.parent += record.parent == 0 ? 1 : 2;
        for (std::int32_t* link :
             {&record.firstChild, &record.nextSibling, &record.previousSibling})
            *link += *link == 0 ? 0 : 2;
        same = std::memcmp(&document.GetRecord(static_cast<std::int32_t>(i) + 2), &record,
                           sizeof(record)) == 0;
    }
    return same;
}
