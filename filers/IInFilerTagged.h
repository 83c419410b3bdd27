#pragma once

#include "foundation/MLocale.h"

/// Reads what an `IOutFilerTagged` has filed: typed values by name ("tag"), with nesting.
///
///     void Load(IInFilerTagged& filer)
///     {
///         if (!filer.BeginGroup(L"Window"))
///             return;
///         filer.ReadInt32(L"Left", &left, 100);
///         filer.ReadBool(L"Open", &open, true);
///         filer.EndGroup();
///     }
///
/// A read answers true when there is a value under the tag, in the right family, and it could be
/// converted. Otherwise the result is the default, which is put there before anything is looked up;
/// only a number that is there and cannot be converted can leave something else (see the classes
/// behind it). A null result answers false. Families join the widths: what was written as a 16-bit
/// number can be read as one of 32 bits, and the other way round if it fits; the same goes for
/// float and double.
///
/// Bad data never raises anything; only exhausted memory and over-long texts leave by exceptions.
/// A filer is used by one thread at a time.
class IInFilerTagged
{
public:
    virtual ~IInFilerTagged();
    IInFilerTagged(const IInFilerTagged&) = delete;
    IInFilerTagged& operator=(const IInFilerTagged&) = delete;

    /// @{
    /// Reads the value under `tag` into `result`, or puts `defaultValue` there and answers false.
    virtual bool ReadString(const MString& tag, MString& result, const MString& defaultValue) = 0;
    virtual bool ReadChar(const MString& tag, char* result, char defaultValue) = 0;
    virtual bool ReadDouble(const MString& tag, double* result, double defaultValue) = 0;
    virtual bool ReadFloat(const MString& tag, float* result, float defaultValue) = 0;
    virtual bool ReadBool(const MString& tag, bool* result, bool defaultValue) = 0;
    virtual bool ReadByte(const MString& tag, unsigned char* result,
                          unsigned char defaultValue) = 0;
    virtual bool ReadUInt16(const MString& tag, unsigned short* result,
                            unsigned short defaultValue) = 0;
    virtual bool ReadInt16(const MString& tag, short* result, short defaultValue) = 0;
    virtual bool ReadUInt32(const MString& tag, unsigned int* result,
                            unsigned int defaultValue) = 0;
    virtual bool ReadInt32(const MString& tag, int* result, int defaultValue) = 0;
    /// @}

    /// Opens the nested object under the tag: reads look into it, up to the `EndGroup` that belongs
    /// to it.
    virtual bool BeginGroup(const MString& tag) = 0;

    /// Goes back to what encloses the group. Once for each `BeginGroup` that answered true.
    virtual bool EndGroup() = 0;

    /// Reads what `WriteDocument` filed under the tag back into the text of a document. False where
    /// there is none, or the filer has no place for one.
    virtual bool ReadDocument(const MString& tag, MString& result) = 0;

protected:
    /// Takes a copy of the classic locale.
    IInFilerTagged();

    /// The locale of all numbers that are read.
    const MLocale locale;
};
