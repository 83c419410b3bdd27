#pragma once

#include "xml/MXmlMarkup.h"
#include <string>

/// Families of texts, each text compared with what the literal parser makes of it, as a document
/// and as markup put into one. A family ends with the first text that differs.
class XmlExhaustiveTexts
{
public:
    /// All texts of up to so many characters, out of 16 that the rules tell apart; but for the
    /// longest also in front of more text.
    void All(std::size_t most);

    /// The same inside of tags, values, comments, doctypes, elements and so on, near the front and
    /// around the 64th character.
    void Framed(std::size_t most);

    /// Every construct across every boundary of windows of any length up to `window`, at each of
    /// its characters; what ends there; and what is longer than a window.
    void Edges(std::size_t window);

    /// Whether the engine makes of a text what the rules, taken literally, make of it.
    bool IsDocument(const std::wstring& text, bool ignoreCase = false);

    /// How many texts were compared.
    std::uint64_t Count() const { return count; }

    /// The text that differs, empty if none does.
    const std::wstring& Differing() const { return differing; }

private:
    void Vary(const std::wstring& before, std::size_t length, const std::wstring& behind);
    void Repeat(const std::wstring& construct, std::size_t window);
    void Stretch(const std::wstring& before, const std::wstring& behind, std::size_t length);
    void Compare(const std::wstring& text);
    bool IsMarkup(const std::wstring& text);

    MXmlMarkup document;
    std::uint64_t count = 0;
    std::wstring differing;
};
