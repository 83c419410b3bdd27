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

/// The bytes of a value and its type, as the system has them.
struct StoredValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

bool operator==(const StoredValue& a, const StoredValue& b)
{
    return a.type == b.type && a.bytes == b.bytes;
}

StoredValue Dword(DWORD number)
{
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(&number);
    return {REG_DWORD, std::vector<BYTE>(bytes, bytes + sizeof number)};
}

StoredValue Text(const std::wstring& text)
{
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return {REG_SZ, std::vector<BYTE>(bytes, bytes + 2 * (text.size() + 1))};
}

class RegistryFilers : public testing::Test
{
protected:
    RegistryFilers() { RemoveKeys(); }
    ~RegistryFilers() override { RemoveKeys(); }

    static std::wstring AreaPath(const std::wstring& groups)
    {
        const std::wstring area = std::wstring(L"Software\\Varek\\") + areaName;
        return groups.empty() ? area : area + L"\\" + groups;
    }

    static bool Exists(const wchar_t* groups)
    {
        HKEY key = nullptr;
        const bool exists = RegOpenKeyExW(HKEY_CURRENT_USER, AreaPath(groups).c_str(), 0, KEY_READ,
                                          &key) == ERROR_SUCCESS;
        if (exists)
            RegCloseKey(key);
        return exists;
    }

    static StoredValue Stored(const wchar_t* groups, const wchar_t* name)
    {
        StoredValue value;
        DWORD size = 0;
        const std::wstring path = AreaPath(groups);
        RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, nullptr,
                     nullptr, &size);
        value.bytes.resize(size);
        RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &value.type,
                     value.bytes.data(), &size);
        return value;
    }

    static void Store(const wchar_t* name, DWORD type, const std::vector<BYTE>& bytes)
    {
        ASSERT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_CURRENT_USER, AreaPath(L"").c_str(), name, type,
                                  bytes.data(), static_cast<DWORD>(bytes.size())));
    }

    static void Store(const wchar_t* name, const StoredValue& value)
    {
        Store(name, value.type, value.bytes);
    }

    IOutFilerTaggedRegistry out{areaName};
    IInFilerTaggedRegistry in{areaName, false};

private:
    static void RemoveKeys()
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, AreaPath(L"").c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek"); // stays if it has other areas
    }
};

} // namespace

TEST_F(RegistryFilers, ValuesAreStoredAsTypesOfTheSystem)
{
    EXPECT_TRUE(out.WriteChar(L"char", -1));
    EXPECT_TRUE(out.WriteString(L"string", L"text"));
    EXPECT_TRUE(out.WriteString(L"empty", MString()));
    EXPECT_TRUE(out.WriteDouble(L"double", -0.1));
    EXPECT_TRUE(out.WriteFloat(L"float", 1234567.0f));
    EXPECT_TRUE(out.WriteBool(L"bool", true));
    EXPECT_TRUE(out.WriteByte(L"byte", 200));
    EXPECT_TRUE(out.WriteUInt16(L"uint16", 65535));
    EXPECT_TRUE(out.WriteInt16(L"int16", -2));
    EXPECT_TRUE(out.WriteUInt32(L"uint32", 4000000000u));
    EXPECT_TRUE(out.WriteInt32(L"int32", -3));
    EXPECT_TRUE(out.WriteInt32(MString(), 7));
    EXPECT_EQ(Dword(0xFFFFFFFF), Stored(L"", L"char"));
    EXPECT_EQ(Text(L"text"), Stored(L"", L"string"));
    EXPECT_EQ(Text(L""), Stored(L"", L"empty"));
    EXPECT_EQ(Text(MLocale::GetClassicLocale().FormatText(L"%.14le", -0.1).c_str()),
              Stored(L"", L"double"));
    EXPECT_EQ(Text(MLocale::GetClassicLocale().FormatText(L"%e", 1234567.0).c_str()),
              Stored(L"", L"float"));
    EXPECT_EQ(Dword(1), Stored(L"", L"bool"));
    EXPECT_EQ(Dword(200), Stored(L"", L"byte"));
    EXPECT_EQ(Dword(65535), Stored(L"", L"uint16"));
    EXPECT_EQ(Dword(0xFFFFFFFE), Stored(L"", L"int16"));
    EXPECT_EQ(Dword(4000000000u), Stored(L"", L"uint32"));
    EXPECT_EQ(Dword(0xFFFFFFFD), Stored(L"", L"int32"));
    EXPECT_EQ(Dword(7), Stored(L"", nullptr)); // the key's default value

    char character = 0;
    EXPECT_TRUE(in.ReadChar(L"char", &character, 5));
    EXPECT_EQ(-1, character);
    unsigned char byte = 0;
    EXPECT_TRUE(in.ReadByte(L"char", &byte, 5));
    EXPECT_EQ(255, byte);
    MString text;
    EXPECT_FALSE(out.WriteDocument(L"d", L"<r/>"));
    EXPECT_FALSE(in.ReadDocument(L"d", text));
}

TEST_F(RegistryFilers, AbsentValueGivesTheDefault)
{
    MString text;
    int number = 0;
    double floating = 0;
    EXPECT_FALSE(in.ReadString(L"v", text, L"default"));
    EXPECT_STREQ(L"default", text.c_str());
    EXPECT_TRUE(out.WriteString(L"v", L""));
    EXPECT_TRUE(in.ReadString(L"v", text, L"default"));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_FALSE(in.ReadInt32(L"w", &number, 9));
    EXPECT_EQ(9, number);
    EXPECT_FALSE(in.ReadDouble(L"v", &floating, 2.5));
    EXPECT_EQ(2.5, floating);
    EXPECT_FALSE(in.ReadInt32(L"v", nullptr, 9));
}

TEST_F(RegistryFilers, GroupsAreKeys)
{
    EXPECT_TRUE(out.BeginGroup(L"a"));
    EXPECT_TRUE(out.BeginGroup(L"b\\c"));
    EXPECT_FALSE(Exists(L""));
    EXPECT_TRUE(out.WriteInt32(L"v\\w", 1));
    EXPECT_TRUE(out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 2));
    EXPECT_TRUE(out.EndGroup());
    EXPECT_FALSE(out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 3));
    EXPECT_EQ(Dword(1), Stored(L"a\\b\\c", L"v\\w"));
    EXPECT_EQ(Dword(2), Stored(L"a", L"v"));
    EXPECT_EQ(Dword(3), Stored(L"", L"v"));

    int number = 0;
    EXPECT_TRUE(in.BeginGroup(L"a\\b"));
    EXPECT_TRUE(in.BeginGroup(L"c"));
    EXPECT_TRUE(in.ReadInt32(L"v\\w", &number, 0));
    EXPECT_EQ(1, number);
    EXPECT_TRUE(in.EndGroup());
    EXPECT_TRUE(in.EndGroup());
    EXPECT_FALSE(in.EndGroup());
}

TEST_F(RegistryFilers, OnlyAFilerThatMayCreatesKeys)
{
    int number = 0;
    EXPECT_TRUE(in.BeginGroup(L"g"));
    EXPECT_FALSE(in.ReadInt32(L"v", &number, 9));
    EXPECT_FALSE(Exists(L""));

    IInFilerTaggedRegistry creating(areaName, true);
    EXPECT_TRUE(creating.BeginGroup(L"g"));
    EXPECT_FALSE(creating.ReadInt32(L"v", &number, 9));
    EXPECT_EQ(9, number);
    EXPECT_TRUE(Exists(L"g"));
}

TEST_F(RegistryFilers, NumbersAreCutFromWhateverIsStored)
{
    const struct {
        StoredValue stored;
        bool read;
        DWORD number;
    } cases[] = {
        {Dword(0x12345678), true, 0x12345678},
        {Text(L"A"), true, 0x41},
        {Text(L"AB"), false, 9},
        {{REG_BINARY, {0x7F}}, true, 0x7F},
        {{REG_BINARY, {}}, true, 0},
        {{REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}}, false, 9},
    };
    for (const auto& one : cases) {
        Store(L"v", one.stored);
        unsigned int number = 0;
        unsigned short half = 0;
        short signedHalf = 0;
        bool flag = false;
        EXPECT_EQ(one.read, in.ReadUInt32(L"v", &number, 9));
        EXPECT_EQ(one.number, number);
        EXPECT_EQ(one.read, in.ReadUInt16(L"v", &half, 9));
        EXPECT_EQ(one.number & 0xFFFF, half);
        EXPECT_EQ(one.read, in.ReadInt16(L"v", &signedHalf, 9));
        EXPECT_EQ(one.number & 0xFFFF, static_cast<DWORD>(signedHalf));
        EXPECT_EQ(one.read, in.ReadBool(L"v", &flag, true));
        EXPECT_EQ(one.number != 0, flag);
    }
}

TEST_F(RegistryFilers, CharacterIsStoredBeforeItsTypeIsAskedFor)
{
    char character = 0;
    Store(L"v", Text(L"A"));
    EXPECT_FALSE(in.ReadChar(L"v", &character, 'd'));
    EXPECT_EQ('A', character);
    Store(L"v", Text(L"AB"));
    EXPECT_FALSE(in.ReadChar(L"v", &character, 'd'));
    EXPECT_EQ('d', character);
    Store(L"v", Dword(256));
    EXPECT_TRUE(in.ReadChar(L"v", &character, 'd'));
    EXPECT_EQ('\0', character);
    bool flag = false;
    EXPECT_TRUE(in.ReadBool(L"v", &flag, false));
    EXPECT_TRUE(flag);
}

TEST_F(RegistryFilers, AnyBytesAreReadAsText)
{
    const struct {
        StoredValue stored;
        const wchar_t* text;
    } cases[] = {
        {Dword(0x00420041), L"AB"},
        {Dword(0x41), L"A"},
        {{REG_BINARY, {'A', 0, 'B'}}, L"AB"},
        {{REG_BINARY, {}}, L""},
        {{REG_SZ, {'A', 0, 'B', 0}}, L"AB"},
        {{REG_MULTI_SZ, {'A', 0, 0, 0, 'B', 0, 0, 0, 0, 0}}, L"A"},
    };
    for (const auto& one : cases) {
        Store(L"v", one.stored);
        MString text;
        EXPECT_TRUE(in.ReadString(L"v", text, L"default"));
        EXPECT_STREQ(one.text, text.c_str());
    }
}

TEST_F(RegistryFilers, FloatingNumbersAreScanned)
{
    const struct {
        const wchar_t* text;
        bool read;
        double value;
    } cases[] = {
        {L"12abc", true, 12}, {L" -2.5e3", true, -2500}, {L"", false, 9},
        {L"  ", false, 9},    {L"x", false, 9},          {L"1.5", true, 1.5},
    };
    for (const auto& one : cases) {
        Store(L"v", Text(one.text));
        double value = 0;
        float narrow = 0;
        EXPECT_EQ(one.read, in.ReadDouble(L"v", &value, 9)) << one.text;
        EXPECT_EQ(one.value, value) << one.text;
        EXPECT_EQ(one.read, in.ReadFloat(L"v", &narrow, 9)) << one.text;
        EXPECT_EQ(static_cast<float>(one.value), narrow) << one.text;
    }
}

TEST_F(RegistryFilers, UnopenableKeyFails)
{
    EXPECT_TRUE(out.BeginGroup(std::wstring(300, L'g').c_str())); // longer than the name of a key
    EXPECT_FALSE(out.WriteInt32(L"v", 1));
    EXPECT_TRUE(out.EndGroup());
    EXPECT_TRUE(out.WriteInt32(L"v", 1));
}

// The root of the machine is turned to a key of this test's, first without the path to the area.
TEST_F(RegistryFilers, MachineIsReachedByItsOwnPath)
{
    EXPECT_FALSE(out.SetRootKey(2));
    EXPECT_TRUE(out.SetRootKey(1));
    EXPECT_TRUE(in.SetRootKey(1));
    HKEY machine = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_CURRENT_USER, AreaPath(L"machine").c_str(), 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &machine, nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine));
    int number = 0;
    IInFilerTaggedRegistry creating(areaName, true);
    EXPECT_TRUE(creating.SetRootKey(1));
    const bool written = out.WriteInt32(L"v", 1);
    const bool read = in.ReadInt32(L"v", &number, 9);
    const bool readCreating = creating.ReadInt32(L"v", &number, 9);

    HKEY path = nullptr;
    RegCreateKeyExW(machine, L"Software\\Wow6432Node", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                    &path, nullptr);
    const bool writtenThen = out.WriteInt32(L"v", 1);
    const bool readThen = in.ReadInt32(L"v", &number, 9);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(path);
    RegCloseKey(machine);

    EXPECT_FALSE(written || read || readCreating);
    EXPECT_TRUE(writtenThen && readThen);
    EXPECT_EQ(1, number);
    const std::wstring area = std::wstring(L"machine\\Software\\Wow6432Node\\Varek\\") + areaName;
    EXPECT_EQ(Dword(1), Stored(area.c_str(), L"v"));
}

TEST_F(RegistryFilers, TwoThreadsWorkOnOneArea)
{
    std::thread writer([] {
        IOutFilerTaggedRegistry filer(areaName);
        for (int i = 1; i <= 100; ++i)
            filer.WriteInt32(L"v", i) && filer.WriteString(L"s", L"text");
    });
    int last = 0;
    while (last < 100) {
        int number = 0;
        MString text;
        in.ReadInt32(L"v", &number, last);
        ASSERT_GE(number, last);
        const bool found = in.ReadString(L"s", text, L"");
        ASSERT_STREQ(found ? L"text" : L"", text.c_str());
        last = number;
    }
    writer.join();
}

TEST_F(RegistryFilers, LackOfMemoryLeavesNothingOpen)
{
    const auto writeAndRead = [] {
        IOutFilerTaggedRegistry filer(areaName);
        filer.BeginGroup(L"a");
        filer.BeginGroup(L"b");
        filer.WriteDouble(L"v", 1.5);
        IInFilerTaggedRegistry reader(areaName, true);
        reader.BeginGroup(L"a");
        reader.BeginGroup(L"b");
        double value = 0;
        reader.ReadDouble(L"v", &value, 0);
    };
    const auto failEachTime = [&] {
        ForEachFailingAllocation(
            AllocationFailure::Throws, writeAndRead,
            [](ShortageOutcome outcome) { EXPECT_NE(ShortageOutcome::Completed, outcome); });
    };
    failEachTime();
    const ExpectSameHandles handles;
    failEachTime();
}
