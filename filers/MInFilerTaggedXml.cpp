#include "filers/MInFilerTaggedXml.h"

#include "filers/FiledDocument.h"
#include "xml/MXmlMarkup.h"

#include <sstream>

namespace
{

const wchar_t lookAhead[] = L""; // the position to return to when a search fails

const wchar_t embeddedRootTag[] = L"MFilerTaggedXml";

} // namespace

MInFilerTaggedXml::MInFilerTaggedXml(const MString& documentText, const wchar_t* rootTag,
                                     const wchar_t* nameSpace)
    : document(new MXmlMarkup)
{
    if (!Open(documentText, rootTag, nameSpace))
        document.reset();
}

MInFilerTaggedXml::~MInFilerTaggedXml() = default;

bool MInFilerTaggedXml::Open(const MString& text, const wchar_t* rootTag, const wchar_t* nameSpace)
{
    if (!document->LoadText(text.c_str()) || !document->FindElement(rootTag))
        return false;
    const bool named = nameSpace && *nameSpace;
    if (named && document->GetAttribute(document->GetMainIndex(), L"xmlns") != nameSpace)
        return false;
    return document->EnterElement();
}

bool MInFilerTaggedXml::ReadString(const MString& tag, MString& result, const MString& defaultValue)
{
    result = defaultValue;
    return FindValue(tag, ValueFamily::String, result);
}

bool MInFilerTaggedXml::ReadChar(const MString& tag, char* result, char defaultValue)
{
    return ReadStreamed<wchar_t>(tag, ValueFamily::Char, result, defaultValue);
}

bool MInFilerTaggedXml::ReadDouble(const MString& tag, double* result, double defaultValue)
{
    return ReadFloating(tag, result, defaultValue);
}

bool MInFilerTaggedXml::ReadFloat(const MString& tag, float* result, float defaultValue)
{
    return ReadFloating(tag, result, defaultValue);
}

bool MInFilerTaggedXml::ReadBool(const MString& tag, bool* result, bool defaultValue)
{
    return ReadStreamed<unsigned short>(tag, ValueFamily::Bool, result, defaultValue);
}

bool MInFilerTaggedXml::ReadByte(const MString& tag, unsigned char* result,
                                 unsigned char defaultValue)
{
    return ReadStreamed<unsigned short>(tag, ValueFamily::Byte, result, defaultValue);
}

bool MInFilerTaggedXml::ReadUInt16(const MString& tag, unsigned short* result,
                                   unsigned short defaultValue)
{
    return ReadStreamed<unsigned short>(tag, ValueFamily::UInt, result, defaultValue);
}

bool MInFilerTaggedXml::ReadInt16(const MString& tag, short* result, short defaultValue)
{
    return ReadStreamed<short>(tag, ValueFamily::Int, result, defaultValue);
}

bool MInFilerTaggedXml::ReadUInt32(const MString& tag, unsigned int* result,
                                   unsigned int defaultValue)
{
    return ReadStreamed<unsigned int>(tag, ValueFamily::UInt, result, defaultValue);
}

bool MInFilerTaggedXml::ReadInt32(const MString& tag, int* result, int defaultValue)
{
    return ReadStreamed<int>(tag, ValueFamily::Int, result, defaultValue);
}

bool MInFilerTaggedXml::BeginGroup(const MString& tag)
{
    if (!FindGroup(tag))
        return false;
    return document->EnterElement();
}

bool MInFilerTaggedXml::EndGroup()
{
    return LeaveGroup(document.get());
}

bool MInFilerTaggedXml::ReadDocument(const MString& tag, MString& result)
{
    result = MString();
    if (!FindGroup(tag))
        return false;
    const std::wstring content = document->GetInnerMarkup(document->GetMainIndex());
    MXmlMarkup embedded;
    StartFiledDocument(embedded, embeddedRootTag);
    if (!embedded.ReplaceInnerMarkup(content.c_str())) {
        document->RestorePosition(lookAhead);
        return false;
    }
    result = embedded.GetDocumentText().c_str();
    return true;
}

/// Takes the very next element if it is the value asked for.
bool MInFilerTaggedXml::FindValue(const MString& tag, const wchar_t* family, MString& text)
{
    if (!document)
        return false;
    document->SavePosition(lookAhead);
    if (!document->FindElement())
        return false;
    if (!IsValue(tag, family)) {
        document->RestorePosition(lookAhead);
        return false;
    }
    text = document->GetElementData(document->GetMainIndex()).c_str();
    return true;
}

bool MInFilerTaggedXml::IsValue(const MString& tag, const wchar_t* family) const
{
    if (document->GetCurrentName() != tag.c_str())
        return false;
    return document->GetAttribute(document->GetMainIndex(), valueFamilyAttribute) == family;
}

/// Goes to the next element of that tag that is no value.
bool MInFilerTaggedXml::FindGroup(const MString& tag)
{
    if (!document)
        return false;
    document->SavePosition(lookAhead);
    while (document->FindElement(tag.c_str()))
        if (document->GetAttribute(document->GetMainIndex(), valueFamilyAttribute).empty())
            return true;
    document->RestorePosition(lookAhead);
    return false;
}

/// Reads what a stream takes for a `Streamed`, and cuts it down to the result. What the stream
/// leaves behind on a failure counts too.
template <class Streamed, class T>
bool MInFilerTaggedXml::ReadStreamed(const MString& tag, const wchar_t* family, T* result,
                                     T defaultValue)
{
    if (!result)
        return false;
    *result = defaultValue;
    MString text;
    if (!FindValue(tag, family, text))
        return false;
    std::wistringstream stream(text.c_str());
    stream.exceptions(std::ios_base::badbit);
    stream.imbue(locale.GetStreamLocale());
    Streamed value = static_cast<Streamed>(defaultValue);
    const bool converted = static_cast<bool>(stream >> value);
    *result = static_cast<T>(value);
    return converted;
}

template <class T>
bool MInFilerTaggedXml::ReadFloating(const MString& tag, T* result, T defaultValue)
{
    if (!result)
        return false;
    *result = defaultValue;
    MString text;
    double value = 0;
    if (!FindValue(tag, ValueFamily::Float, text) || !locale.ToDouble(text, &value))
        return false;
    *result = static_cast<T>(value);
    return true;
}
