#include "filers/IInFilerTaggedRegistry.h"

#include <windows.h>

#include <cwchar>
#include <vector>

IInFilerTaggedRegistry::IInFilerTaggedRegistry(const MString& areaName, bool createMissing)
    : place(areaName), createMissing(createMissing)
{
}

bool IInFilerTaggedRegistry::ReadString(const MString& tag, MString& result,
                                        const MString& defaultValue)
{
    result = defaultValue;
    const RegistryKey group = OpenGroup();
    return group && QueryText(group.get(), tag, result);
}

// The value may grow between the two queries, so they are made again until it fits. The stored
// bytes need not end with a terminator, nor be whole characters; the zeros behind them make a text
// of them in any case.
bool IInFilerTaggedRegistry::QueryText(HKEY__* key, const MString& tag, MString& text)
{
    const auto query = [&](BYTE* bytes, DWORD* size) {
        return RegQueryValueExW(key, tag.c_str(), nullptr, nullptr, bytes, size);
    };
    DWORD room = 0;
    DWORD size = 0;
    LSTATUS status = query(nullptr, &size);
    std::vector<wchar_t> buffer;
    for (bool asks = status == ERROR_SUCCESS; asks;
         asks = status == ERROR_MORE_DATA && size > room) {
        room = size;
        buffer.assign(std::size_t{room} + 1, L'\0');
        status = query(reinterpret_cast<BYTE*>(buffer.data()), &size);
    }
    if (status != ERROR_SUCCESS)
        return false;
    text = buffer.data();
    return true;
}

bool IInFilerTaggedRegistry::ReadChar(const MString& tag, char* result, char defaultValue)
{
    if (!result)
        return false;
    *result = defaultValue;
    std::uint32_t number = 0;
    std::uint32_t type = 0;
    if (!QueryNumber(tag, &number, &type))
        return false;
    *result = static_cast<char>(number);
    return type == REG_DWORD;
}

bool IInFilerTaggedRegistry::ReadDouble(const MString& tag, double* result, double defaultValue)
{
    return ScanNumber(tag, L"%lf", result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadFloat(const MString& tag, float* result, float defaultValue)
{
    return ScanNumber(tag, L"%f", result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadBool(const MString& tag, bool* result, bool defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadByte(const MString& tag, unsigned char* result,
                                      unsigned char defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadUInt16(const MString& tag, unsigned short* result,
                                        unsigned short defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadInt16(const MString& tag, short* result, short defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadUInt32(const MString& tag, unsigned int* result,
                                        unsigned int defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::ReadInt32(const MString& tag, int* result, int defaultValue)
{
    return ReadNumber(tag, result, defaultValue);
}

bool IInFilerTaggedRegistry::BeginGroup(const MString& tag)
{
    place.BeginGroup(tag);
    return true;
}

bool IInFilerTaggedRegistry::EndGroup()
{
    return place.EndGroup();
}

bool IInFilerTaggedRegistry::ReadDocument(const MString&, MString&)
{
    return false;
}

bool IInFilerTaggedRegistry::SetRootKey(int location)
{
    return place.SetRootKey(location);
}

RegistryKey IInFilerTaggedRegistry::OpenGroup()
{
    return createMissing ? place.OpenOrCreateForReading() : place.OpenForReading();
}

bool IInFilerTaggedRegistry::QueryNumber(const MString& tag, std::uint32_t* number,
                                         std::uint32_t* type)
{
    const RegistryKey group = OpenGroup();
    DWORD buffer = 0;
    DWORD size = sizeof buffer;
    DWORD stored = REG_NONE;
    if (!group || RegQueryValueExW(group.get(), tag.c_str(), nullptr, &stored,
                                   reinterpret_cast<BYTE*>(&buffer), &size) != ERROR_SUCCESS)
        return false;
    *number = buffer;
    *type = stored;
    return true;
}

template <class T>
bool IInFilerTaggedRegistry::ReadNumber(const MString& tag, T* result, T defaultValue)
{
    if (!result)
        return false;
    *result = defaultValue;
    std::uint32_t number = 0;
    std::uint32_t type = 0;
    if (!QueryNumber(tag, &number, &type))
        return false;
    *result = static_cast<T>(number);
    return true;
}

template <class T>
bool IInFilerTaggedRegistry::ScanNumber(const MString& tag, const wchar_t* format, T* result,
                                        T defaultValue)
{
    if (!result)
        return false;
    *result = defaultValue;
    MString text;
    if (!ReadString(tag, text, MString()))
        return false;
    T scanned = 0;
    if (_swscanf_s_l(text.c_str(), format, locale.GetCLocale(), &scanned) != 1)
        return false;
    *result = scanned;
    return true;
}
