#pragma once

#include "xml/document/MXmlDocumentText.h"
#include "xml/document/MXmlInsertRequest.h"
#include "xml/index/MXmlElementIndex.h"

/// One addition to a document: decides place and form of the new text, and splices it in. What it
/// changes of the index is the tags of a parent that was empty; to link the new element and to
/// shift offsets is for the caller. If it throws, nothing has changed.
class MXmlInsertion
{
public:
    /// Among the children of `parent`, at `sibling` or 0, or at the node that the request names.
    MXmlInsertion(MXmlDocumentText& documentText, MXmlElementIndex& elements, std::int32_t parent,
                  std::int32_t sibling, MXmlInsertRequest& request);

    /// Splices, and tells place and length of the new node in the request. Answers by how many
    /// characters the text has grown.
    std::int32_t Splice();

    /// The sibling behind which the new node stands since; 0 in front of all.
    std::int32_t Sibling() const { return sibling; }

private:
    bool Wants(MXmlAddFlag flag) const { return (request.flags & flag) != 0; }
    std::int32_t Offset() const;
    std::int32_t OffsetInParent() const;
    std::int32_t SkipLineBreak(std::int32_t offset) const;
    std::int32_t SiblingToLink() const;
    std::int32_t SpliceIntoEmpty();
    std::int32_t SpliceForContent();
    std::int32_t Replace(std::int32_t offset, std::int32_t count);

    MXmlDocumentText& text;
    MXmlElementIndex& index;
    MXmlInsertRequest& request;
    std::int32_t parent;
    std::int32_t sibling;
    bool intoEmpty;
    // Also true of an empty element, unless a packed end tag says otherwise.
    bool noContent;
    bool breaksLine;
};
