#include "diagnostics/KLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <windows.h>

namespace
{

const char dumpPath[] = "C:\\Temp\\DebugDump.log";

std::string ReadDumpFile()
{
    std::ifstream file(dumpPath, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

TEST(DumpToFile, ReplacesTheFileByLinesOfItsPlatformAndAnswersFalseWhereItCannotOrFaults)
{
    LeakCheck::Skip(); // the stream that the fault cuts short is not destroyed
    KLogger core;
    MKLoggerAdapter adapter(&core);
    for (std::uint32_t i = 0; i < 1000; ++i)
        core.AddRecord(-7, i, 2, 3, 4, nullptr);
    CreateDirectoryA("C:\\Temp", nullptr);
    EXPECT_TRUE(adapter.DumpToFile());
    EXPECT_TRUE(adapter.DumpToFile());
    const std::string text = ReadDumpFile();
    EXPECT_EQ(0u, text.rfind("%% Reference time: "));
    EXPECT_NE(std::string::npos, text.find("\r\n    0.000000, -7, 0, 2, 3, 4, 0, "));

    const HANDLE taken = CreateFileA(dumpPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(adapter.DumpToFile());
    CloseHandle(taken);

    // The ring pointer is the first field of a core, for tools and for us.
    KLogRecord* const ring = *reinterpret_cast<KLogRecord**>(&core);
    const auto start = reinterpret_cast<std::uintptr_t>(ring);
    const std::uintptr_t page = (start + 500 * sizeof *ring) / 0x1000 * 0x1000;
    const std::string last = std::to_string((page - start) / sizeof *ring - 1);
    DWORD access = 0;
    VirtualProtect(ring + 500, 1, PAGE_NOACCESS, &access);
    EXPECT_FALSE(adapter.DumpToFile());
    EXPECT_NE(std::string::npos, ReadDumpFile().find(", -7, " + last + ", 2, "));
    VirtualProtect(ring + 500, 1, access, &access);
    EXPECT_TRUE(adapter.DumpToFile());
}
