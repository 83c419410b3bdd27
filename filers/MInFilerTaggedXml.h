#pragma once

#include "filers/IInFilerTagged.h"

#include <memory>

class MXmlMarkup;

/// Reads values from the text of an XML document that an `MOutFilerTaggedXml` has filed.
///
///     MInFilerTaggedXml filer(text, L"Settings", nullptr);
///     int count;
///     filer.ReadInt32(L"Count", &count, 0);
///
/// Values are read strictly in the order in which they were written. A read looks at the very next
/// element: when that has another tag or another family, the answer is false and the element stays
/// the next one. So values that an older document lacks get their defaults; but a value that nobody
/// asks for blocks all reads behind it in its group. Groups are searched for forward, and what lies
/// between is passed over; nothing is found backward. Tags are compared exactly.
///
/// A number that is there but cannot be converted has been passed, and answers false: the result is
/// then what a stream leaves behind (the nearest limit for a number that does not fit, 0 for a text
/// that is none, the default for an empty one), and for char, float and double the default. Text
/// behind a number is no failure. A byte is cut from a number, a char from a wide character, and
/// any number but 0 is true.
///
/// A document that is ill-formed anywhere, or has another root or name space, is not open
/// (`IsOpen`): every operation answers false, and reads give their defaults.
class MInFilerTaggedXml : public IInFilerTagged
{
public:
    /// A null or empty `rootTag` accepts any root. With a name space text that is neither null nor
    /// empty, the root's "xmlns" must be exactly that.
    MInFilerTaggedXml(const MString& documentText, const wchar_t* rootTag,
                      const wchar_t* nameSpace);
    ~MInFilerTaggedXml() override;

    /// Whether the document is there to be read: well-formed, and of that root and name space.
    bool IsOpen() const { return document != nullptr; }

    bool ReadString(const MString& tag, MString& result, const MString& defaultValue) override;

    /// White space is not read as a character, nor is a zero.
    bool ReadChar(const MString& tag, char* result, char defaultValue) override;

    /// Reads every form that `MLocale::ParseDouble` knows.
    bool ReadDouble(const MString& tag, double* result, double defaultValue) override;

    /// Reads a double and narrows it.
    bool ReadFloat(const MString& tag, float* result, float defaultValue) override;
    bool ReadBool(const MString& tag, bool* result, bool defaultValue) override;
    bool ReadByte(const MString& tag, unsigned char* result, unsigned char defaultValue) override;
    bool ReadUInt16(const MString& tag, unsigned short* result,
                    unsigned short defaultValue) override;
    bool ReadInt16(const MString& tag, short* result, short defaultValue) override;
    bool ReadUInt32(const MString& tag, unsigned int* result, unsigned int defaultValue) override;
    bool ReadInt32(const MString& tag, int* result, int defaultValue) override;

    /// Opens the next group of that tag, passing over whatever lies before it. False, with nothing
    /// passed, when there is none.
    bool BeginGroup(const MString& tag) override;

    /// Reading goes on behind the group, wherever it stopped inside.
    bool EndGroup() override;

    /// Searches as `BeginGroup` does. The text has the root tag "MFilerTaggedXml"; on failure it is
    /// empty.
    bool ReadDocument(const MString& tag, MString& result) override;

private:
    bool Open(const MString& text, const wchar_t* rootTag, const wchar_t* nameSpace);
    bool FindValue(const MString& tag, const wchar_t* family, MString& text);
    bool IsValue(const MString& tag, const wchar_t* family) const;
    bool FindGroup(const MString& tag);

    template <class Streamed, class T>
    bool ReadStreamed(const MString& tag, const wchar_t* family, T* result, T defaultValue);

    template <class T>
    bool ReadFloating(const MString& tag, T* result, T defaultValue);

    std::unique_ptr<MXmlMarkup> document;
};
