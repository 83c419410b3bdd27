#include "filers/FiledObject.h"

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"

namespace
{

const wchar_t rootTag[] = L"ExceptionChain";

bool InGroup(MFilerTaggedPair& filer, const MString& tag, const FiledBody& body)
{
    if (!filer.BeginGroup(tag))
        return false;
    const bool worked = body(filer);
    return filer.EndGroup() && worked;
}

bool WriteText(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
               const FiledBody& body)
{
    MOutFilerTaggedXml document(rootTag, nullptr);
    MFilerTaggedPair writer(nullptr, &document);
    if (!InGroup(writer, kind, body))
        return false;
    MString text;
    document.GetDocumentText(&text);
    return filer.WriteString(tag, text);
}

bool ReadText(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
              const FiledBody& body)
{
    MString text;
    if (!filer.ReadString(tag, text, MString()))
        return false;
    return ReadObject(text, kind, body);
}

} // namespace

FiledForm FiledFormFor(const MFilerTaggedPair& filer)
{
    const bool fromRegistry = dynamic_cast<const IInFilerTaggedRegistry*>(filer.in) != nullptr;
    const bool toRegistry = dynamic_cast<const IOutFilerTaggedRegistry*>(filer.out) != nullptr;
    if (filer.in && filer.out && fromRegistry != toRegistry)
        return FiledForm::None;
    return fromRegistry || toRegistry ? FiledForm::OneText : FiledForm::Group;
}

bool WriteObject(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
                 const FiledBody& body)
{
    switch (FiledFormFor(filer)) {
    case FiledForm::Group:
        return InGroup(filer, tag, body);
    case FiledForm::OneText:
        return WriteText(filer, tag, kind, body);
    default:
        return false;
    }
}

bool ReadObject(MFilerTaggedPair& filer, const MString& tag, const wchar_t* kind,
                const FiledBody& body)
{
    switch (FiledFormFor(filer)) {
    case FiledForm::Group:
        return InGroup(filer, tag, body);
    case FiledForm::OneText:
        return ReadText(filer, tag, kind, body);
    default:
        return false;
    }
}

bool ReadObject(const MString& documentText, const wchar_t* kind, const FiledBody& body)
{
    MInFilerTaggedXml document(documentText, rootTag, nullptr);
    MFilerTaggedPair reader(&document, nullptr);
    return InGroup(reader, kind, body);
}
