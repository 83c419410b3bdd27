#include "diagnostics/KLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"

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

/// A log with a thousand records.
struct Log {
    Log()
    {
        CreateDirectoryA("C:\\Temp", nullptr);
        for (std::uint32_t i = 0; i < 1000; ++i)
            core.AddRecord(-7, i, 2, 3, 4, nullptr);
    }

    KLogger core;
    MKLoggerAdapter adapter{&core};
};

} // namespace

TEST(DumpToFile, ReplacesTheFileByLinesOfItsPlatformAndAnswersFalseWhereItCannot)
{
    Log log;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const ExpectSameHandles handles;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const std::string text = ReadDumpFile();
    ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
    EXPECT_TRUE(log.adapter.DumpToFile());
    EXPECT_FALSE(DisarmAllocationFailure()); // asked for no memory
    EXPECT_EQ(text, ReadDumpFile());
    EXPECT_EQ(0u, text.rfind("%% Reference time: "));
    EXPECT_NE(std::string::npos, text.find("\r\n    0.000000, -7, 0, 2, 3, 4, 0, "));

    const HANDLE taken = CreateFileA(dumpPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(log.adapter.DumpToFile());
    CloseHandle(taken);
}

TEST(DumpToFile, EndsAtAFaultOfAnyKindWithWhatWasWrittenAndNothingLeftOpen)
{
    Log log;
    // The ring pointer is the first field of a core, for tools and for us.
    KLogRecord* const ring = *reinterpret_cast<KLogRecord**>(&log.core);
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(ring);
    const std::uintptr_t page = (start + 500 * sizeof *ring) / 0x1000 * 0x1000;
    const std::string last = std::to_string((page - start) / sizeof *ring - 1);
    const ExpectSameHandles handles;
    for (const DWORD access : {PAGE_NOACCESS, PAGE_READWRITE | PAGE_GUARD}) {
        DWORD before = 0;
        VirtualProtect(ring + 500, 1, access, &before);
        EXPECT_FALSE(log.adapter.DumpToFile());
        VirtualProtect(ring + 500, 1, PAGE_READWRITE, &before);
        EXPECT_NE(std::string::npos, ReadDumpFile().find(", -7, " + last + ", 2, "));
    }
}
