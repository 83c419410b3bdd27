#include "diagnostics/CrashDump.h"

#include "diagnostics/dump/RecorderBlocks.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/FailingCalls.h"
#include "tests/support/LeakCheck.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <dbghelp.h>
#include <psapi.h>

namespace
{

const wchar_t dumpPath[] = L"C:\\Temp\\DebugDump.log";
const std::wstring prefix = L"C:\\Temp\\crash test " + std::to_wstring(GetTickCount64());

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
    VirtualProtect(Ring(core) + 500, 1, PAGE_READWRITE | PAGE_GUARD, &before);
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

    PassingCore core;
    MKLoggerAdapter adapter{&core};
};

const char createFile[] = "CreateFileW";
const char loadLibrary[] = "LoadLibraryW";
const char getProcAddress[] = "GetProcAddress";
const char listModules[] = "K32EnumProcessModules";
const char tellDate[] = "_ctime64_s";

void StandStill(SYSTEMTIME* time)
{
    *time = {2026, 11, 0, 22, 9, 5, 3, 42};
}

/// What writes minidumps may fail as well.
FARPROC Find(HMODULE library, const char* name)
{
    const auto found = CallOrFail<getProcAddress, 0, FARPROC>(library, name);
    const bool fails = std::strcmp(name, "MiniDumpWriteDump") == 0 && IsCallToFail(name);
    return fails ? [] { return INT_PTR{FALSE}; } : found;
}

} // namespace

// The slots of what dumps ask the system for.
extern "C" {
decltype(&GetLocalTime) __imp_GetLocalTime = StandStill;
decltype(&CreateFileW) __imp_CreateFileW = CallOrFail<createFile, -1>;
decltype(&LoadLibraryW) __imp_LoadLibraryW = CallOrFail<loadLibrary, 0>;
decltype(&GetProcAddress) __imp_GetProcAddress = Find;
decltype(&_ctime64_s) __imp__ctime64_s = CallOrFail<tellDate, EINVAL>;
BOOL WINAPI EnumProcessModules(HANDLE process, HMODULE* found, DWORD size, DWORD* bytes)
{
    return CallOrFail<listModules, FALSE, BOOL>(process, found, size, bytes);
}
}

TEST(DumpToFile, ReplacesTheFileByLinesOfItsPlatformAndAnswersFalseWhereItCannot)
{
    Log log;
    EXPECT_TRUE(log.adapter.DumpToFile());
    const ExpectNoMoreHandles handles;
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
    CrashDump crashDump(prefix.c_str());
    KLogRecord* const ring = Ring(log.core);
    const auto protect = [&](DWORD access, DWORD before = 0) {
        for (KLogRecord* const each : {ring, Ring(*KLogger::GetModuleLogger())})
            VirtualProtect(each + 500, 1, access, &before);
    };
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(ring);
    const std::uintptr_t page = (start + 500 * sizeof *ring) / 0x1000 * 0x1000;
    const std::string last = std::to_string((page - start) / sizeof *ring - 1);
    const ExpectNoMoreHandles handles;
    for (const DWORD access : {PAGE_NOACCESS, PAGE_READWRITE | PAGE_GUARD}) {
        protect(access);
        EXPECT_FALSE(log.adapter.DumpToFile() || crashDump.WriteText());
        protect(PAGE_READWRITE);
        EXPECT_TRUE(DeleteFileW(crashDump.GetPath()));
        EXPECT_NE(std::string::npos, Read(dumpPath).find(", -7, " + last + ", 2, "));
    }
}

TEST(CrashDump, TextsHaveNamesOfTheirOwnAndWhatCannotBeMadeIsAnsweredFalse)
{
    EXPECT_NO_THROW(CrashDump(std::wstring(900, L'x').c_str()));
    EXPECT_THROW(CrashDump(std::wstring(901, L'x').c_str()), std::length_error);
    CreateDirectoryA("C:\\Temp", nullptr);
    CrashDump crashDump(prefix.c_str()), nowhere(L"C:\\no such folder\\x");
    EXPECT_STREQ(L"", crashDump.GetPath());
    const std::wstring end = L"-042-" + std::to_wstring(GetCurrentProcessId());
    const auto write = [&] { return crashDump.WriteText(); };
    const auto writeBeside = [&] { EXPECT_FALSE(write() || crashDump.WriteMinidump(nullptr)); };
    const ExpectNoMoreHandles handles;
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(Interrupt(*KLogger::GetModuleLogger(), write, writeBeside));
        const std::wstring made = crashDump.GetPath();
        EXPECT_EQ(prefix.size() + 16, made.find(end));
        EXPECT_EQ(0u,
                  Read(crashDump.GetPath(), FILE_FLAG_DELETE_ON_CLOSE).find("%% Reference time: "));
    }
    DumpPath path(prefix.c_str());
    std::set<std::wstring> paths;
    for (int i = 0; i < 100; ++i, paths.insert(path.Get())) // all in a millisecond
        CloseHandle(path.MakeFile(L".log"));
    EXPECT_EQ(100u, paths.size());
    EXPECT_EQ(INVALID_HANDLE_VALUE, path.MakeFile(L".log"));
    for (const std::wstring& made : paths)
        EXPECT_TRUE(DeleteFileW(made.c_str()));
    EXPECT_FALSE(nowhere.WriteText() || nowhere.WriteMinidump(nullptr));
}

TEST(CrashDump, LeavesNoMinidumpWhenTheSystemRefusesAnythingButItsListOfModules)
{
    const auto write = [] {
        CrashDump crashDump(prefix.c_str());
        const bool written = crashDump.WriteMinidump(nullptr);
        EXPECT_EQ(written, DeleteFileW(crashDump.GetPath()) != FALSE);
        return written;
    };
    ForEachFailingCall(write, [](const std::string& failed, bool written) {
        EXPECT_EQ(failed == listModules, written);
    });
}

TEST(CrashDump, FindsOfARecorderThatIsOverwrittenWhatCanBeReadAndOfAnUnknownOneNothing)
{
    RecorderBlocks blocks;
    const auto foundWith = [&](std::uint64_t address, std::uint64_t value) {
        std::swap(*reinterpret_cast<std::uint64_t*>(address), value);
        blocks.Collect();
        std::swap(*reinterpret_cast<std::uint64_t*>(address), value);
        return blocks.GetCount();
    };
    blocks.Collect();
    const std::vector<RecorderBlock> whole(blocks.Get(), blocks.Get() + blocks.GetCount());
    for (std::uint64_t word = 0; word < 20; ++word) // of the description
        for (const std::uint64_t value : {0ull, ~0ull})
            EXPECT_EQ(word < 4 || (word == 4 && value == 0),
                      foundWith(whole[0].address + 8 * word, value) == 0);
    EXPECT_EQ(whole.size() - 1, foundWith(whole[1].address, 0)); // without a ring
    const std::uint64_t newest = whole[3].address; // of names, which then follow themselves
    EXPECT_EQ(std::uint32_t{RecorderBlocks::capacity}, foundWith(newest, newest));
}

TEST(KLogger, HeaderTellsWhenTheStartCannotBeTold)
{
    const auto dump = [] {
        PassingCore core;
        return TakeDump(core);
    };
    ForEachFailingCall(dump, [](const std::string&, const std::string& text) {
        EXPECT_EQ(text.size(), text.find(" is wrong.\n%%\n") + 14);
    });
}

// That it can be read by what it says of itself, its reader's tests see.
TEST(CrashDump, MinidumpOfAFaultHoldsTheRecorderAndAsksForNoMemory)
{
    LeakCheck::Skip(); // the block of the long name stays
    KLogger& log = *KLogger::GetModuleLogger();
    const std::string names[] = {"a class", "a state", std::string(0x5000, 'x'), "an object",
                                 "a thread"}; // one takes more than a block
    log.SetIdName(7, names[0]);
    log.SetClassStateName(7, 3, names[1]);
    log.SetIdName(8, names[2]);
    log.SetObjectName(&log, names[3]);
    log.SetThreadName(names[4]);
    for (std::uint32_t i = 0; i < ringSize + 10; ++i)
        log.AddRecord(-25, 2, i, 7, 7, &log);
    CrashDump crashDump(prefix.c_str());
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
    std::string dump = Read(crashDump.GetPath(), FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_GT(6500000u, dump.size());

    for (const std::string& name : names)
        EXPECT_NE(std::string::npos, dump.find(name + '\0')) << name.substr(0, 20);
    const std::string ring(reinterpret_cast<const char*>(Ring(log)), ringSize * sizeof(KLogRecord));
    EXPECT_NE(std::string::npos, dump.find(ring));
    void* stream = nullptr;
    for (const ULONG type : {ThreadListStream, ModuleListStream, ExceptionStream})
        EXPECT_TRUE(MiniDumpReadDumpStream(&dump[0], type, nullptr, &stream, nullptr)) << type;
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION,
              static_cast<MINIDUMP_EXCEPTION_STREAM*>(stream)->ExceptionRecord.ExceptionCode);
}
