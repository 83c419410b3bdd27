// What becomes of a thread that fails, and of its process.

#include "diagnostics/KLogger.h"
#include "diagnostics/MFlowLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace
{

const DWORD foreignException = 0xE06D7363; // of another compiler's run time
const DWORD ownException = 0x20474343;
const int ownExitCode = 7;

void AccessViolation()
{
    *reinterpret_cast<volatile int*>(0x1234) = 1;
}

template <int bytes>
int Overflow(int depth)
{
    volatile char frame[bytes];
    frame[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Overflow<bytes>(depth + 1) + frame[0];
}

/// Writes past a buffer, over the way back.
void Overrun()
{
    volatile char buffer[8] = {'x'};
    for (volatile int at = 0; at < 64; at = at + 1)
        buffer[at] = buffer[0];
}

/// What ends a thread: a fault by its code, or an `MException` by 0.
const std::pair<DWORD, Action> deaths[] = {
    {EXCEPTION_ACCESS_VIOLATION, AccessViolation},
    {EXCEPTION_INT_DIVIDE_BY_ZERO,
     [] {
         asm volatile("xor %%ecx, %%ecx; divl %%ecx" ::: "ecx");
     }},
    {EXCEPTION_ILLEGAL_INSTRUCTION, [] { asm volatile("ud2"); }},
    {EXCEPTION_BREAKPOINT, [] { asm volatile("int3"); }},
    {EXCEPTION_STACK_OVERFLOW, [] { Overflow<100>(0); }},
    {EXCEPTION_STACK_OVERFLOW, [] { Overflow<8192>(0); }},
    {ownException, [] { throw std::runtime_error("nobody's"); }},
    {ownException, [] { throw std::bad_alloc(); }},
    {foreignException, [] { RaiseException(foreignException, 1, 0, nullptr); }},
    {0, [] { Raise("Host.Told:Why"); }}};

const Action nothing = [] {};
const Action throws = [] { throw std::runtime_error("another"); };

/// What else goes wrong. The first sees to it that nothing is made ready by an earlier death.
const struct Trouble {
    bool noMemory;
    Action inLastAct, inCallback;
    bool inCallbackIsFault;
} troubles[] = {{true, nothing, nothing, false},
                {false, nothing, nothing, false},
                {false, AccessViolation, nothing, false},
                {false, throws, nothing, false},
                {false, [] { Raise("dismissed"); }, nothing, false},
                {false, nothing, AccessViolation, true},
                {false, nothing, throws, false},
                {true, AccessViolation, AccessViolation, true}};

std::string diary;

std::string Line(const char* what, DWORD code)
{
    return what + std::string(" ") + std::to_string(code) + ";";
}

/// Stands where the system ends the process: the thread ends instead.
LONG WINAPI EndThread(_EXCEPTION_POINTERS* pointers)
{
    diary += Line("unhandled", pointers->ExceptionRecord->ExceptionCode);
    ExitThread(0);
}

// A fault in the callback for text is one like any other, told by the other callback.
std::string Expected(DWORD code, const Trouble& trouble)
{
    const std::string words = code == 0 ? Line("text", !trouble.noMemory) : "";
    if (code == 0 && trouble.inCallbackIsFault)
        code = EXCEPTION_ACCESS_VIOLATION;
    const std::string fault = Line("callback", code) + Line("unhandled", code);
    return "last act;" + words + (code != 0 ? fault : "");
}

void PrintFault(_EXCEPTION_POINTERS* pointers)
{
    std::fprintf(stderr, "%08lx;", pointers->ExceptionRecord->ExceptionCode);
    std::fflush(stderr);
}

/// A host that has something done and then leaves without a shutdown.
void Host(TestModule::DoOnThread TestModule::*place, const Action& action)
{
    LoadedModule module;
    module.OnShutdown(*new Action([] { std::fputs("shut down", stderr); }));
    module.Register(nullptr, PrintFault);
    (module.*place)(action);
    module.Free();
    std::exit(ownExitCode);
}

/// That what is called is what was registered, by the records of both.
void ExpectCallbacksAsRegistered(KLogger& core)
{
    std::vector<std::int64_t> registered;
    for (const DumpedRecord& record : ReadDump(TakeDump(core))) {
        const auto is = [&](const std::string& function) {
            return record.text.find("% Scope_push in_class ModuleCommandProcessor at " +
                                    function) == 0;
        };
        if (is("RegisterFatalErrorHandlers"))
            registered = record.numbers;
        if (is("OnSpontaneousError") || is("OnUnhandledException")) {
            EXPECT_EQ(registered.at(is("OnSpontaneousError") ? 1 : 2), record.numbers[1]);
        }
    }
}

} // namespace

TEST(ModuleDeath, IsToldOnceAndGoesOnAfterTheLastActOfTheThreadWhateverElseGoesWrong)
{
    LeakCheck::Skip(); // what a fault leaves on its stack is lost
    const auto before = SetUnhandledExceptionFilter(EndThread);
    KLogger core;
    MKLoggerAdapter adapter(&core);
    MFlowLogger logger(&adapter);
    LoadedModule module;
    module.AttachMFlowLogger(&logger);
    for (auto die : {module.DieOnProcessor, module.DieOnScheduler}) {
        diary.clear();
        EXPECT_EQ("", die(nothing, [] { diary += "last act;"; })); // a stop
        EXPECT_EQ("last act;", diary);
        for (const auto& death : deaths)
            for (const Trouble& trouble : troubles) {
                diary.clear();
                module.Register(
                    [&](const std::wstring& text) {
                        diary += Line("text", !text.empty());
                        trouble.inCallback();
                    },
                    [&](_EXCEPTION_POINTERS* pointers) {
                        diary += Line("callback", pointers->ExceptionRecord->ExceptionCode);
                        trouble.inCallback();
                    });
                const Action action = [&] {
                    if (trouble.noMemory)
                        module.ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
                    death.second();
                };
                const Action lastAct = [&] {
                    diary += "last act;";
                    trouble.inLastAct();
                };
                EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", die(action, lastAct));
                module.DisarmAllocationFailure();
                EXPECT_EQ(Expected(death.first, trouble), diary) << &trouble - troubles;
            }
    }
    module.Shutdown();
    ExpectCallbacksAsRegistered(core);
    EXPECT_TRUE(module.Free());
    SetUnhandledExceptionFilter(before);
}

TEST(ModuleDeath, IsToldInWordsOnceWhicheverAllocationFails)
{
    LeakCheck::Skip(); // the module frees what is raised here
    LoadedModule module;
    std::vector<std::wstring> told;
    module.Register([&](const std::wstring& text) { told.push_back(text); }, nullptr);
    std::size_t nth = 0;
    do {
        const Action action = [&] {
            module.ArmAllocationFailure(AllocationFailure::Throws, static_cast<int>(nth));
            Raise("Host.Told:Why");
        };
        module.DieOnProcessor(action, nothing);
        ASSERT_EQ(++nth, told.size());
    } while (module.DisarmAllocationFailure());
    EXPECT_NE(std::wstring::npos, told.back().find(L"<ExceptionChain>\n<Exception>\n<Error>\n"
                                                   L"<Code type=\"string\">Host.Told:Why</Code>"));
    EXPECT_EQ(told[0], told.back()); // no allocation was to fail
    EXPECT_EQ(2, std::count_if(told.begin(), told.end(), [](auto& text) { return !text.empty(); }));
    module.Shutdown();
}

TEST(ModuleDeathTest, ProcessEndsWithTheCodeOfTheFault)
{
    LeakCheck::Skip(); // the first child leaves something for the next
    const auto fails = [](int exitCode) { return exitCode != 0 && exitCode != ownExitCode; };
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, AccessViolation),
                testing::ExitedWithCode(EXCEPTION_ACCESS_VIOLATION), "^c0000005;$");
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, [] { Overflow<1000>(0); }),
                testing::ExitedWithCode(EXCEPTION_STACK_OVERFLOW), "^c00000fd;$");
    EXPECT_EXIT(Host(&TestModule::DoOnScheduler, [] { throw 7; }), fails, "^20474343;$");
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, Overrun),
                testing::ExitedWithCode(static_cast<int>(STATUS_STACK_BUFFER_OVERRUN)), "^$");
}

TEST(ModuleDeathTest, HostThatLeavesWithoutShutdownEndsWithItsOwnExitCode)
{
    LeakCheck::Skip();
    const auto leaveHanging = [] {
        std::thread([] { Host(&TestModule::DoOnProcessor, [] { Sleep(INFINITE); }); }).detach();
        Sleep(200);
        std::exit(ownExitCode);
    };
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, nothing), testing::ExitedWithCode(ownExitCode),
                "^$");
    EXPECT_EXIT(leaveHanging(), testing::ExitedWithCode(ownExitCode), "^$");
}
