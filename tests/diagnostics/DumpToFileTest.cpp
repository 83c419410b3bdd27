#include "diagnostics/MKLoggerAdapter.h"

#include "diagnostics/KLogger.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include <windows.h>

namespace
{

const char dumpPath[] = "C:\\Temp\\DebugDump.log";
const std::uint32_t ringSize = 0x20000;

struct DumpToFile : testing::Test {
    DumpToFile() { CreateDirectoryA("C:\\Temp", nullptr); }

    static std::string ReadFile()
    {
        std::ifstream file(dumpPath, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    KLogger core;
    MKLoggerAdapter adapter{&core};
};

} // namespace

TEST_F(DumpToFile, ReplacesTheFileByLinesOfItsPlatformUnlessItCannotBeOpened)
{
    core.AddRecord(-7, 1, 2, 3, 4, nullptr);
    EXPECT_TRUE(adapter.DumpToFile());
    EXPECT_TRUE(adapter.DumpToFile());
    const std::string text = ReadFile();
    EXPECT_EQ(0u, text.find("%% Reference time: "));
    EXPECT_EQ(text.find("% Scope_push"), text.rfind("% Scope_push"));
    EXPECT_NE(std::string::npos, text.find("\r\n    0.000000, -7, 1, 2, 3, 4, 0, "));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'),
              std::count(text.begin(), text.end(), '\r'));

    const HANDLE taken = CreateFileA(dumpPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(adapter.DumpToFile());
    CloseHandle(taken);
}

TEST_F(DumpToFile, FaultInMidDumpAnswersFalseAndKeepsWhatWasWritten)
{
    LeakCheck::Skip(); // the stream that the fault cuts short is not destroyed
    for (std::uint32_t i = 0; i < 1000; ++i)
        core.AddRecord(-7, i, 0, 0, 0, nullptr);

    // The ring pointer is the first field of a core, for tools and for us.
    KLogRecord*& ring = *reinterpret_cast<KLogRecord**>(&core);
    KLogRecord* const whole = ring;
    char* const pages = static_cast<char*>(
        VirtualAlloc(nullptr, ringSize * sizeof *ring, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ring = reinterpret_cast<KLogRecord*>(pages);
    std::copy(whole, whole + 1000, ring);
    DWORD before = 0;
    VirtualProtect(pages + 0x4000, 0x1000, PAGE_NOACCESS, &before);

    EXPECT_FALSE(adapter.DumpToFile());
    const std::string text = ReadFile();
    EXPECT_NE(std::string::npos, text.find(", -7, 400, 0, "));
    EXPECT_EQ(std::string::npos, text.find(", -7, 500, 0, "));

    ring = whole;
    VirtualFree(pages, 0, MEM_RELEASE);
    EXPECT_TRUE(adapter.DumpToFile());
}
