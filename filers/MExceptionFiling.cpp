// How the chain of an exception files itself, one group an error, and how it comes back: from a
// filer, or unfolded from the text that an error carries.

#include "filers/FiledObject.h"
#include "foundation/MException.h"

namespace
{

const wchar_t exceptionKind[] = L"Exception";
const wchar_t errorTag[] = L"Error";

} // namespace

bool MException::Write(MFilerTaggedPair& filer, const MString& tagName) const
{
    return WriteObject(filer, tagName, exceptionKind,
                       [this](MFilerTaggedPair& to) { return WriteErrors(to); });
}

bool MException::Read(MFilerTaggedPair& filer, const MString& tagName,
                      const MException& defaultException)
{
    return ReadObject(filer, tagName, exceptionKind,
                      [&](MFilerTaggedPair& from) { return ReadErrors(from, defaultException); });
}

bool MException::WriteErrors(MFilerTaggedPair& filer) const
{
    bool written = FiledFormFor(filer) == FiledForm::Group;
    if (!chain)
        return written;
    for (const std::unique_ptr<MError>& error : *chain)
        if (error)
            written = written && error->Write(filer, errorTag);
    return written;
}

// The registry would find the same error each time, and this would not end.
bool MException::ReadErrors(MFilerTaggedPair& filer, const MException&)
{
    if (FiledFormFor(filer) != FiledForm::Group)
        return false;
    chain.reset(new Chain);
    for (;;) {
        MError error;
        if (!error.Read(filer, errorTag, error))
            return true;
        AddError(error);
    }
}

// Into a chain that is empty. A text that is no filed chain is dropped.
void MException::Unfold(const MString& chainText)
{
    MException filed;
    const bool isChain = ReadObject(chainText, exceptionKind, [&](MFilerTaggedPair& from) {
        return filed.ReadErrors(from, filed);
    });
    if (isChain)
        TakeFrom(filed);
}
