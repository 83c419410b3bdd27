// Every answer of the system that the engine has words for, and the words.

#include "engine/MCommandProcessor.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/engine/Imports.h"

namespace
{

const DWORD failed = 0xFFFFFFFF;
const DWORD answers[] = {1, 2, 3, 127, 128, 129, 130, 131, 258, 0xFFFFFFFE, failed};

/// What `operation` says when a wait on `handles` handles comes back with `answer`.
std::string Words(const std::string& operation, DWORD answer, DWORD handles)
{
    const std::string number = std::to_string(answer);
    if (answer == failed)
        return operation + ":WaitFailed winErrorCode=" + number;
    const bool abandoned = answer >= 128 && answer < 128 + handles;
    return operation + (abandoned ? ":Abandoned" : ":Unexpected") + " status=" + number;
}

/// The same for one that waits for its thread as well.
std::string WordsOrExit(const std::string& operation, DWORD answer)
{
    return answer == 1 ? operation + ":ThreadExitedUnexpectedly" : Words(operation, answer, 2);
}

} // namespace

TEST(FailureTable, StartThatFailsForgetsItsThreadAndCanBeTriedAgain)
{
    for (DWORD answer : answers) {
        ScriptedThread thread;
        HANDLE ended = nullptr;
        thread.on["start"] = [&] { ended = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()); };
        thread.onStarted = [] { Raise("ends"); };
        AnswerNext(Import::WaitForMultipleObjects, answer);
        EXPECT_EQ(WordsOrExit("MEngineThread.Start", answer), Raised([&] { thread.Start(); }));
        EXPECT_FALSE(thread.IsThreadActive());
        WaitForSingleObject(ended, INFINITE);
        CloseHandle(ended);

        AnswerNext(Import::BeginThread, answer);
        EXPECT_EQ("MEngineThread.Start:BeginThread errno=" +
                      std::to_string(static_cast<int>(answer)),
                  Raised([&] { thread.Start(); }));
        thread.on.clear();
        thread.onStarted = [] {};
        thread.Start();
    }
}

TEST(FailureTable, FlushThatFailsChangesNothingAndStopThatFailsCanBeTriedAgain)
{
    for (DWORD answer : answers) {
        ScriptedThread thread;
        thread.Start();
        AnswerNext(Import::WaitForMultipleObjects, answer);
        EXPECT_EQ(WordsOrExit("MEngineThread.Flush", answer), Raised([&] { thread.Flush(); }));
        thread.Flush();

        AnswerNext(Import::WaitForSingleObject, answer);
        EXPECT_EQ(answer == 128 ? "MEngineThread.Stop:Abandoned"
                                : Words("MEngineThread.Stop", answer, 1),
                  Raised([&] { thread.Stop(); }));
        EXPECT_TRUE(thread.IsThreadActive());
        EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(FailureTable, WaitThatFailsEndsTheThread)
{
    for (DWORD answer : answers) {
        if (answer < 2 || answer == WAIT_TIMEOUT)
            continue; // no failures
        ScriptedThread thread;
        thread.onStarted = [=] { AnswerNext(Import::WaitForMultipleObjects, answer); };
        thread.Start();
        EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { thread.Flush(); }));
        EXPECT_EQ(Words("MEngineThread.WaitForEvents", answer, 2) + ";", thread.failures);
    }
}

TEST(FailureTable, CallThatFailsIsRidOfItsCommandAndLeavesNoHandle)
{
    const std::string call = "MCommandProcessor.ExecuteSynchronously:";
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    int executed = 0;
    const auto execute = [&] { processor.ExecuteSynchronously(NewCommand([&] { ++executed; })); };
    execute();
    const std::size_t handles = ListHandles().size();
    for (DWORD answer : answers) {
        const std::string number = " winErrorCode=" + std::to_string(answer);
        AnswerNext(Import::WaitForMultipleObjects, answer);
        EXPECT_EQ(call + (answer == 1                      ? "CommandProcessingAborted"
                          : answer == 128 || answer == 129 ? "Abandoned"
                                                           : "WaitFailed" + number),
                  Raised(execute));
        AnswerNext(Import::CreateEvent, answer);
        EXPECT_EQ(call + "WaitFailed" + number, Raised(execute));
        AnswerNext(Import::WaitForSingleObject, answer);
        if (answer != WAIT_TIMEOUT) {
            EXPECT_EQ("MCommandProcessor.IsAborted:ErrorAccessingEvent" + number, Raised(execute));
        }
    }
    EXPECT_EQ(handles, ListHandles().size());
    EXPECT_EQ(12, executed);
    processor.Stop();
}
