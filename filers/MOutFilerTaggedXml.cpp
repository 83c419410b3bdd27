#include "filers/MOutFilerTaggedXml.h"

#include "filers/FiledDocument.h"
#include "filers/XmlName.h"
#include "xml/MXmlMarkup.h"

#include <cmath>
#include <cstdio>
#include <sstream>

namespace
{

// Digits behind the point.
const int floatPrecision = 8;
const int doublePrecision = 15;

/// The number as a stream prints it in scientific form. No stream is asked, since the library's
/// sets the locale of the whole process while it prints a floating number, and other threads
/// notice.
std::wstring ScientificText(double value, int precision)
{
    char text[40];
    const int length = std::snprintf(text, sizeof text, "%.*e", precision, value);
    const std::size_t point = std::signbit(value) ? 2 : 1;
    if (std::isfinite(value))
        text[point] = '.'; // whatever the process takes for it
    return std::wstring(text, text + length);
}

} // namespace

MOutFilerTaggedXml::MOutFilerTaggedXml(const wchar_t* rootTag, const wchar_t* nameSpace)
{
    if (!IsXmlName(rootTag))
        return;
    document.reset(new MXmlMarkup);
    StartFiledDocument(*document, rootTag);
    if (nameSpace && *nameSpace)
        document->SetAttribute(document->GetMainIndex(), L"xmlns", nameSpace);
    document->EnterElement();
}

MOutFilerTaggedXml::~MOutFilerTaggedXml() = default;

// The unit is the byte: what a stream makes of a byte above 127 can depend on the machine's code
// page.
bool MOutFilerTaggedXml::WriteChar(const MString& tag, char value)
{
    return WriteStreamed(tag, ValueFamily::Char,
                         static_cast<wchar_t>(static_cast<unsigned char>(value)));
}

bool MOutFilerTaggedXml::WriteString(const MString& tag, const MString& value)
{
    return WriteText(tag, ValueFamily::String, value.c_str());
}

bool MOutFilerTaggedXml::WriteDouble(const MString& tag, double value)
{
    return WriteText(tag, ValueFamily::Float, ScientificText(value, doublePrecision).c_str());
}

bool MOutFilerTaggedXml::WriteFloat(const MString& tag, float value)
{
    const double widened = static_cast<double>(value);
    return WriteText(tag, ValueFamily::Float, ScientificText(widened, floatPrecision).c_str());
}

bool MOutFilerTaggedXml::WriteBool(const MString& tag, bool value)
{
    return WriteStreamed(tag, ValueFamily::Bool, static_cast<unsigned short>(value));
}

bool MOutFilerTaggedXml::WriteByte(const MString& tag, unsigned char value)
{
    return WriteStreamed(tag, ValueFamily::Byte, static_cast<unsigned short>(value));
}

bool MOutFilerTaggedXml::WriteUInt16(const MString& tag, unsigned short value)
{
    return WriteStreamed(tag, ValueFamily::UInt, value);
}

bool MOutFilerTaggedXml::WriteInt16(const MString& tag, short value)
{
    return WriteStreamed(tag, ValueFamily::Int, value);
}

bool MOutFilerTaggedXml::WriteUInt32(const MString& tag, unsigned int value)
{
    return WriteStreamed(tag, ValueFamily::UInt, value);
}

bool MOutFilerTaggedXml::WriteInt32(const MString& tag, int value)
{
    return WriteStreamed(tag, ValueFamily::Int, value);
}

bool MOutFilerTaggedXml::BeginGroup(const MString& tag)
{
    if (!Takes(tag))
        return false;
    document->AddElement(tag.c_str(), nullptr, 0);
    return document->EnterElement();
}

bool MOutFilerTaggedXml::EndGroup()
{
    return LeaveGroup(document.get());
}

bool MOutFilerTaggedXml::WriteDocument(const MString& tag, const MString& text)
{
    MXmlMarkup embedded;
    if (!Takes(tag) || !embedded.LoadText(text.c_str()))
        return false;
    embedded.FindElement();
    const std::wstring content = embedded.GetInnerMarkup(embedded.GetMainIndex());
    return document->AddElement(tag.c_str(), content.c_str(), XmlAddMarkup);
}

bool MOutFilerTaggedXml::GetDocumentText(MString* result) const
{
    if (!result || !document)
        return false;
    *result = document->GetDocumentText().c_str();
    return true;
}

template <class T>
bool MOutFilerTaggedXml::WriteStreamed(const MString& tag, const wchar_t* family, T value)
{
    std::wostringstream text;
    text.exceptions(std::ios_base::badbit); // a lack of memory must not cut the text short
    text.imbue(locale.GetStreamLocale());
    text << value;
    return WriteText(tag, family, text.str().c_str());
}

bool MOutFilerTaggedXml::WriteText(const MString& tag, const wchar_t* family, const wchar_t* text)
{
    if (!Takes(tag))
        return false;
    return document->AddElement(tag.c_str(), text, 0, valueFamilyAttribute, family);
}

/// Another tag would make a document that nobody can read.
bool MOutFilerTaggedXml::Takes(const MString& tag) const
{
    return document && IsXmlName(tag.c_str());
}
