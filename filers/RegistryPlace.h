#pragma once

#include "foundation/MString.h"
#include "foundation/MTypedPtrArray.h"

#include <memory>

struct HKEY__;

/// Closes the key of a `RegistryKey`.
struct RegistryKeyCloser {
    /// `key` is never null.
    void operator()(HKEY__* key) const;
};

/// An open registry key, or none.
typedef std::unique_ptr<HKEY__, RegistryKeyCloser> RegistryKey;

/// Where in the registry a filer stands: a root, an area under the maker's key, and the groups that
/// are open. It holds no key open; each is opened from the root down when it is asked for.
class RegistryPlace
{
public:
    /// The area under the current user, with no group open.
    explicit RegistryPlace(const MString& areaName);

    /// 0 is the root of the current user, 1 that of the local machine. Others change nothing and
    /// answer false.
    bool SetRootKey(int location);

    /// Touches no key. A backslash in the tag reaches deeper.
    void BeginGroup(const MString& tag);

    /// False, and nothing changes, when no group is open.
    bool EndGroup();

    /// The key of the innermost group for writing; it and all above it but the system's own are
    /// made if they are missing.
    RegistryKey OpenForWriting();

    /// As `OpenForWriting`, but satisfied with read access to the group that exists.
    RegistryKey OpenOrCreateForReading();

    /// The key of the innermost group, if it exists, for reading.
    RegistryKey OpenForReading();

private:
    const wchar_t* SystemPath() const;
    MString GroupPath();
    RegistryKey OpenArea() const;
    RegistryKey OpenOrCreateArea() const;

    MTypedPtrArray<MString, const MString&> groupPath;
    MString areaName;
    HKEY__* rootKey;
};
