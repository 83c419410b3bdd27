#include "filers/RegistryPlace.h"

#include <windows.h>

namespace
{

const wchar_t maker[] = L"Varek";

const REGSAM forWriting = KEY_READ | KEY_WRITE;
const REGSAM forReading = KEY_READ;

RegistryKey Open(HKEY parent, const wchar_t* path, REGSAM access)
{
    HKEY key = nullptr;
    const bool opened = RegOpenKeyExW(parent, path, 0, access, &key) == ERROR_SUCCESS;
    return RegistryKey(opened ? key : nullptr);
}

RegistryKey Create(HKEY parent, const wchar_t* path, REGSAM access)
{
    HKEY key = nullptr;
    DWORD disposition;
    const bool created = RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access,
                                         nullptr, &key, &disposition) == ERROR_SUCCESS;
    return RegistryKey(created ? key : nullptr);
}

/// A user without the right to write still reaches keys that exist.
RegistryKey CreateOrRead(HKEY parent, const wchar_t* path)
{
    RegistryKey key = Create(parent, path, forWriting);
    return key ? std::move(key) : Create(parent, path, forReading);
}

} // namespace

void RegistryKeyCloser::operator()(HKEY__* key) const
{
    RegCloseKey(key);
}

RegistryPlace::RegistryPlace(const MString& areaName)
    : areaName(areaName), rootKey(HKEY_CURRENT_USER)
{
}

bool RegistryPlace::SetRootKey(int location)
{
    if (location != 0 && location != 1)
        return false;
    rootKey = location == 0 ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    return true;
}

void RegistryPlace::BeginGroup(const MString& tag)
{
    groupPath.Add(tag);
}

bool RegistryPlace::EndGroup()
{
    if (groupPath.GetCount() == 0)
        return false;
    groupPath.RemoveAt(groupPath.GetCount() - 1);
    return true;
}

RegistryKey RegistryPlace::OpenForWriting()
{
    const RegistryKey area = OpenOrCreateArea();
    if (!area)
        return nullptr;
    return Create(area.get(), GroupPath().c_str(), forWriting);
}

RegistryKey RegistryPlace::OpenOrCreateForReading()
{
    const RegistryKey area = OpenOrCreateArea();
    return area ? CreateOrRead(area.get(), GroupPath().c_str()) : nullptr;
}

RegistryKey RegistryPlace::OpenForReading()
{
    const RegistryKey area = OpenArea();
    if (!area)
        return nullptr;
    return Open(area.get(), GroupPath().c_str(), forReading);
}

RegistryKey RegistryPlace::OpenArea() const
{
    const RegistryKey system = Open(rootKey, SystemPath(), forReading);
    if (!system)
        return nullptr;
    const RegistryKey makers = Open(system.get(), maker, forReading);
    return makers ? Open(makers.get(), areaName.c_str(), forReading) : nullptr;
}

RegistryKey RegistryPlace::OpenOrCreateArea() const
{
    RegistryKey system = Open(rootKey, SystemPath(), forWriting);
    if (!system)
        system = Open(rootKey, SystemPath(), forReading);
    if (!system)
        return nullptr;
    const RegistryKey makers = CreateOrRead(system.get(), maker);
    return makers ? Create(makers.get(), areaName.c_str(), forWriting) : nullptr;
}

/// The root alone decides, whatever the process is.
const wchar_t* RegistryPlace::SystemPath() const
{
    return rootKey == HKEY_CURRENT_USER ? L"Software" : L"Software\\Wow6432Node";
}

MString RegistryPlace::GroupPath()
{
    MString path;
    for (std::int32_t i = 0; i < groupPath.GetCount(); ++i) {
        if (i > 0)
            path += L"\\";
        path += groupPath.GetAt(i);
    }
    return path;
}
