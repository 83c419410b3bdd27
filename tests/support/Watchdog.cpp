#include "tests/support/Watchdog.h"

#include "diagnostics/KLogger.h"
#include "tests/support/DumpedRecord.h"

#include <atomic>
#include <cstdio>

#include <windows.h>

namespace
{

const DWORD hangMs = 60000;
const DWORD dumpMs = 10000;
const std::size_t lastRecords = 40;
const UINT hangExitCode = 124;

HANDLE progress; // auto-reset, set when a test begins or ends
HANDLE watcher;
std::atomic<bool> finished;
std::atomic<const testing::TestInfo*> running;

DWORD WINAPI PrintLastRecords(void*)
{
    const std::vector<std::string> texts = DumpedTexts(*KLogger::GetModuleLogger());
    for (std::size_t i = texts.size() < lastRecords ? 0 : texts.size() - lastRecords;
         i < texts.size(); ++i)
        std::printf("%s\n", texts[i].c_str());
    return 0;
}

DWORD WINAPI Watch(void*)
{
    while (WaitForSingleObject(progress, hangMs) == WAIT_OBJECT_0)
        if (finished)
            return 0;
    const testing::TestInfo* const test = running;
    std::printf("%s.%s hangs; the latest events:\n", test ? test->test_suite_name() : "between",
                test ? test->name() : "tests");
    std::fflush(stdout);
    // The hang may hold what a dump needs, so the dump gets a thread and a time of its own.
    WaitForSingleObject(CreateThread(nullptr, 0, PrintLastRecords, nullptr, 0, nullptr), dumpMs);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), hangExitCode);
    return 0;
}

void Report(const testing::TestInfo* test)
{
    running = test;
    SetEvent(progress);
}

} // namespace

Watchdog::Watchdog()
{
    progress = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    watcher = CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr);
}

void Watchdog::OnTestStart(const testing::TestInfo& test)
{
    Report(&test);
}

void Watchdog::OnTestProgramEnd(const testing::UnitTest&)
{
    finished = true;
    SetEvent(progress);
    WaitForSingleObject(watcher, INFINITE);
}

void Watchdog::OnTestEnd(const testing::TestInfo&)
{
    Report(nullptr);
}
