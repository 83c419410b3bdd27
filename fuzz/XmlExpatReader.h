#pragma once

#include <string>
#include <utility>
#include <vector>

/// An element as expat tells of it.
struct XmlExpatElement {
    std::wstring name;
    /// Those that stand in the tag.
    std::vector<std::pair<std::wstring, std::wstring>> attributes;
    /// Whether the doctype adds some.
    bool hasDefaults = false;
    bool hasChildren = false;
    /// Text and CDATA directly in it.
    std::wstring data;
};

/// Reads a whole document by expat.
class XmlExpatReader
{
public:
    explicit XmlExpatReader(const std::string& bytes);

    /// The elements in the order of their start tags.
    const std::vector<XmlExpatElement>& Elements() const { return elements; }

    /// Why it is refused, or empty.
    const std::string& Error() const { return error; }

    /// Whether `Decode` does: UTF-8, UTF-16 with a mark, and Latin-1.
    bool KnowsEncoding() const { return encoding != Other; }

    /// The text of the bytes that it was made for, by their mark and what they declare.
    std::wstring Decode(const std::string& bytes) const;

    /// The text of UTF-8.
    static std::wstring FromUtf8(const char* bytes, std::size_t length);

private:
    enum Encoding { Utf8, Utf16, Utf16Swapped, Latin1, Other };

    static Encoding EncodingOf(const std::string& bytes);
    static void OnStart(void* reader, const char* name, const char** attributes);
    static void OnEnd(void* reader, const char* name);
    static void OnText(void* reader, const char* text, int length);

    Encoding encoding;
    std::vector<XmlExpatElement> elements;
    std::vector<std::size_t> open;
    std::string error;
    void* parser = nullptr;
};
