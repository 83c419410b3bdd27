#pragma once

#include "xml/scan/MXmlTokenCursor.h"
#include <string>

/// Types of nodes, as a position or a scan reports them.
enum MXmlNodeType : std::int32_t {
    XmlNodeElement = 1,
    XmlNodeText = 2,
    /// White space only, up to the next "<".
    XmlNodeWhitespace = 4,
    XmlNodeCdata = 8,
    XmlNodeInstruction = 16,
    XmlNodeComment = 32,
    XmlNodeDoctype = 64,
    XmlNodeLoneEndTag = 128,

    // What only a scan reports.
    XmlScanEndTag = 0,
    XmlScanIllFormed = -1
};

/// In `MXmlNodeScan::flags`: a start tag closed by "/>".
constexpr std::uint32_t XmlScanEmptyElement = 0x10000;

/// What one step of the scanner found. The name of a start or end tag stays in the text, as the
/// token of the cursor.
struct MXmlNodeScan {
    /// An `MXmlNodeType`.
    std::int32_t type;
    /// Offset of the node.
    std::int32_t start;
    /// Characters consumed.
    std::int32_t length;
    /// `XmlScanEmptyElement` or 0.
    std::uint32_t flags;
    /// What is wrong with an ill-formed node; not set for others.
    const wchar_t* finding;

    /// Offset right behind the node.
    std::int32_t End() const { return start + length; }

    /// The finding in words, with the offset of the node.
    std::wstring Message() const;
};

/// Scans the node at `cursor.next`, in front of the end of the text, moves `next` behind it and
/// answers its type. A ">" in character data ends a text node. Never looks at a character twice,
/// whatever the text.
std::int32_t ScanXmlNode(MXmlTokenCursor& cursor, MXmlNodeScan& scan);

/// The ">" that ends the start tag whose name begins there, or the end of the text.
const wchar_t* FindXmlTagEnd(const wchar_t* name, const wchar_t* textEnd);

/// Whether that "/", in front of the ">" of the start tag whose name begins there, makes it an
/// empty element's.
bool ClosesXmlElement(const wchar_t* name, const wchar_t* slash);
