#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "fuzz/FilersHarness.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <thread>

using namespace std::string_literals;

namespace
{

const wchar_t areaName[] = L"FilersTest";

std::wstring PathOf(const std::wstring& groups)
{
    return std::wstring(L"Software\\Varek\\") + areaName + groups;
}

/// What the system has under a name, in units of text, if it is of that type.
std::wstring Stored(DWORD type, const wchar_t* name, const wchar_t* groups = L"")
{
    wchar_t units[100] = {};
    DWORD size = sizeof units;
    DWORD stored = REG_NONE;
    RegGetValueW(HKEY_CURRENT_USER, PathOf(groups).c_str(), name, RRF_RT_ANY | RRF_NOEXPAND,
                 &stored, units, &size);
    return std::wstring(units, stored == type ? size / sizeof *units : 0);
}

void Store(DWORD type, const std::string& bytes)
{
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CURRENT_USER, PathOf(L"").c_str(), L"v", type,
                                             bytes.data(), static_cast<DWORD>(bytes.size())));
}

class RegistryFilers : public testing::Test
{
protected:
    RegistryFilers() { RemoveKeys(); }
    ~RegistryFilers() override { RemoveKeys(); }

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
    EXPECT_TRUE(out.WriteChar(L"char", -1) && out.WriteBool(L"bool", true));
    EXPECT_TRUE(out.WriteInt16(L"int16", -2) && out.WriteUInt32(L"uint32", 4000000000u));
    EXPECT_TRUE(out.WriteString(L"string", L"text") && out.WriteString(L"empty", MString()));
    EXPECT_TRUE(out.WriteDouble(L"double", -0.1) && out.WriteFloat(L"float", 1234567.0f));
    EXPECT_TRUE(out.WriteInt32(MString(), -3)); // the key's default value
    EXPECT_EQ(L"\xFFFF\xFFFF"s, Stored(REG_DWORD, L"char"));
    EXPECT_EQ(L"\1\0"s, Stored(REG_DWORD, L"bool"));
    EXPECT_EQ(L"\xFFFE\xFFFF"s, Stored(REG_DWORD, L"int16"));
    EXPECT_EQ(L"\x2800\xEE6B"s, Stored(REG_DWORD, L"uint32"));
    EXPECT_EQ(L"text\0"s, Stored(REG_SZ, L"string"));
    EXPECT_EQ(L"\0"s, Stored(REG_SZ, L"empty"));
    EXPECT_EQ(L"-1.00000000000000e-001\0"s, Stored(REG_SZ, L"double"));
    EXPECT_EQ(L"1.234567e+006\0"s, Stored(REG_SZ, L"float"));
    EXPECT_EQ(L"\xFFFD\xFFFF"s, Stored(REG_DWORD, nullptr));
    MString text;
    EXPECT_FALSE(out.WriteDocument(L"d", L"<r/>") || in.ReadDocument(L"d", text));
}

TEST_F(RegistryFilers, GroupsAreKeysThatOnlyAFilerThatMayCreates)
{
    EXPECT_TRUE(out.BeginGroup(L"a") && out.BeginGroup(L"b\\c"));
    IInFilerTaggedRegistry creating(areaName, true);
    for (IInFilerTaggedRegistry* filer : {&in, &creating}) {
        std::wstring told;
        EXPECT_TRUE(filer->BeginGroup(L"a\\b") && filer->BeginGroup(L"c"));
        EXPECT_EQ("", PlayOnFilers(*filer, *filer, "Iv;sv", &told));
        EXPECT_EQ(L"(1);(default);", told);
        HKEY key = nullptr;
        RegOpenKeyW(HKEY_CURRENT_USER, PathOf(L"\\a\\b\\c").c_str(), &key);
        EXPECT_EQ(filer == &creating, RegCloseKey(key) == ERROR_SUCCESS);
    }
    EXPECT_TRUE(out.WriteInt32(L"v\\w", 1) && out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 2) && out.EndGroup() && !out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 3));
    EXPECT_EQ(L"\1\0"s, Stored(REG_DWORD, L"v\\w", L"\\a\\b\\c"));
    EXPECT_EQ(L"\2\0"s, Stored(REG_DWORD, L"v", L"\\a"));
    EXPECT_EQ(L"\3\0"s, Stored(REG_DWORD, L"v"));
    int number = 0;
    EXPECT_TRUE(in.ReadInt32(L"v\\w", &number, 0) && in.EndGroup() && in.EndGroup());
    EXPECT_EQ(1, number);
    EXPECT_FALSE(in.EndGroup());
}

TEST_F(RegistryFilers, AnyBytesAreReadWithinTheirBounds)
{
    const struct {
        DWORD type;
        std::string bytes;
        std::wstring told; // as a number, a flag, a text and a floating number
        char character;
    } cases[] = {
        {REG_DWORD, "A\0B\0"s, L"4325441;1;AB;(1);", 'A'},
        {REG_DWORD, "\0\1\0\0"s, L"256;1;\x100;(1);", 0},
        {REG_SZ, "A\0B\0"s, L"(1);(1);AB;(1);", 7},
        {REG_SZ, "9\0.\09\0x\0"s, L"(1);(1);9.9x;9.9;", 7},
        {REG_BINARY, "A\0B"s, L"4325441;1;AB;(1);", 'A'}, // though its type is refused
        {REG_BINARY, "", L"0;0;;(1);", 0},
        {REG_BINARY, std::string(160, 'A'), L"(1);(1);" + std::wstring(80, 0x4141) + L";(1);", 7},
        {REG_BINARY, "A\0\0\0B\0"s, L"(1);(1);A;(1);", 7}, // too long for a number
    };
    for (const auto& one : cases) {
        Store(one.type, one.bytes);
        IInFilerTaggedRegistry other(areaName, false);
        std::wstring told;
        EXPECT_EQ("", PlayOnFilers(in, other, "Uv;bv;sv;dv", &told));
        EXPECT_EQ(one.told, told);
        char character = 0;
        EXPECT_EQ(one.type == REG_DWORD, in.ReadChar(L"v", &character, 7));
        EXPECT_EQ(one.character, character);
    }
}

// The root of the machine is turned to a key of this test's, first without the path to the area.
TEST_F(RegistryFilers, WhatCannotBeOpenedFails)
{
    EXPECT_TRUE(out.BeginGroup(std::wstring(300, L'g').c_str())); // longer than the name of a key
    EXPECT_FALSE(out.WriteInt32(L"v", 1));
    EXPECT_TRUE(out.EndGroup());
    EXPECT_FALSE(out.WriteInt32(std::wstring(20000, L'v').c_str(), 1)); // than that of a value

    HKEY machine = nullptr;
    RegCreateKeyW(HKEY_CURRENT_USER, PathOf(L"\\machine").c_str(), &machine);
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine));
    IInFilerTaggedRegistry creating(areaName, true);
    EXPECT_TRUE(out.SetRootKey(1) && in.SetRootKey(1) && creating.SetRootKey(1));
    EXPECT_FALSE(out.SetRootKey(2) || in.SetRootKey(-1));
    int number = 0;
    EXPECT_FALSE(out.WriteInt32(L"v", 1) || in.ReadInt32(L"v", &number, 9) ||
                 creating.ReadInt32(L"v", &number, 9));
    HKEY path = nullptr;
    RegCreateKeyW(machine, L"Software\\Wow6432Node", &path);
    EXPECT_TRUE(out.WriteInt32(L"v", 1) && in.ReadInt32(L"v", &number, 9));
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(path);
    RegCloseKey(machine);
    const std::wstring area = std::wstring(L"\\machine\\Software\\Wow6432Node\\Varek\\") + areaName;
    EXPECT_EQ(L"\1\0"s, Stored(REG_DWORD, L"v", area.c_str()));
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
