// Minidumps of real processes, beside the text dumps of the same processes at the same moments.

#include "diagnostics/CrashDump.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/StructuredGuard.h"
#include "tests/support/Allocations.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/Regex.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/reading/DumpFile.h"
#include "viewer/reading/minidump/MinidumpDumps.h"
#include "viewer/reading/TextFile.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/Summary.h"

#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>

#include <process.h>
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

bool WriteMinidump(HANDLE process, int type)
{
    const HANDLE file = CreateFileA(fullFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    SymSetOptions(SymGetOptions() | SYMOPT_DEFERRED_LOADS); // no dump needs symbols
    const BOOL written =
        MiniDumpWriteDump(process, GetProcessId(process), file, static_cast<MINIDUMP_TYPE>(type),
                          nullptr, nullptr, nullptr);
    CloseHandle(file);
    return written;
}

std::string ReadAndDelete(const std::filesystem::path& file)
{
    std::string bytes = TextFile::Read(file);
    std::filesystem::remove(file);
    return bytes;
}

/// The wall clock, the raw numbers of the records in order, and all names in them.
std::string Story(const std::string& bytes)
{
    const Recordings recordings = RecordingsOf(bytes);
    std::ostringstream text;
    text << RecordList::Compose(recordings) << recordings[0].dump.reference;
    for (const DumpRecord& record : recordings[0].dump.records)
        text << ' ' << record.time << ' ' << record.kind << ' ' << record.param1 << ' '
             << record.param2 << ' ' << record.classId << ' ' << record.pointId << ' '
             << record.object << ' ' << record.threadId;
    return text.str();
}

/// Not by EXPECT_EQ, which would show all of a ring.
void ExpectSame(const std::string& text, const std::string& minidump, const char* which)
{
    const std::string wanted = Story(text);
    EXPECT_GT(wanted.size(), 1000u);
    EXPECT_TRUE(wanted == Story(minidump)) << which;
}

} // namespace

TEST(Crash, OfAnAccessViolationTellsWhatTheTextTells)
{
    LeakCheck::Skip(); // names stay
    Record(30000);
    CrashDump crashDump(prefix);
    const GuardedBody fault = [](void*) { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    const GuardFilter filter = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
        EXPECT_TRUE(static_cast<CrashDump*>(context)->WriteMinidump(pointers));
        WriteText();
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(fault, filter, &crashDump));
    const std::string text = ReadAndDelete(textFile);
    const std::string minidump = ReadAndDelete(crashDump.GetPath());
    ExpectSame(text, minidump, "of our own");

    const std::string summary = Summary::Compose(RecordingsOf(minidump));
    for (const char* told : {", access violation C0000005 at viewer-tests.exe+",
                             ", writing 0000000000001234\n", "recorder of viewer-tests.exe in "})
        EXPECT_NE(std::string::npos, summary.find(told)) << told;
    for (std::size_t length = 0; length < minidump.size() / 2; length += 99991)
        EXPECT_THROW(RecordingsOf(minidump.substr(0, length)), std::runtime_error) << length;
}

TEST(Crash, OfExhaustedMemoryTellsWhatTheTextTells)
{
    LeakCheck::Skip();
    Record(5);
    CrashDump crashDump(prefix);
    ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
    try {
        delete new KLogger;
        ADD_FAILURE() << "there was memory";
    } catch (const std::bad_alloc&) {
        crashDump.WriteMinidump(nullptr);
    }
    DisarmAllocationFailure();
    WriteText();
    ExpectSame(ReadAndDelete(textFile), ReadAndDelete(crashDump.GetPath()), "of our own");
}

// The tests have a recorder, and so has the bare module.
TEST(Crash, OfAHostAndItsModuleHasARecorderOfEach)
{
    LeakCheck::Skip();
    Record(5);
    const HMODULE module = LoadLibraryW(L"varek.dll");
    ASSERT_TRUE(module);
    CrashDump crashDump(prefix);
    EXPECT_TRUE(crashDump.WriteMinidump(nullptr));
    WriteText();
    FreeLibrary(module);
    const std::string minidump = ReadAndDelete(crashDump.GetPath());
    ExpectSame(ReadAndDelete(textFile), minidump, "of the host");
    const std::vector<Dump> dumps = DumpFile::Read(minidump);
    ASSERT_EQ(2u, dumps.size());
    EXPECT_EQ("varek.dll", DumpFile::Choose(dumps, 1).recorder);
    const std::string told = DumpFile::Choose(dumps, 2).findings.Sentences()[0];
    EXPECT_EQ("The minidump holds several recorders: 1 of varek.dll with N records, 2 of "
              "viewer-tests.exe with N records; this is 2, and --dump chooses another.",
              Replaced(told, "\\d+ records", "N records"));
}

// Two threads that wait for each other; what started them says so, and waits too.
TEST(Crash, DISABLED_Deadlocked)
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

TEST(Crash, OfADeadlockTakenFromOutsideTellsWhatTheTextTells)
{
    LeakCheck::Skip();
    CreateDirectoryA("C:\\Temp", nullptr);
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, readyEvent);
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const auto child = reinterpret_cast<HANDLE>(
        _wspawnl(_P_NOWAIT, program, L"x", L"--gtest_also_run_disabled_tests",
                 L"--gtest_filter=*DISABLED_Deadlocked", nullptr));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready, 60000));
    const std::string text = ReadAndDelete(textFile);
    const auto dump = [&](int type) {
        EXPECT_TRUE(WriteMinidump(child, type));
        return ReadAndDelete(fullFile);
    };
    EXPECT_THROW(DumpFile::Read(dump(MiniDumpNormal)), NoRecorder);
    const std::string minidump = dump(MiniDumpWithFullMemory);
    ExpectSame(text, minidump, "full");
    TerminateProcess(child, 0);
    for (const HANDLE handle : {child, ready})
        CloseHandle(handle);
    const std::string summary = Summary::Compose(RecordingsOf(minidump));
    const std::size_t first = summary.find("in Pump.RunsDry");
    EXPECT_NE(std::string::npos, summary.find("in Pump.RunsDry", first + 1)) << summary;
}
