// What becomes of a thread that fails, and of its process.

#include "tests/module/LoadedModule.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

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

struct Death {
    const char* name;
    Action die;
    DWORD code; ///< of the fault, 0 when it is an `MException`
};

const Death deaths[] = {
    {"access violation", AccessViolation, EXCEPTION_ACCESS_VIOLATION},
    {"division",
     [] {
         asm volatile("xor %%ecx, %%ecx\n\tdivl %%ecx" ::: "eax", "ecx", "edx");
     },
     EXCEPTION_INT_DIVIDE_BY_ZERO},
    {"illegal instruction", [] { asm volatile("ud2"); }, EXCEPTION_ILLEGAL_INSTRUCTION},
    {"break point", [] { asm volatile("int3"); }, EXCEPTION_BREAKPOINT},
    {"stack, small frames", [] { Overflow<100>(0); }, EXCEPTION_STACK_OVERFLOW},
    {"stack, large frames", [] { Overflow<8192>(0); }, EXCEPTION_STACK_OVERFLOW},
    {"exception", [] { throw std::runtime_error("nobody's"); }, ownException},
    {"no memory", [] { throw std::bad_alloc(); }, ownException},
    {"foreign exception",
     [] { RaiseException(foreignException, EXCEPTION_NONCONTINUABLE, 0, nullptr); },
     foreignException},
    {"MException", [] { Raise("Host.Told:Why"); }, 0}};

/// What else goes wrong: each is nothing if it does not.
struct Trouble {
    const char* name;
    bool noMemory;
    Action inLastAct, inCallback;
};

const Action throws = [] { throw std::runtime_error("another"); };

// The first sees to it that nothing is made ready by an earlier death.
const Trouble troubles[] = {{"no memory", true, nullptr, nullptr},
                            {"healthy", false, nullptr, nullptr},
                            {"last act faults", false, AccessViolation, nullptr},
                            {"last act throws", false, throws, nullptr},
                            {"last act raises", false, [] { Raise("dismissed"); }, nullptr},
                            {"callback faults", false, nullptr, AccessViolation},
                            {"callback throws", false, nullptr, throws},
                            {"nothing works", true, AccessViolation, AccessViolation}};

std::string diary;

void Note(const char* what, DWORD code)
{
    char text[40];
    std::snprintf(text, sizeof(text), "%s %lx;", what, code);
    diary += text;
}

/// Stands where the system ends the process: the thread ends instead.
LONG WINAPI EndThread(_EXCEPTION_POINTERS* pointers)
{
    Note("unhandled", pointers->ExceptionRecord->ExceptionCode);
    ExitThread(0);
}

std::string Expected(const Death& death, const Trouble& trouble)
{
    char fault[60];
    const char* const form = "last act 0;callback %lx;unhandled %lx;";
    std::snprintf(fault, sizeof(fault), form, death.code, death.code);
    if (death.code != 0)
        return fault;
    // A fault in the text callback is one like any other, told by the other callback.
    const bool faults = trouble.inCallback && trouble.name != std::string("callback throws");
    return std::string("last act 0;text ") + (trouble.noMemory ? "0;" : "1;") +
           (faults ? "callback c0000005;unhandled c0000005;" : "");
}

void PrintFault(_EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    std::fprintf(stderr, "%08lx;", record.ExceptionCode);
    std::fflush(stderr);
}

/// A host that has something done and then leaves without a shutdown.
void Host(TestModule::DoOnThread TestModule::*place, const Action& action)
{
    LoadedModule module;
    module.Register(nullptr, PrintFault);
    (module.*place)(action);
    module.Free();
    std::exit(ownExitCode);
}

} // namespace

TEST(ModuleDeath, IsToldOnceAndGoesOnAfterTheLastActOfTheThreadWhateverElseGoesWrong)
{
    LeakCheck::Skip(); // what a fault leaves on its stack is lost
    const auto before = SetUnhandledExceptionFilter(EndThread);
    LoadedModule module;
    for (auto die : {module.DieOnProcessor, module.DieOnScheduler})
        for (const Death& death : deaths)
            for (const Trouble& trouble : troubles) {
                SCOPED_TRACE(std::string(death.name) + ", " + trouble.name);
                const auto perhaps = [](const Action& action) { action ? action() : void(); };
                diary.clear();
                module.Register(
                    [&](const std::wstring& text) {
                        Note("text", !text.empty());
                        perhaps(trouble.inCallback);
                    },
                    [&](_EXCEPTION_POINTERS* pointers) {
                        Note("callback", pointers->ExceptionRecord->ExceptionCode);
                        perhaps(trouble.inCallback);
                    });
                const Action action = [&] {
                    if (trouble.noMemory)
                        module.ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
                    death.die();
                };
                const Action lastAct = [&] {
                    Note("last act", 0);
                    perhaps(trouble.inLastAct);
                };
                EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", die(action, lastAct));
                module.DisarmAllocationFailure();
                EXPECT_EQ(Expected(death, trouble), diary);
            }
    module.Shutdown();
    EXPECT_TRUE(module.Free());
    SetUnhandledExceptionFilter(before);
}

TEST(ModuleDeath, IsToldInWordsOnceWhicheverAllocationFails)
{
    LeakCheck::Skip(); // the module frees what is raised here
    LoadedModule module;
    bool met = true;
    for (int nth = 1; met; ++nth) {
        int told = 0;
        std::wstring words;
        module.Register(
            [&](const std::wstring& text) {
                ++told;
                words = text;
            },
            nullptr);
        const Action action = [&] {
            module.ArmAllocationFailure(AllocationFailure::Throws, nth);
            Raise("Host.Told:Why");
        };
        module.DieOnProcessor(action, [] {});
        met = module.DisarmAllocationFailure();
        EXPECT_EQ(1, told) << "allocation " << nth;
        EXPECT_EQ(met, words.empty()) << "allocation " << nth;
    }
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
}

TEST(ModuleDeathTest, HostThatLeavesWithoutShutdownEndsWithItsOwnExitCode)
{
    LeakCheck::Skip();
    const auto leaveHanging = [] {
        std::thread([] { Host(&TestModule::DoOnProcessor, [] { Sleep(INFINITE); }); }).detach();
        Sleep(200);
        std::exit(ownExitCode);
    };
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, [] {}), testing::ExitedWithCode(ownExitCode),
                "^$");
    EXPECT_EXIT(leaveHanging(), testing::ExitedWithCode(ownExitCode), "^$");
}
