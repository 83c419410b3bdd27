#include "filers/MFilerTaggedPair.h"

#include "filers/IInFilerTagged.h"
#include "filers/IOutFilerTagged.h"

bool MFilerTaggedPair::BeginGroup(const MString& tag)
{
    const bool begunIn = !in || in->BeginGroup(tag);
    const bool begunOut = !out || out->BeginGroup(tag);
    return begunIn && begunOut;
}

bool MFilerTaggedPair::EndGroup()
{
    const bool endedIn = !in || in->EndGroup();
    const bool endedOut = !out || out->EndGroup();
    return endedIn && endedOut;
}

bool MFilerTaggedPair::ReadString(const MString& tag, MString& result, const MString& defaultValue)
{
    return in && in->ReadString(tag, result, defaultValue);
}

bool MFilerTaggedPair::ReadUInt32(const MString& tag, unsigned int* result,
                                  unsigned int defaultValue)
{
    return in && in->ReadUInt32(tag, result, defaultValue);
}

bool MFilerTaggedPair::WriteString(const MString& tag, const MString& value)
{
    return out && out->WriteString(tag, value);
}

bool MFilerTaggedPair::WriteUInt32(const MString& tag, unsigned int value)
{
    return out && out->WriteUInt32(tag, value);
}
