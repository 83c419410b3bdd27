// Minidumps of real processes, beside the text dumps of the same processes at the same moments.

#include "diagnostics/CrashDump.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/LeakCheck.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/reading/DumpFile.h"
#include "viewer/reading/minidump/MinidumpDumps.h"
#include "viewer/reading/TextFile.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/Summary.h"

#include <fstream>
#include <mutex>
#include <thread>

#include <windows.h>

#include <dbghelp.h>

namespace
{

const wchar_t prefix[] = L"C:\\Temp\\viewer test";
const char textFile[] = "C:\\Temp\\viewer test.log";
const char fullFile[] = "C:\\Temp\\viewer test.dmp";
const wchar_t readyEvent[] = L"Viewer test is ready";

KLogger& Log()
{
    return *KLogger::GetModuleLogger();
}

/// Names of every kind, and a ring that has wrapped, or not.
void Record(std::uint32_t records)
{
    CreateDirectoryA("C:\\Temp", nullptr);
    Log().SetThreadName("recorder (1)");
    Log().SetIdName(0x80000001, "Pump");
    Log().SetIdName(0x80000002, "Drain");
    Log().SetIdName(3, "RunsDry");
    Log().SetMessageName(3, "Start");
    Log().SetClassStateName(0x80000001, 3, "Running at last");
    Log().SetObjectName(&records, "main pump");
    for (std::uint32_t i = 0; i < records; ++i) {
        for (const std::int32_t kind : {-7, -105, -25, -21, 0, -8})
            Log().AddRecord(kind, i % 7, i, 0x80000001, 0x80000002, i % 2 ? &records : nullptr);
    }
    Log().AddRecord(-7, 0, 0, 0x80000001, 0x80000002, &records);
}

void WriteText()
{
    std::ofstream file(textFile);
    Log().WriteDump(file);
}

bool WriteMinidump(HANDLE process, int type, _EXCEPTION_POINTERS* pointers)
{
    const HANDLE file = CreateFileA(fullFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    MINIDUMP_EXCEPTION_INFORMATION exception = {GetCurrentThreadId(), pointers, FALSE};
    SymSetOptions(SymGetOptions() | SYMOPT_DEFERRED_LOADS); // no dump needs symbols
    const BOOL written =
        MiniDumpWriteDump(process, GetProcessId(process), file, static_cast<MINIDUMP_TYPE>(type),
                          pointers ? &exception : nullptr, nullptr, nullptr);
    CloseHandle(file);
    return written;
}

std::string ReadAndDelete(const std::filesystem::path& file)
{
    std::string bytes = TextFile::Read(file);
    std::filesystem::remove(file);
    return bytes;
}

/// The wall clock, the records in order, and all names in them.
std::string Story(std::string bytes)
{
    const Recordings recordings = RecordingsOf(bytes);
    std::string text = RecordList::Compose(recordings);
    text += std::to_string(recordings[0].dump.reference) + " " +
            std::to_string(recordings[0].dump.records.size());
    for (const DumpRecord& record : recordings[0].dump.records)
        for (const std::int64_t number :
             {record.time, std::int64_t(record.kind), std::int64_t(record.param1),
              std::int64_t(record.param2), std::int64_t(record.classId),
              std::int64_t(record.pointId), std::int64_t(record.object),
              std::int64_t(record.threadId)})
            text += " " + std::to_string(number);
    return text;
}

/// Not by EXPECT_EQ, which would show all of a ring.
void ExpectSame(const std::string& text, const std::string& minidump, const char* which)
{
    const std::string wanted = Story(text);
    EXPECT_GT(wanted.size(), 1000u);
    EXPECT_TRUE(wanted == Story(minidump)) << which;
}

} // namespace

TEST(Minidump, OfAnAccessViolationTellsWhatTheTextTells)
{
    LeakCheck::Skip(); // names stay
    Record(30000);
    CrashDump crashDump(prefix);
    const GuardedBody fault = [](void*) { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    const GuardFilter filter = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
        EXPECT_TRUE(static_cast<CrashDump*>(context)->WriteMinidump(pointers));
        WriteText();
        EXPECT_TRUE(WriteMinidump(GetCurrentProcess(), MiniDumpWithFullMemory, pointers));
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(fault, filter, &crashDump));
    const std::string text = ReadAndDelete(textFile);
    const std::string minidump = ReadAndDelete(crashDump.GetPath());
    ExpectSame(text, minidump, "of our own");
    ExpectSame(text, ReadAndDelete(fullFile), "with full memory");

    const std::string summary = Summary::Compose(RecordingsOf(minidump));
    EXPECT_NE(std::string::npos, summary.find(", access violation C0000005 at viewer-tests.exe+"));
    EXPECT_NE(std::string::npos, summary.find(", writing 0000000000001234\n"));
    EXPECT_NE(std::string::npos, summary.find("recorder of viewer-tests.exe in "));
    for (std::size_t length = 0; length < minidump.size() / 2; length += 99991)
        EXPECT_THROW(RecordingsOf(minidump.substr(0, length)), std::runtime_error) << length;
}

TEST(Minidump, OfExhaustedMemoryTellsWhatTheTextTells)
{
    LeakCheck::Skip();
    Record(5);
    CrashDump crashDump(prefix);
    ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
    bool isExhausted = false;
    try {
        delete new KLogger;
    } catch (const std::bad_alloc&) {
        isExhausted = true;
        crashDump.WriteMinidump(nullptr);
    }
    DisarmAllocationFailure();
    EXPECT_TRUE(isExhausted);
    WriteText();
    ExpectSame(ReadAndDelete(textFile), ReadAndDelete(crashDump.GetPath()), "of our own");
}

// Two threads that wait for each other; what started them says so, and waits too.
TEST(Minidump, DISABLED_Deadlocked)
{
    Record(10);
    static std::timed_mutex one, other;
    const auto lock = [](std::timed_mutex& first, std::timed_mutex& second) {
        first.lock();
        Log().AddRecord(-7, 0, 0, 0x80000001, 3, &first);
        Sleep(300);
        second.lock();
    };
    std::thread(lock, std::ref(one), std::ref(other)).detach();
    std::thread(lock, std::ref(other), std::ref(one)).detach();
    Sleep(600);
    WriteText();
    SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, readyEvent));
    Sleep(INFINITE);
}

TEST(Minidump, OfADeadlockTakenFromOutsideTellsWhatTheTextTells)
{
    LeakCheck::Skip();
    CreateDirectoryA("C:\\Temp", nullptr);
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, readyEvent);
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"x --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_Deadlocked";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    ASSERT_TRUE(CreateProcessW(program, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &child));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready, 60000));
    EXPECT_TRUE(WriteMinidump(child.hProcess, MiniDumpNormal, nullptr));
    EXPECT_THROW(DumpFile::Read(ReadAndDelete(fullFile)), NoRecorder);
    EXPECT_TRUE(WriteMinidump(child.hProcess, MiniDumpWithFullMemory, nullptr));
    TerminateProcess(child.hProcess, 0);
    for (const HANDLE handle : {child.hThread, child.hProcess, ready})
        CloseHandle(handle);

    const std::string minidump = ReadAndDelete(fullFile);
    ExpectSame(ReadAndDelete(textFile), minidump, "from outside");
    const std::string summary = Summary::Compose(RecordingsOf(minidump));
    const std::size_t first = summary.find("in Pump.RunsDry");
    EXPECT_NE(std::string::npos, summary.find("in Pump.RunsDry", first + 1)) << summary;
}
