#pragma once

class IInFilerTagged;
class IOutFilerTagged;
class MString;

/// The filer that objects file themselves with: one to read from and one to write to, either of
/// which may be absent, so that one routine can serve both directions. Neither is owned, and both
/// must outlive the pair.
///
///     MFilerTaggedPair filer(nullptr, &out);
///     exception.Write(filer, L"Exception");
class MFilerTaggedPair
{
public:
    /// Either may be null.
    MFilerTaggedPair(IInFilerTagged* in, IOutFilerTagged* out) : in(in), out(out) {}

    /// Calls both filers, the one to read from first, whatever the first one answers. True unless
    /// one answered false, so also when there is none.
    bool BeginGroup(const MString& tag);

    /// Calls both filers as `BeginGroup` does.
    bool EndGroup();

    /// @{
    /// False without a filer for the direction; a read then leaves the result alone.
    bool ReadString(const MString& tag, MString& result, const MString& defaultValue);
    bool ReadUInt32(const MString& tag, unsigned int* result, unsigned int defaultValue);
    bool WriteString(const MString& tag, const MString& value);
    bool WriteUInt32(const MString& tag, unsigned int value);
    /// @}

    IInFilerTagged* in;   ///< to read from, or null
    IOutFilerTagged* out; ///< to write to, or null
};
