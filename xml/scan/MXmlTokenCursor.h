#pragma once

#include <cstdint>

/// Document flag: names are compared without regard to the case of ASCII letters.
constexpr std::uint32_t XmlDocIgnoreCase = 0x8;

/// In `MXmlTokenCursor::flags`, beside the document flags: the current token was in quotes.
constexpr std::uint32_t XmlCursorQuoted = 0x8000;

/// A place in a text while tokens, attributes or nodes are read from it. The text belongs to the
/// caller, ends with a zero and must outlive the cursor.
struct MXmlTokenCursor {
    /// A fresh cursor, at the front of a text of `length` characters.
    MXmlTokenCursor(const wchar_t* source, std::int32_t length, std::uint32_t documentFlags)
        : text(source), textLength(length), flags(documentFlags)
    {
    }

    /// Characters of the current token, without quotes.
    std::int32_t TokenLength() const { return end - start + 1; }

    /// The current token's first character; no zero ends the token.
    const wchar_t* Token() const { return text + start; }

    /// The character where reading goes on.
    const wchar_t* Next() const { return text + next; }

    /// The zero that ends the text.
    const wchar_t* TextEnd() const { return text + textLength; }

    /// The offset of a character of the text.
    std::int32_t OffsetOf(const wchar_t* at) const { return static_cast<std::int32_t>(at - text); }

    /// Whether the current token was in quotes.
    bool Quoted() const { return (flags & XmlCursorQuoted) != 0; }

    /// Offset of the current token's first character.
    std::int32_t start = 0;
    /// Offset of its last character.
    std::int32_t end = -1;
    /// Where reading goes on.
    std::int32_t next = 0;
    /// The text, not owned.
    const wchar_t* text;
    /// Without the zero.
    std::int32_t textLength;
    /// Document flags (`XmlDocIgnoreCase`) and `XmlCursorQuoted`.
    std::uint32_t flags;
    /// Set by a match of `FindXmlAttribute`: where the white space before the name begins.
    std::int32_t matchStart = 0;
    /// Likewise: the length of that white space.
    std::int32_t matchSpace = 0;
};
