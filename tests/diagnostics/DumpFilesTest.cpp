#include "diagnostics/CrashDump.h"

#include "diagnostics/KLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "diagnostics/RecorderDescription.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/ProcessHandles.h"

#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include <windows.h>

#include <dbghelp.h>

namespace
{

const wchar_t dumpPath[] = L"C:\\Temp\\DebugDump.log";
const wchar_t prefix[] = L"C:\\Temp\\crash test";

std::string Read(const wchar_t* path, DWORD flags = 0)
{
    const HANDLE file = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, flags, nullptr);
    DWORD size = GetFileSize(file, nullptr);
    std::string content(size, '\0');
    ReadFile(file, &content[0], size, &size, nullptr);
    CloseHandle(file);
    return content;
}

/// What `dump` answers, with `action` done in the midst of it, where it comes to a guarded page.
bool Interrupt(KLogger& core, std::function<bool()> dump, std::function<void()> action)
{
    static std::function<void()> inTheMidst;
    inTheMidst = action;
    const auto handle = [](_EXCEPTION_POINTERS* pointers) -> LONG {
        if (pointers->ExceptionRecord->ExceptionCode != STATUS_GUARD_PAGE_VIOLATION)
            return EXCEPTION_CONTINUE_SEARCH;
        inTheMidst();
        return EXCEPTION_CONTINUE_EXECUTION;
    };
    DWORD before = 0;
    VirtualProtect(*reinterpret_cast<KLogRecord**>(&core) + 500, 1, PAGE_READWRITE | PAGE_GUARD,
                   &before);
    void* const handler = AddVectoredExceptionHandler(1, handle);
    const bool answer = dump();
    RemoveVectoredExceptionHandler(handler);
    return answer;
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

/// A reader of minidumps that knows of a recorder what its description says, and nothing else.
struct Reader {
    explicit Reader(const std::string& dump)
    {
        const auto& header = *reinterpret_cast<const MINIDUMP_HEADER*>(dump.data());
        const auto* entry =
            reinterpret_cast<const MINIDUMP_DIRECTORY*>(dump.data() + header.StreamDirectoryRva);
        for (ULONG i = 0; i < header.NumberOfStreams; ++i, ++entry)
            streams[entry->StreamType] = dump.data() + entry->Location.Rva;
        const auto* block =
            reinterpret_cast<const RecorderBlock*>(streams.at(RecorderBlocksStream));
        for (std::uint32_t type = RecorderFirstBlockStream; streams.count(type); ++type, ++block) {
            EXPECT_TRUE(memory.emplace(block->address, streams[type]).second);
            if (std::memcmp(streams[type], "Varek recorder\x1A", 16) == 0)
                told = reinterpret_cast<const RecorderDescription*>(streams[type]);
        }
        core = reinterpret_cast<std::uintptr_t>(told->core);
    }

    const char* At(std::uint64_t address) const
    {
        const auto block = std::prev(memory.upper_bound(address));
        return block->second + (address - block->first);
    }
    std::uint64_t Read(std::uint64_t address) const
    {
        return *reinterpret_cast<const std::uint64_t*>(At(address));
    }
    std::string Name(std::uint32_t table, std::uint64_t key) const
    {
        std::uint64_t name = Read(core + table + told->newestName);
        while (name && Read(name + told->nameKey) != key)
            name = Read(name + told->olderName);
        return name ? std::string(At(name + told->nameText), Read(name + told->nameLength)) : "";
    }

    std::map<std::uint32_t, const char*> streams;
    std::map<std::uint64_t, const char*> memory;
    const RecorderDescription* told = nullptr;
    std::uint64_t core;
};

} // namespace

// The import slot through which files ask for the time in their names.
extern "C" {
decltype(&GetLocalTime) __imp_GetLocalTime = [](SYSTEMTIME* time) {
    GetSystemTime(time);
    time->wMilliseconds = 42;
};
}

TEST(DumpToFile, ReplacesTheFileByLinesOfItsPlatformAndAnswersFalseWhereItCannot)
{
    Log log;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const ExpectSameHandles handles;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const std::string text = Read(dumpPath);
    ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
    EXPECT_TRUE(log.adapter.DumpToFile());
    EXPECT_FALSE(DisarmAllocationFailure()); // asked for no memory
    EXPECT_EQ(text, Read(dumpPath));
    EXPECT_EQ(0u, text.rfind("%% Reference time: "));
    EXPECT_NE(std::string::npos, text.find("\r\n    0.000000, -7, 0, 2, 3, 4, 0, "));

    const HANDLE taken = CreateFileW(dumpPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(log.adapter.DumpToFile());
    CloseHandle(taken);
    const auto open = [] { EXPECT_TRUE(std::ofstream("C:\\Temp\\DebugDump.log", std::ios::app)); };
    EXPECT_TRUE(Interrupt(
        log.core, [&] { return log.adapter.DumpToFile(); }, open));
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
        EXPECT_NE(std::string::npos, Read(dumpPath).find(", -7, " + last + ", 2, "));
    }
}

TEST(CrashDump, TextsHaveNamesOfTheirOwnAndWhatCannotBeMadeIsAnsweredFalse)
{
    EXPECT_NO_THROW(CrashDump(std::wstring(900, L'x').c_str()));
    EXPECT_THROW(CrashDump(std::wstring(901, L'x').c_str()), std::length_error);
    CreateDirectoryA("C:\\Temp", nullptr);
    CrashDump crashDump(prefix), nowhere(L"C:\\no such folder\\x");
    EXPECT_STREQ(L"", crashDump.GetPath());
    const std::wstring end = L"-042-" + std::to_wstring(GetCurrentProcessId());
    const auto write = [&] { return crashDump.WriteText(); };
    const auto writeBeside = [&] { EXPECT_FALSE(write() || crashDump.WriteMinidump(nullptr)); };
    const ExpectSameHandles handles;
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(Interrupt(*KLogger::GetModuleLogger(), write, writeBeside));
        const std::wstring made = crashDump.GetPath();
        EXPECT_EQ(std::wcslen(prefix) + 16, made.find(end));
        EXPECT_EQ(0u,
                  Read(crashDump.GetPath(), FILE_FLAG_DELETE_ON_CLOSE).find("%% Reference time: "));
    }
    DumpPath path(prefix);
    std::set<std::wstring> paths;
    for (int i = 0; i < 50; ++i, paths.insert(path.Get())) // several in a millisecond
        CloseHandle(path.MakeFile(L".log"));
    EXPECT_EQ(50u, paths.size());
    for (const std::wstring& made : paths)
        EXPECT_TRUE(DeleteFileW(made.c_str()));
    EXPECT_FALSE(nowhere.WriteText() || nowhere.WriteMinidump(nullptr));
}

TEST(CrashDump, MinidumpOfAFaultHoldsTheRecorderAsItsDescriptionSays)
{
    LeakCheck::Skip(); // the block of the long name stays
    KLogger& log = *KLogger::GetModuleLogger();
    log.SetIdName(7, "Pump");
    log.SetClassStateName(7, 3, "Open");
    log.SetIdName(8, std::string(0x5000, 'x')); // more than a block
    log.SetObjectName(&log, "the pump");
    log.SetThreadName("tester");
    for (std::uint32_t i = 0; i < 0x20000 + 10; ++i)
        log.AddRecord(-25, 2, i, 7, 7, &log);
    CrashDump crashDump(prefix);
    EXPECT_FALSE(crashDump.WriteMinidump(reinterpret_cast<_EXCEPTION_POINTERS*>(0x1234)));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(crashDump.GetPath()));
    const GuardedBody fault = [](void*) { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    const GuardFilter write = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
        ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
        EXPECT_TRUE(static_cast<CrashDump*>(context)->WriteMinidump(pointers));
        EXPECT_FALSE(DisarmAllocationFailure());
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(fault, write, &crashDump));
    const std::string dump = Read(crashDump.GetPath(), FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_GT(6500000u, dump.size());

    const Reader reader(dump);
    const RecorderDescription& told = *reader.told;
    ASSERT_EQ(&log, told.core);
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION,
              reinterpret_cast<const MINIDUMP_EXCEPTION_STREAM*>(reader.streams.at(ExceptionStream))
                  ->ExceptionRecord.ExceptionCode);
    EXPECT_TRUE(reader.streams.count(ThreadListStream) && reader.streams.count(ModuleListStream));
    const auto capacity = static_cast<std::uint32_t>(reader.Read(reader.core + told.capacity));
    const auto latest = static_cast<std::uint32_t>(reader.Read(reader.core + told.writeIndex));
    const std::uint64_t ring = reader.Read(reader.core + told.records);
    const std::uint64_t newest = ring + latest % capacity * told.recordSize;
    EXPECT_EQ(0x20000u + 9, static_cast<std::uint32_t>(reader.Read(newest + told.param2)));
    EXPECT_EQ(0, std::memcmp(reinterpret_cast<void*>(ring), reader.At(ring),
                             std::size_t{capacity} * told.recordSize));
    EXPECT_EQ("Pump", reader.Name(told.idNames, 7));
    EXPECT_EQ(std::string(0x5000, 'x'), reader.Name(told.idNames, 8));
    EXPECT_EQ("Open", reader.Name(told.stateNames, 703));
    EXPECT_EQ("the pump", reader.Name(told.objectNames, reader.core));
    EXPECT_EQ("tester", reader.Name(told.threadNames, GetCurrentThreadId()));
    EXPECT_EQ("Scope_push", reader.Name(told.kindNames, 0xFFFFFFF9));
}
