#pragma once

#include <cstdint>
#include <string>

/// How something is added, and how text is escaped.
enum MXmlAddFlag : std::uint32_t {
    /// `AddElement`: the data goes in as a CDATA section.
    XmlAddCdata = 0x1,
    /// No line break behind the new node. The first node between two tags with nothing in between
    /// has one in front all the same.
    XmlAddNoLineBreak = 0x2,
    /// `AddElement` without data writes " />" instead of "/>".
    XmlAddSpaceSlash = 0x4,
    /// Escaping leaves well-formed references as they are.
    XmlAddKeepReferences = 0x8,
    /// `AddElement`: a start tag with no end tag and no data.
    XmlAddNoEndTag = 0x10,
    /// `AddElement`: the data is markup, and goes in unchanged, also if it is empty.
    XmlAddMarkup = 0x20,
    /// Escaping also covers the two quote characters.
    XmlAddEscapeQuotes = 0x100,
    /// The new text replaces the content of the element. Set by the engine.
    XmlAddReplaceContent = 0x1000,
    /// In front of the current node and not behind it.
    XmlAddBefore = 0x2000,
    /// `AddElement`: among the children of the current element, at its current child. The new one
    /// becomes the current child; the current element stays.
    XmlAddChild = 0x4000
};

/// A request to put a node into the text, and where it went.
struct MXmlInsertRequest {
    /// An `MXmlNodeType`.
    std::int32_t type;
    /// Before: the current node's offset. After: the new node's.
    std::int32_t offset;
    /// Before: the current node's length, 0 on an element. After: the new node's.
    std::int32_t length;
    /// `MXmlAddFlag` bits.
    std::uint32_t flags;
    /// Before: the node. After: all that was spliced in.
    std::wstring text;
};
