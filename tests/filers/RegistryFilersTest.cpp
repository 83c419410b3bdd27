#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <thread>
#include <vector>

namespace
{

const wchar_t areaName[] = L"FilersTest";

typedef std::vector<BYTE> Bytes;

Bytes Dword(DWORD number)
{
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(&number);
    return Bytes(bytes, bytes + sizeof number);
}

Bytes Text(const std::wstring& text)
{
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return Bytes(bytes, bytes + 2 * (text.size() + 1));
}

/// Looks into the area, and changes it, with the system's own calls.
class RegistryFilers : public testing::Test
{
protected:
    RegistryFilers() { RemoveKeys(); }
    ~RegistryFilers() override { RemoveKeys(); }

    static std::wstring PathOf(const wchar_t* groups)
    {
        return std::wstring(L"Software\\Varek\\") + areaName + groups;
    }

    /// Whether there was a key, which is then gone.
    static bool Remove(const wchar_t* groups)
    {
        return RegDeleteKeyW(HKEY_CURRENT_USER, PathOf(groups).c_str()) == ERROR_SUCCESS;
    }

    /// The bytes of a value, if it is of that type.
    static Bytes Stored(DWORD type, const wchar_t* name, const wchar_t* groups = L"")
    {
        Bytes bytes(200);
        DWORD size = 200;
        DWORD stored = REG_NONE;
        RegGetValueW(HKEY_CURRENT_USER, PathOf(groups).c_str(), name, RRF_RT_ANY, &stored,
                     bytes.data(), &size);
        bytes.resize(stored == type ? size : 0);
        return bytes;
    }

    static void Store(DWORD type, const Bytes& bytes)
    {
        ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CURRENT_USER, PathOf(L"").c_str(), L"v", type,
                                                 bytes.data(), static_cast<DWORD>(bytes.size())));
    }

    IOutFilerTaggedRegistry out{areaName};
    IInFilerTaggedRegistry in{areaName, false};

private:
    static void RemoveKeys()
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, PathOf(L"").c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek"); // stays if it has other areas
    }
};

} // namespace

TEST_F(RegistryFilers, ValuesAreStoredAsTypesOfTheSystem)
{
    const MLocale& classic = MLocale::GetClassicLocale();
    EXPECT_TRUE(out.WriteChar(L"char", -1) && out.WriteBool(L"bool", true));
    EXPECT_TRUE(out.WriteInt16(L"int16", -2) && out.WriteUInt32(L"uint32", 4000000000u));
    EXPECT_TRUE(out.WriteString(L"string", L"text") && out.WriteString(L"empty", MString()));
    EXPECT_TRUE(out.WriteDouble(L"double", -0.1) && out.WriteFloat(L"float", 1234567.0f));
    EXPECT_TRUE(out.WriteInt32(MString(), -3)); // the key's default value
    EXPECT_EQ(Dword(0xFFFFFFFF), Stored(REG_DWORD, L"char"));
    EXPECT_EQ(Dword(1), Stored(REG_DWORD, L"bool"));
    EXPECT_EQ(Dword(0xFFFFFFFE), Stored(REG_DWORD, L"int16"));
    EXPECT_EQ(Dword(4000000000u), Stored(REG_DWORD, L"uint32"));
    EXPECT_EQ(Text(L"text"), Stored(REG_SZ, L"string"));
    EXPECT_EQ(Text(L""), Stored(REG_SZ, L"empty"));
    EXPECT_EQ(Text(classic.FormatText(L"%.14le", -0.1).c_str()), Stored(REG_SZ, L"double"));
    EXPECT_EQ(Text(classic.FormatText(L"%e", 1234567.0).c_str()), Stored(REG_SZ, L"float"));
    EXPECT_EQ(Dword(0xFFFFFFFD), Stored(REG_DWORD, nullptr));
    EXPECT_FALSE(out.WriteDocument(L"d", L"<r/>"));
}

TEST_F(RegistryFilers, GroupsAreKeys)
{
    EXPECT_TRUE(out.BeginGroup(L"a") && out.BeginGroup(L"b\\c"));
    EXPECT_FALSE(Remove(L""));
    EXPECT_TRUE(out.WriteInt32(L"v\\w", 1) && out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 2) && out.EndGroup() && !out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 3));
    EXPECT_EQ(Dword(1), Stored(REG_DWORD, L"v\\w", L"\\a\\b\\c"));
    EXPECT_EQ(Dword(2), Stored(REG_DWORD, L"v", L"\\a"));
    EXPECT_EQ(Dword(3), Stored(REG_DWORD, L"v"));
    int number = 0;
    EXPECT_TRUE(in.BeginGroup(L"a\\b") && in.BeginGroup(L"c"));
    EXPECT_TRUE(in.ReadInt32(L"v\\w", &number, 0) && in.EndGroup() && in.EndGroup());
    EXPECT_EQ(1, number);
    EXPECT_FALSE(in.EndGroup());
}

TEST_F(RegistryFilers, OnlyAFilerThatMayCreatesKeys)
{
    IInFilerTaggedRegistry creating(areaName, true);
    for (IInFilerTaggedRegistry* filer : {&in, &creating}) {
        int number = 0;
        MString text(L"untouched");
        EXPECT_TRUE(filer->BeginGroup(L"g"));
        EXPECT_FALSE(filer->ReadInt32(L"v", &number, 9) || filer->ReadDocument(L"v", text) ||
                     filer->ReadString(L"v", text, L"default"));
        EXPECT_EQ(9, number);
        EXPECT_STREQ(L"default", text.c_str());
        EXPECT_EQ(filer == &creating, Remove(L"\\g"));
    }
}

TEST_F(RegistryFilers, AnyBytesAreReadWithinTheirBounds)
{
    const struct {
        DWORD type;
        Bytes bytes;
        DWORD number;
        std::wstring text;
    } cases[] = {
        {REG_DWORD, Dword(0x00420041), 0x00420041, L"AB"},
        {REG_DWORD, Dword(256), 256, L"\x100"},
        {REG_SZ, {'A', 0, 'B', 0}, 9, L"AB"},
        {REG_BINARY, {'A', 0, 'B'}, 0x00420041, L"AB"},
        {REG_BINARY, {0x7F}, 0x7F, L"\x7F"},
        {REG_BINARY, {}, 0, L""},
        {REG_BINARY, {'A', 0, 0, 0, 'B', 0}, 9, L"A"}, // too long for a number
        {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}, 9, L"\x1"},
        {REG_BINARY, Bytes(160, 'A'), 9, std::wstring(80, 0x4141)},
    };
    double floating = 0;
    for (const auto& one : cases) {
        Store(one.type, one.bytes);
        const bool read = one.number != 9;
        unsigned int number = 0;
        bool flag = false;
        char character = 0;
        MString text;
        EXPECT_EQ(read, in.ReadUInt32(L"v", &number, 9));
        EXPECT_EQ(read, in.ReadBool(L"v", &flag, true));
        EXPECT_EQ(read && one.type == REG_DWORD, in.ReadChar(L"v", &character, 9));
        EXPECT_EQ(one.number, number);
        EXPECT_EQ(one.number != 0, flag);
        EXPECT_EQ(static_cast<char>(one.number), character); // also where the type is refused
        EXPECT_TRUE(in.ReadString(L"v", text, L"default"));
        EXPECT_EQ(one.text, text.c_str());
        EXPECT_FALSE(in.ReadDouble(L"v", &floating, 9));
        EXPECT_EQ(9, floating);
    }
    EXPECT_FALSE(in.ReadInt32(L"v", nullptr, 9) || in.ReadFloat(L"v", nullptr, 9));
    Store(REG_SZ, Text(L" -2.5e3x"));
    EXPECT_TRUE(in.ReadDouble(L"v", &floating, 9));
    EXPECT_EQ(-2500, floating);
}

// The root of the machine is turned to a key of this test's, first without the path to the area.
TEST_F(RegistryFilers, WhatCannotBeOpenedFails)
{
    EXPECT_TRUE(out.BeginGroup(std::wstring(300, L'g').c_str())); // longer than the name of a key
    EXPECT_FALSE(out.WriteInt32(L"v", 1));
    EXPECT_TRUE(out.EndGroup());

    HKEY machine = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, PathOf(L"\\machine").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                    nullptr, &machine, nullptr);
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine));
    IInFilerTaggedRegistry creating(areaName, true);
    EXPECT_TRUE(out.SetRootKey(1) && in.SetRootKey(1) && creating.SetRootKey(1));
    EXPECT_FALSE(out.SetRootKey(2) || in.SetRootKey(-1));
    int number = 0;
    EXPECT_FALSE(out.WriteInt32(L"v", 1) || in.ReadInt32(L"v", &number, 9) ||
                 creating.ReadInt32(L"v", &number, 9));
    HKEY path = nullptr;
    RegCreateKeyExW(machine, L"Software\\Wow6432Node", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &path, nullptr);
    EXPECT_TRUE(out.WriteInt32(L"v", 1) && in.ReadInt32(L"v", &number, 9));
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(path);
    RegCloseKey(machine);
    const std::wstring area = std::wstring(L"\\machine\\Software\\Wow6432Node\\Varek\\") + areaName;
    EXPECT_EQ(Dword(1), Stored(REG_DWORD, L"v", area.c_str()));
}

TEST_F(RegistryFilers, TwoThreadsWorkOnOneArea)
{
    std::thread writer([] {
        IOutFilerTaggedRegistry filer(areaName);
        for (int i = 1; i <= 100; ++i)
            filer.WriteInt32(L"v", i);
    });
    for (int last = 0; last < 100;) {
        int number = 0;
        in.ReadInt32(L"v", &number, last);
        ASSERT_GE(number, last);
        last = number;
    }
    writer.join();
}

TEST_F(RegistryFilers, LackOfMemoryLeavesNothingOpen)
{
    const auto writeAndRead = [] {
        IOutFilerTaggedRegistry filer(areaName);
        IInFilerTaggedRegistry reader(areaName, true);
        double value = 0;
        filer.BeginGroup(L"a") && filer.BeginGroup(L"b") && filer.WriteDouble(L"v", 1.5) &&
            reader.BeginGroup(L"a\\b") && reader.ReadDouble(L"v", &value, 0);
    };
    writeAndRead();
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, writeAndRead, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
