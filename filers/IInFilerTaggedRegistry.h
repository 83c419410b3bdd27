#pragma once

#include "filers/IInFilerTagged.h"
#include "filers/RegistryPlace.h"

#include <cstdint>

/// Reads values from the Windows registry, where an `IOutFilerTaggedRegistry` has filed them.
/// Values and groups are found by name, in any order and any number of times.
///
///     IInFilerTaggedRegistry settings(L"Survey", false);
///     unsigned int count;
///     settings.ReadUInt32(L"FileCount", &count, 0);
///
/// There is no record of the type filed. A numeric read takes the low bits of any value of up to
/// four bytes, missing bytes counting as 0; only `ReadChar` asks for REG_DWORD. `ReadString` takes
/// the bytes of any value for text, up to the first zero unit or their end. A floating number is
/// read from text in plain decimal form; infinities and not-a-number are not known here.
class IInFilerTaggedRegistry : public IInFilerTagged
{
public:
    /// Starts out under the current user. With `createMissing`, looking for a value makes the keys
    /// on the way to it; without, the registry is never changed.
    IInFilerTaggedRegistry(const MString& areaName, bool createMissing);

    bool ReadString(const MString& tag, MString& result, const MString& defaultValue) override;

    /// A value of another type than REG_DWORD, up to four bytes long, answers false and leaves its
    /// low byte in the result.
    bool ReadChar(const MString& tag, char* result, char defaultValue) override;
    bool ReadDouble(const MString& tag, double* result, double defaultValue) override;
    bool ReadFloat(const MString& tag, float* result, float defaultValue) override;
    bool ReadBool(const MString& tag, bool* result, bool defaultValue) override;
    bool ReadByte(const MString& tag, unsigned char* result, unsigned char defaultValue) override;
    bool ReadUInt16(const MString& tag, unsigned short* result,
                    unsigned short defaultValue) override;
    bool ReadInt16(const MString& tag, short* result, short defaultValue) override;
    bool ReadUInt32(const MString& tag, unsigned int* result, unsigned int defaultValue) override;
    bool ReadInt32(const MString& tag, int* result, int defaultValue) override;

    /// Always true and touches no key: whether the group exists shows when a value is read.
    bool BeginGroup(const MString& tag) override;

    /// False, and nothing changes, when no group is open, which is an error in the program.
    bool EndGroup() override;

    /// Always false, with the result left alone: a document has no place in the registry.
    bool ReadDocument(const MString& tag, MString& result) override;

    /// Selects the root for what follows: 0 the current user, 1 the local machine. Any other
    /// location answers false and changes nothing.
    bool SetRootKey(int location);

private:
    RegistryKey OpenGroup();
    static bool QueryText(HKEY__* key, const MString& tag, MString& text);
    bool QueryNumber(const MString& tag, std::uint32_t* number, std::uint32_t* type);

    template <class T>
    bool ReadNumber(const MString& tag, T* result, T defaultValue);

    template <class T>
    bool ScanNumber(const MString& tag, const wchar_t* format, T* result, T defaultValue);

    RegistryPlace place;
    bool createMissing;
};
