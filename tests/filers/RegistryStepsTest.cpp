// The calls that the registry filers make, against the same steps written down a second time,
// whichever of the calls fail.

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

const REGSAM forWriting = 0x2001F;
const REGSAM forReading = 0x20019;

/// What was called. The nth call but for closings fails where the nth bit is set. Keys are numbered
/// as they are opened, from 1 on. What is queried has the sizes given, one after the other.
struct Calls {
    Calls(unsigned failing, const std::vector<DWORD>& sizes) : failing(failing), sizes(sizes) {}

    bool Do(wchar_t what, HKEY key, const std::wstring& how)
    {
        const bool fails = what != L'x' && (failing & 1) != 0;
        failing >>= what != L'x';
        const std::wstring number = std::to_wstring(reinterpret_cast<std::uintptr_t>(key));
        told += what + number + L' ' + how + (fails ? L"!;" : L";");
        return !fails;
    }

    HKEY Open(wchar_t how, HKEY parent, const std::wstring& path, REGSAM access)
    {
        const bool opened = Do(how, parent, path + L' ' + std::to_wstring(access));
        return opened ? reinterpret_cast<HKEY>(++keys) : nullptr;
    }

    LSTATUS Query(HKEY key, const std::wstring& name, const void* buffer, DWORD& size)
    {
        const DWORD room = size;
        if (!Do(L'q', key, name + (buffer ? std::to_wstring(room) : L"?")))
            return ERROR_FILE_NOT_FOUND;
        size = sizes[at];
        at += at + 1 < sizes.size();
        return buffer && size > room ? ERROR_MORE_DATA : ERROR_SUCCESS;
    }

    unsigned failing;
    std::vector<DWORD> sizes;
    std::size_t at = 0;
    std::uintptr_t keys = 0;
    std::wstring told;
};

Calls* calls;

LSTATUS Open(HKEY parent, LPCWSTR path, DWORD, REGSAM access, PHKEY key)
{
    const HKEY opened = calls->Open(L'o', parent, path, access);
    *key = opened ? opened : reinterpret_cast<HKEY>(0xBAD); // what a failure leaves there is no key
    return opened ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

LSTATUS Create(HKEY parent, LPCWSTR path, DWORD, LPWSTR, DWORD options, REGSAM access, void*,
               PHKEY key, LPDWORD)
{
    *key = calls->Open(options == 0 ? L'c' : L'?', parent, path, access);
    return *key ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

LSTATUS Close(HKEY key)
{
    return calls->Do(L'x', key, L"") ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LSTATUS Set(HKEY key, LPCWSTR name, DWORD, DWORD type, const wchar_t* data, DWORD size)
{
    const std::wstring units(data, size / sizeof *data);
    const bool set = calls->Do(L's', key, name + std::to_wstring(type) + L'=' + units);
    return set ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

LSTATUS Query(HKEY key, LPCWSTR name, LPDWORD, LPDWORD, BYTE* data, LPDWORD size)
{
    const LSTATUS status = calls->Query(key, name, data, *size);
    for (DWORD i = 0; data && status == ERROR_SUCCESS && i < *size; ++i)
        data[i] = 1;
    return status;
}

} // namespace

// What the filers call through in this program.
extern "C" {
auto* __imp_RegOpenKeyExW = &Open;
auto* __imp_RegCreateKeyExW = &Create;
auto* __imp_RegCloseKey = &Close;
auto* __imp_RegSetValueExW = &Set;
auto* __imp_RegQueryValueExW = &Query;
}

namespace
{

/// A filer that writes ('w'), reads ('r'), or creates what it reads ('c'), and what it does.
struct Work {
    HKEY root;
    char filer;
    bool number;
    bool grouped;
};

/// Level by level, each with the rights in turn until one is granted. What is above the area is
/// closed when that is open, and the area when the group is.
bool DoByModel(Calls& model, const Work& work)
{
    const bool reads = work.filer == 'r';
    const std::vector<REGSAM> one = {reads ? forReading : forWriting};
    const std::vector<REGSAM> both = reads ? one : std::vector<REGSAM>{forWriting, forReading};
    const wchar_t how = reads ? L'o' : L'c';
    const struct {
        wchar_t how;
        const wchar_t* path;
        std::vector<REGSAM> rights;
    } levels[] = {
        {L'o', work.root == HKEY_CURRENT_USER ? L"Software" : L"Software\\Wow6432Node", both},
        {how, L"Varek", both},
        {how, L"Area", one},
        {how, work.grouped ? L"a\\b\\c" : L"", work.filer == 'c' ? both : one},
    };
    HKEY key = work.root;
    std::vector<HKEY> above;
    for (const auto& level : levels) {
        const HKEY parent = key;
        key = nullptr;
        for (std::size_t i = 0; i < level.rights.size() && !key; ++i)
            key = model.Open(level.how, parent, level.path, level.rights[i]);
        for (; (!key || &level >= &levels[2]) && !above.empty(); above.pop_back())
            model.Do(L'x', above.back(), L"");
        if (!key)
            return false;
        above.push_back(key);
    }
    bool done = false;
    DWORD room = work.number ? 4 : 0;
    if (work.filer == 'w')
        done = model.Do(L's', key, work.number ? L"tag4=\x2\x1" : std::wstring(L"tag1=text", 10));
    else if (work.number)
        done = model.Query(key, L"tag", &room, room) == ERROR_SUCCESS;
    else if (model.Query(key, L"tag", nullptr, room) == ERROR_SUCCESS)
        for (DWORD size = room, held = 0; !done; held = size) {
            const LSTATUS status = model.Query(key, L"tag", &size, size);
            done = status == ERROR_SUCCESS;
            if (!done && (status != ERROR_MORE_DATA || size <= held))
                break;
        }
    model.Do(L'x', key, L"");
    return done;
}

template <class Filer>
void Prepare(Filer& filer, const Work& work)
{
    EXPECT_TRUE(filer.SetRootKey(work.root == HKEY_CURRENT_USER ? 0 : 1));
    EXPECT_FALSE(filer.SetRootKey(2) || filer.SetRootKey(-1) || filer.EndGroup());
    EXPECT_TRUE(!work.grouped || (filer.BeginGroup(L"a") && filer.BeginGroup(L"b\\c")));
}

bool DoByFiler(const Work& work, DWORD size)
{
    if (work.filer == 'w') {
        IOutFilerTaggedRegistry out(L"Area");
        Prepare(out, work);
        return work.number ? out.WriteUInt32(L"tag", 0x10002) : out.WriteString(L"tag", L"text");
    }
    IInFilerTaggedRegistry in(L"Area", work.filer == 'c');
    Prepare(in, work);
    unsigned int number = 0;
    MString text;
    const bool read =
        work.number ? in.ReadUInt32(L"tag", &number, 9) : in.ReadString(L"tag", text, L"default");
    EXPECT_EQ(!work.number ? 0 : read ? 0x1010101u : 9u, number);
    EXPECT_EQ(work.number ? 0 : read ? (size + 1) / 2 : 7u, static_cast<DWORD>(text.GetLength()));
    return read;
}

void Compare(unsigned failing, const std::vector<DWORD>& sizes, const Work& work)
{
    Calls model(failing, sizes);
    Calls made(failing, sizes);
    calls = &made;
    const bool done = DoByFiler(work, sizes.back());
    EXPECT_EQ(DoByModel(model, work), done);
    EXPECT_EQ(model.told, made.told);
}

} // namespace

TEST(RegistrySteps, AreThoseOfTheModelWhicheverCallsFail)
{
    for (unsigned failing = 0; failing < 512; ++failing)
        for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            for (const char filer : {'w', 'r', 'c'})
                for (unsigned bits = 0; bits < 4; ++bits)
                    Compare(failing, {4}, {root, filer, (bits & 1) != 0, (bits & 2) != 0});
    for (const std::vector<DWORD>& sizes :
         {std::vector<DWORD>{4, 10, 20}, {4, 10}, {0, 4}, {20, 4}, {0}, {4, 5, 6, 7}})
        for (unsigned failing = 0; failing < 1024; failing += 16)
            Compare(failing, sizes, {HKEY_CURRENT_USER, 'r', false, false});
}
