#pragma once

#include "xml/scan/MXmlTokenCursor.h"
#include <string>

/// The text of a document, how it is cut, and the one way to splice it. Offsets and lengths count
/// characters. The index of an ill-formed document may name places outside the text; whatever is
/// asked for here is cut to what there is.
class MXmlDocumentText
{
public:
    /// Longest text, in characters.
    static constexpr std::size_t MaxLength = 0x7FFFFFFF;

    /// Throws `std::length_error` past `MaxLength`.
    static void CheckLength(std::size_t length);

    /// All of it. The reference is valid as long as the text's owner.
    const std::wstring& Characters() const { return characters; }

    /// In characters.
    std::int32_t Length() const { return static_cast<std::int32_t>(characters.size()); }

    /// Whether that is a place of the text itself.
    bool Owns(const wchar_t* source) const;

    /// Leaves the first `length` characters from a place of its own.
    void Keep(const wchar_t* source, std::size_t length) { characters.assign(source, length); }

    /// Becomes empty, with room for so many characters; who asked for it appends them.
    std::wstring& Empty(std::size_t length);

    /// Puts `text` in place of `count` characters that are there. Room grows by half, so that
    /// appending is cheap. Throws `std::length_error` past `MaxLength`; if it throws, nothing has
    /// changed.
    void Replace(std::int32_t offset, std::int32_t count, const std::wstring& text);

    /// The nearest place of the text; its end is one.
    std::int32_t Cut(std::int32_t offset) const;

    /// What stands there.
    std::wstring At(std::int32_t offset, std::int32_t length) const;

    /// The same with references resolved.
    std::wstring UnescapedAt(std::int32_t offset, std::int32_t length) const;

    /// The name token at or behind that place.
    std::wstring NameAt(std::int32_t offset) const;

    /// A cursor that reads on from there.
    MXmlTokenCursor CursorAt(std::int32_t offset, std::uint32_t documentFlags) const;

private:
    std::wstring characters;
};
