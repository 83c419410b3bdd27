#include "filers/IOutFilerTaggedRegistry.h"

#include <windows.h>

IOutFilerTaggedRegistry::IOutFilerTaggedRegistry(const MString& areaName) : place(areaName) {}

bool IOutFilerTaggedRegistry::WriteChar(const MString& tag, char value)
{
    return SetNumber(tag, static_cast<std::uint32_t>(static_cast<signed char>(value)));
}

bool IOutFilerTaggedRegistry::WriteString(const MString& tag, const MString& value)
{
    const std::uint32_t units = static_cast<std::uint32_t>(value.GetLength()) + 1;
    return SetValue(tag, REG_SZ, value.c_str(), units * sizeof(wchar_t));
}

bool IOutFilerTaggedRegistry::WriteDouble(const MString& tag, double value)
{
    return WriteString(tag, locale.FormatText(L"%.14le", value));
}

bool IOutFilerTaggedRegistry::WriteFloat(const MString& tag, float value)
{
    return WriteString(tag, locale.FormatText(L"%e", static_cast<double>(value)));
}

bool IOutFilerTaggedRegistry::WriteBool(const MString& tag, bool value)
{
    return SetNumber(tag, value);
}

bool IOutFilerTaggedRegistry::WriteByte(const MString& tag, unsigned char value)
{
    return SetNumber(tag, value);
}

bool IOutFilerTaggedRegistry::WriteUInt16(const MString& tag, unsigned short value)
{
    return SetNumber(tag, value);
}

bool IOutFilerTaggedRegistry::WriteInt16(const MString& tag, short value)
{
    return SetNumber(tag, static_cast<std::uint32_t>(value));
}

bool IOutFilerTaggedRegistry::WriteUInt32(const MString& tag, unsigned int value)
{
    return SetNumber(tag, value);
}

bool IOutFilerTaggedRegistry::WriteInt32(const MString& tag, int value)
{
    return SetNumber(tag, static_cast<std::uint32_t>(value));
}

bool IOutFilerTaggedRegistry::BeginGroup(const MString& tag)
{
    place.BeginGroup(tag);
    return true;
}

bool IOutFilerTaggedRegistry::EndGroup()
{
    return place.EndGroup();
}

bool IOutFilerTaggedRegistry::WriteDocument(const MString&, const MString&)
{
    return false;
}

bool IOutFilerTaggedRegistry::SetRootKey(int location)
{
    return place.SetRootKey(location);
}

bool IOutFilerTaggedRegistry::SetNumber(const MString& tag, std::uint32_t number)
{
    return SetValue(tag, REG_DWORD, &number, sizeof number);
}

bool IOutFilerTaggedRegistry::SetValue(const MString& tag, std::uint32_t type, const void* data,
                                       std::uint32_t size)
{
    const RegistryKey group = place.OpenForWriting();
    return group && RegSetValueExW(group.get(), tag.c_str(), 0, type,
                                   static_cast<const BYTE*>(data), size) == ERROR_SUCCESS;
}
