#pragma once

#include "filers/IOutFilerTagged.h"
#include "filers/RegistryPlace.h"

#include <cstdint>

/// Files values in the Windows registry, below the maker's key: the area is a key, a group a
/// sub-key and a tag the name of a value; the empty tag is a key's default value.
///
///     IOutFilerTaggedRegistry settings(L"Survey");
///     settings.WriteUInt32(L"FileCount", 12); // HKEY_CURRENT_USER\Software\Varek\Survey
///
/// A value is in the registry when the operation returns, and replaces what stood under its tag.
/// Numbers, bool and char are stored as REG_DWORD, the smaller ones extended to 32 bits; texts and
/// floating numbers as REG_SZ, with 14 digits behind the point for a double and 6 for a float. Keys
/// are made as values need them, so an empty group leaves nothing. A tag with a backslash reaches
/// deeper keys where it names a group. Under the local machine the place is
/// "Software\Wow6432Node\Varek" for every process.
///
/// Two filers may work on one area, also in two threads.
class IOutFilerTaggedRegistry : public IOutFilerTagged
{
public:
    /// Starts out under the current user.
    explicit IOutFilerTaggedRegistry(const MString& areaName);

    bool WriteChar(const MString& tag, char value) override;
    bool WriteString(const MString& tag, const MString& value) override;
    bool WriteDouble(const MString& tag, double value) override;
    bool WriteFloat(const MString& tag, float value) override;
    bool WriteBool(const MString& tag, bool value) override;
    bool WriteByte(const MString& tag, unsigned char value) override;
    bool WriteUInt16(const MString& tag, unsigned short value) override;
    bool WriteInt16(const MString& tag, short value) override;
    bool WriteUInt32(const MString& tag, unsigned int value) override;
    bool WriteInt32(const MString& tag, int value) override;

    /// Touches no key.
    bool BeginGroup(const MString& tag) override;

    /// False, and nothing changes, when no group is open, which is an error in the program.
    bool EndGroup() override;

    /// Always false: a document has no place in the registry.
    bool WriteDocument(const MString& tag, const MString& text) override;

    /// Selects the root for what follows: 0 the current user, 1 the local machine. Any other
    /// location answers false and changes nothing.
    bool SetRootKey(int location);

private:
    bool SetNumber(const MString& tag, std::uint32_t number);
    bool SetValue(const MString& tag, std::uint32_t type, const void* data, std::uint32_t size);

    RegistryPlace place;
};
