#pragma once

#include "filers/IOutFilerTagged.h"

#include <memory>

class MXmlMarkup;

/// Files values as the text of an XML document, in memory: each value becomes an element named by
/// its tag, with the value's text as content and its family in the attribute "type"; a group
/// becomes an element without that attribute.
///
///     MOutFilerTaggedXml filer(L"Settings", nullptr);
///     filer.WriteInt32(L"Count", 42);      // <Count type="int">42</Count>
///     filer.WriteString(L"Title", L"a<b"); // <Title type="string">a&lt;b</Title>
///     MString text;
///     filer.GetDocumentText(&text);
///
/// Values come out in the order of the calls, and a tag may come again. Numbers are written as the
/// classic locale has them: float in scientific form with 8 digits behind the point, double
/// with 15. The declaration says UTF-8, but the text is wide: who stores it owns the conversion.
/// A tag that is no name in the sense of XML, such as the empty one or one with a space, is
/// refused: the answer is false, and nothing is written. A write that an exception leaves for want
/// of memory has written nothing either.
class MOutFilerTaggedXml : public IOutFilerTagged
{
public:
    /// The root element's tag, and its "xmlns" unless `nameSpace` is null or empty. When the
    /// document cannot be set up, as for a tag that is no name, every operation answers false.
    MOutFilerTaggedXml(const wchar_t* rootTag, const wchar_t* nameSpace);
    ~MOutFilerTaggedXml() override;

    bool WriteChar(const MString& tag, char value) override;
    bool WriteString(const MString& tag, const MString& value) override;
    bool WriteDouble(const MString& tag, double value) override;
    bool WriteFloat(const MString& tag, float value) override;
    bool WriteBool(const MString& tag, bool value) override;
    bool WriteByte(const MString& tag, unsigned char value) override;
    bool WriteUInt16(const MString& tag, unsigned short value) override;
    bool WriteInt16(const MString& tag, short value) override;
    bool WriteUInt32(const MString& tag, unsigned int value) override;
    bool WriteInt32(const MString& tag, int value) override;
    bool BeginGroup(const MString& tag) override;

    /// One call too many leaves the root element, and filing goes on beside it; the text is then no
    /// document any more. False at the top.
    bool EndGroup() override;

    /// Files the content of the document's root element under the tag; the root's own tag and
    /// attributes are dropped. False, with nothing added, where the text is not well-formed.
    bool WriteDocument(const MString& tag, const MString& text) override;

    /// The whole document so far, also in the middle of a group. False for a null result, or when
    /// the document could not be set up.
    bool GetDocumentText(MString* result) const;

private:
    template <class T>
    bool WriteStreamed(const MString& tag, const wchar_t* family, T value);
    bool WriteText(const MString& tag, const wchar_t* family, const wchar_t* text);
    bool Takes(const MString& tag) const;

    std::unique_ptr<MXmlMarkup> document;
};
