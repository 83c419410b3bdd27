// How an error files itself: a group with its Code, and in it a group for each parameter. What it
// is besides, its class above all, is not filed.

#include "filers/FiledObject.h"
#include "filers/MFilerTaggedPair.h"
#include "foundation/MError.h"

namespace
{

const wchar_t errorKind[] = L"Error";
const wchar_t codeTag[] = L"Code";
const wchar_t parameterTag[] = L"Parameter";
const wchar_t nameTag[] = L"Name";
const wchar_t valueTag[] = L"Value";

// A failure leaves the group open; so do the ones below.
bool WriteParameter(MFilerTaggedPair& filer, const MString& name, const MString& value)
{
    return filer.BeginGroup(parameterTag) && filer.WriteString(nameTag, name) &&
           filer.WriteString(valueTag, value) && filer.EndGroup();
}

bool WriteBody(MFilerTaggedPair& filer, const MError& error)
{
    bool written = filer.WriteString(codeTag, error.GetCode());
    for (const MError::Parameters::value_type& parameter : error.GetParameters())
        written = written && WriteParameter(filer, parameter.first, parameter.second);
    return written;
}

bool ReadParameter(MFilerTaggedPair& filer, MString& name, MString& value)
{
    return filer.BeginGroup(parameterTag) && filer.ReadString(nameTag, name, MString()) &&
           filer.ReadString(valueTag, value, MString()) && filer.EndGroup();
}

// Whatever ends the list of parameters ends it without a word.
void ReadParameters(MFilerTaggedPair& filer, MError::Parameters& parameters)
{
    for (;;) {
        MString name;
        MString value;
        if (!ReadParameter(filer, name, value))
            return;
        parameters.emplace(name, value);
    }
}

} // namespace

bool MError::Write(MFilerTaggedPair& filer, const MString& tagName) const
{
    return WriteObject(filer, tagName, errorKind,
                       [this](MFilerTaggedPair& to) { return WriteBody(to, *this); });
}

bool MError::Read(MFilerTaggedPair& filer, const MString& tagName, const MError&)
{
    return ReadObject(filer, tagName, errorKind, [this](MFilerTaggedPair& from) {
        code = MString();
        parameters.clear();
        if (!from.ReadString(codeTag, code, MString()))
            return false;
        ReadParameters(from, parameters);
        return true;
    });
}
