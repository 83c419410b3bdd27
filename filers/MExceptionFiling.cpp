// How the chain of an exception files itself, one group an error, and how it comes back: from a
// filer, or unfolded from the text that an error carries.

#include "filers/FiledGroup.h"
#include "filers/MInFilerTaggedXml.h"
#include "foundation/MException.h"

namespace
{

const wchar_t chainTag[] = L"ExceptionChain";
const wchar_t exceptionTag[] = L"Exception";
const wchar_t errorTag[] = L"Error";

} // namespace

bool MException::Write(MFilerTaggedPair& filer, const MString& tagName) const
{
    return InFiledGroup(filer, tagName, [&] { return WriteErrors(filer); });
}

bool MException::WriteErrors(MFilerTaggedPair& filer) const
{
    if (!chain)
        return true;
    bool written = true;
    for (const std::unique_ptr<MError>& error : *chain)
        if (error)
            written = written && error->Write(filer, errorTag);
    return written;
}

bool MException::ReadErrors(MFilerTaggedPair& filer, const MException&)
{
    chain.reset(new Chain);
    for (;;) {
        MError error;
        if (!error.Read(filer, errorTag, error))
            return true;
        AddError(error);
    }
}

// A text that is no filed chain is dropped.
void MException::Unfold(const MString& chainText)
{
    MException filed;
    MInFilerTaggedXml in(chainText, chainTag, nullptr);
    MFilerTaggedPair filer(&in, nullptr);
    if (!InFiledGroup(filer, exceptionTag, [&] { return filed.ReadErrors(filer, filed); }))
        return;
    if (filed.chain)
        for (const std::unique_ptr<MError>& error : *filed.chain)
            if (error)
                AddError(*error);
}
