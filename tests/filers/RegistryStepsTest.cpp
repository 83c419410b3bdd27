// The calls that the registry filers make, against the same steps written down a second time,
// whichever of the calls fail.

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

/// What was called. The nth call but for closings fails where the nth bit is set. Keys are numbered
/// as they are opened, from 1 on. What is queried has the sizes given, one after the other.
struct Calls {
    LSTATUS Do(char what, HKEY key, const std::wstring& how)
    {
        const bool fails = what != 'x' && (failing & 1) != 0;
        failing >>= what != 'x';
        told += std::to_wstring(what) + L' ' +
                std::to_wstring(reinterpret_cast<std::uintptr_t>(key)) + L' ' + how + L'\n';
        return fails ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
    }

    LSTATUS Open(char how, HKEY parent, const std::wstring& path, REGSAM access, HKEY& key)
    {
        const LSTATUS status = Do(how, parent, path + L' ' + std::to_wstring(access));
        key = reinterpret_cast<HKEY>(status ? 0xBAD : ++keys); // a failure leaves no key
        return status;
    }

    LSTATUS Query(HKEY key, const std::wstring& name, const void* data, DWORD& size)
    {
        const DWORD room = size;
        const LSTATUS status = Do('q', key, name + (data ? std::to_wstring(room) : L"?"));
        if (status)
            return status;
        size = sizes[at];
        at += at + 1 < sizes.size();
        const bool fits = size <= room;
        size &= 0xFFFF; // what is to grow beyond need not say so
        return data && !fits ? ERROR_MORE_DATA : ERROR_SUCCESS;
    }

    std::vector<DWORD> sizes;
    unsigned failing;
    std::size_t at;
    std::uintptr_t keys;
    std::wstring told;
};

Calls* calls;

} // namespace

// What the filers call through in this program.
extern "C" {
auto* __imp_RegCloseKey = +[](HKEY key) { return calls->Do('x', key, L""); };
auto* __imp_RegOpenKeyExW = +[](HKEY parent, LPCWSTR path, DWORD, REGSAM access, PHKEY key) {
    return calls->Open('o', parent, path, access, *key);
};
auto* __imp_RegCreateKeyExW =
    +[](HKEY parent, LPCWSTR path, DWORD, LPWSTR, DWORD, REGSAM access, void*, PHKEY key, LPDWORD) {
        return calls->Open('c', parent, path, access, *key);
    };
auto* __imp_RegSetValueExW =
    +[](HKEY key, LPCWSTR name, DWORD, DWORD type, const wchar_t* data, DWORD size) {
        return calls->Do('s', key, name + std::to_wstring(type) + std::wstring(data, size / 2));
    };
auto* __imp_RegQueryValueExW = +[](HKEY key, LPCWSTR name, LPDWORD, LPDWORD, BYTE* data,
                                   LPDWORD size) { return calls->Query(key, name, data, *size); };
}

namespace
{

/// Level by level, each with the rights in turn until one is granted. What is above the area is
/// closed when that is open, and the area when the group is.
bool DoByModel(Calls& model, char work, bool machine, bool grouped)
{
    const bool makes = work == 'w' || work == 'c';
    const std::vector<REGSAM> one = {makes ? 0x2001Fu : 0x20019u};
    const std::vector<REGSAM> both = makes ? std::vector<REGSAM>{0x2001F, 0x20019} : one;
    const std::wstring paths[] = {machine ? L"Software\\Wow6432Node" : L"Software", L"Varek",
                                  L"Area", grouped ? L"a\\b\\c" : L""};
    HKEY key = machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    std::vector<HKEY> above;
    for (int level = 0; level < 4; ++level) {
        HKEY opened = nullptr;
        LSTATUS status = ERROR_ACCESS_DENIED;
        for (const REGSAM access : level < 2 || (level == 3 && work == 'c') ? both : one)
            if (status)
                status = model.Open(level && makes ? 'c' : 'o', key, paths[level], access, opened);
        for (; (status || level > 1) && !above.empty(); above.pop_back())
            model.Do('x', above.back(), L"");
        if (status)
            return false;
        above.push_back(key = opened);
    }
    DWORD room = work == 'n' ? 4 : 0;
    DWORD held = 0;
    LSTATUS status = work == 'w' ? model.Do('s', key, std::wstring(L"tag1text", 9))
                                 : model.Query(key, L"tag", work == 'n' ? &room : nullptr, room);
    for (bool asks = work != 'w' && work != 'n' && !status; asks;
         asks = status == ERROR_MORE_DATA && room > held) {
        held = room;
        status = model.Query(key, L"tag", &room, room);
    }
    model.Do('x', key, L"");
    return !status;
}

/// Writes ('w'), reads a number ('n') or a text ('r'), or creates where it reads ('c').
bool DoByFiler(char work, bool machine, bool grouped)
{
    IOutFilerTaggedRegistry out(L"Area");
    IInFilerTaggedRegistry in(L"Area", work == 'c');
    EXPECT_TRUE(out.SetRootKey(machine) && in.SetRootKey(machine));
    EXPECT_FALSE(out.SetRootKey(2) || in.SetRootKey(-1) || out.EndGroup() || in.EndGroup());
    for (const wchar_t* const group : {L"a", L"b\\c"})
        EXPECT_TRUE(!grouped || (out.BeginGroup(group) && in.BeginGroup(group)));
    unsigned int number = 0;
    MString text;
    return work == 'w'   ? out.WriteString(L"tag", L"text")
           : work == 'n' ? in.ReadUInt32(L"tag", &number, 0)
                         : in.ReadString(L"tag", text, L"");
}

} // namespace

TEST(RegistrySteps, AreThoseOfTheModelWhicheverCallsFail)
{
    const std::vector<DWORD> sizes[] = {{4, 0x10004}, {4, 10, 20}, {20, 4}, {0, 4, 5, 6}};
    for (unsigned bits = 0; bits < 128 * 4 * 16; ++bits) {
        const char work = "wnrc"[bits / 4 % 4];
        Calls model = {sizes[bits / 16 % 4], bits / 64, 0, 0, L""};
        Calls made = model;
        calls = &made;
        ASSERT_EQ(DoByModel(model, work, bits & 1, bits & 2), DoByFiler(work, bits & 1, bits & 2));
        ASSERT_EQ(model.told, made.told);
    }
}
