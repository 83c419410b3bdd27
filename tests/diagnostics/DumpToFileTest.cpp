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

/// A log with a thousand records, and the page in the middle of them.
struct Log {
    Log()
    {
        CreateDirectoryA("C:\\Temp", nullptr);
        for (std::uint32_t i = 0; i < 1000; ++i)
            core.AddRecord(-7, i, 2, 3, 4, nullptr);
        const auto start = reinterpret_cast<std::uintptr_t>(Ring());
        const std::uintptr_t page = (start + 500 * sizeof(KLogRecord)) / 0x1000 * 0x1000;
        beforePage = (page - start) / sizeof(KLogRecord);
        access = PAGE_READWRITE;
    }

    // The ring pointer is the first field of a core, for tools and for us.
    KLogRecord* Ring() { return *reinterpret_cast<KLogRecord**>(&core); }

    void Protect(DWORD newAccess) { VirtualProtect(Ring() + 500, 1, newAccess, &access); }

    KLogger core;
    MKLoggerAdapter adapter{&core};
    std::size_t beforePage;
    DWORD access;
};

} // namespace

TEST(DumpToFile, ReplacesTheFileByLinesOfItsPlatformAndAnswersFalseWhereItCannot)
{
    Log log;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const ExpectSameHandles handles;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const std::string text = ReadDumpFile();
    EXPECT_EQ(0u, text.rfind("%% Reference time: "));
    EXPECT_NE(std::string::npos, text.find("\r\n    0.000000, -7, 0, 2, 3, 4, 0, "));

    const HANDLE taken = CreateFileA(dumpPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(log.adapter.DumpToFile());
    CloseHandle(taken);
}

TEST(DumpToFile, EndsAtAFaultOfAnyKindWithWhatWasWrittenAndNothingLeftOpen)
{
    Log log;
    const ExpectSameHandles handles;
    for (const DWORD access : {PAGE_NOACCESS, PAGE_READWRITE | PAGE_GUARD}) {
        log.Protect(access);
        EXPECT_FALSE(log.adapter.DumpToFile());
        log.Protect(PAGE_READWRITE);
        const std::string last = ", -7, " + std::to_string(log.beforePage - 1) + ", 2, ";
        EXPECT_NE(std::string::npos, ReadDumpFile().find(last));
    }
    EXPECT_TRUE(log.adapter.DumpToFile());
}

TEST(DumpToFile, AsksForNoMemory)
{
    Log log;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const std::string whole = ReadDumpFile();
    ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
    EXPECT_TRUE(log.adapter.DumpToFile());
    EXPECT_FALSE(DisarmAllocationFailure());
    EXPECT_EQ(whole, ReadDumpFile());
}
