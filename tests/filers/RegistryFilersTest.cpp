#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "fuzz/FilersHarness.h"

#include <gtest/gtest.h>

#include <windows.h>

using namespace std::string_literals;

namespace
{

struct RegistryFilers : testing::Test {
    ~RegistryFilers() override
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek"); // stays if it has other areas
    }

    /// What the system has under a name, in units of text, if it is of that type.
    std::wstring Stored(DWORD type, const wchar_t* name, const wchar_t* groups = L"") const
    {
        wchar_t units[100] = {};
        DWORD size = sizeof units;
        DWORD stored = REG_NONE;
        RegGetValueW(HKEY_CURRENT_USER, (path + groups).c_str(), name, RRF_RT_ANY | RRF_NOEXPAND,
                     &stored, units, &size);
        return std::wstring(units, stored == type ? size / sizeof *units : 0);
    }

    const std::wstring path = L"Software\\Varek\\FilersTest";
    IOutFilerTaggedRegistry out{L"FilersTest"};
    IInFilerTaggedRegistry in{L"FilersTest", false};
};

} // namespace

TEST_F(RegistryFilers, ValuesAreStoredAsTypesOfTheSystem)
{
    EXPECT_TRUE(out.WriteChar(L"char", -1) && out.WriteInt16(MString(), -3));
    EXPECT_TRUE(out.WriteString(L"empty", MString()) && out.WriteDouble(L"double", -0.1) &&
                out.WriteFloat(L"float", 1234567.0f));
    MString text;
    double number = 0;
    EXPECT_FALSE(in.ReadChar(L"char", nullptr, 'x') || in.ReadDocument(L"empty", text) ||
                 in.ReadDouble(L"none", &number, 1));
    EXPECT_TRUE(out.BeginGroup(L"a") && out.BeginGroup(L"b\\c") && out.WriteByte(L"v\\w", 200));
    EXPECT_EQ(L"\xFFFF\xFFFF"s, Stored(REG_DWORD, L"char"));
    EXPECT_EQ(L"\xFFFD\xFFFF"s, Stored(REG_DWORD, nullptr)); // the key's default value
    EXPECT_EQ(L"\0"s, Stored(REG_SZ, L"empty"));
    EXPECT_EQ(L"-1.00000000000000e-001\0"s, Stored(REG_SZ, L"double"));
    EXPECT_EQ(L"1.234567e+006\0"s, Stored(REG_SZ, L"float"));
    EXPECT_EQ(L"\xC8\0"s, Stored(REG_DWORD, L"v\\w", L"\\a\\b\\c"));
}

TEST_F(RegistryFilers, AnyBytesAreReadWithinTheirBounds)
{
    const struct {
        DWORD type;
        std::string bytes;
        std::wstring told; // as a number, a flag, a text, a floating number, and a character
    } cases[] = {
        {REG_DWORD, "A\0B\0"s, L"4325441;1;AB;(1);A"},
        {REG_DWORD, "\0\1\0\0"s, L"256;1;\x100;(1);\0"s},
        {REG_SZ, "9\0.\09\0x\0"s, L"(1);(1);9.9x;9.9;-"},
        {REG_BINARY, "A\0B"s, L"4325441;1;AB;(1);A"}, // though its type is no character's
        {REG_BINARY, "", L"0;0;;(1);\0"s},
        {REG_BINARY, std::string(160, 'A'), L"(1);(1);" + std::wstring(80, 0x4141) + L";(1);-"},
        {REG_BINARY, "A\0\0\0B\0"s, L"(1);(1);A;(1);-"}, // too long for a number
    };
    EXPECT_TRUE(out.WriteInt32(L"v", 0));
    for (const auto& one : cases) {
        RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), L"v", one.type, one.bytes.data(),
                        static_cast<DWORD>(one.bytes.size()));
        std::wstring told;
        EXPECT_EQ("", PlayOnFilers(in, in, "Uv;bv;sv;dv", &told));
        char character = 0;
        EXPECT_EQ(one.type == REG_DWORD, in.ReadChar(L"v", &character, '-'));
        EXPECT_EQ(one.told, told + static_cast<wchar_t>(character));
    }
}
