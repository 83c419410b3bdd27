// Every answer of the system that the engine has words for, and the words.

#include "engine/MCommandProcessor.h"
#include "tests/engine/EngineFixtures.h"

namespace
{

const DWORD answers[] = {1, 2, 3, 127, 128, 129, 130, 131, 258, 0xFFFFFFFE, 0xFFFFFFFF};

/// What `operation` says when a wait on `handles` handles comes back with `answer`.
std::string Words(const std::string& operation, DWORD answer, DWORD handles)
{
    const std::string number = std::to_string(answer);
    if (answer == WAIT_FAILED)
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

TEST(FailureTable, FailedStartForgetsItsThreadFailedFlushChangesNothingFailedStopCanBeRepeated)
{
    for (DWORD answer : answers) {
        const ExpectNoMoreHandles handles;
        ScriptedThread thread;
        const auto answered = [&](const char* import, void (ScriptedThread::*operation)()) {
            FailNext(import, answer);
            return Raised([&] { (thread.*operation)(); });
        };
        Gate forgotten;
        thread.onStarted = [&] {
            forgotten.Pass();
            EXPECT_FALSE(thread.IsCurrentThread());
            Raise("ends");
        };
        EXPECT_EQ(WordsOrExit("MEngineThread.Start", answer),
                  answered("WaitForMultipleObjects", &ScriptedThread::Start));
        EXPECT_FALSE(thread.IsThreadActive());
        forgotten.Open();
        WaitForSingleObject(thread.GetEndedEvent(), INFINITE);

        thread.onStarted = [] {};
        EXPECT_EQ("MEngineThread.Start:BeginThread errno=" + std::to_string(int(answer)),
                  answered("_beginthreadex", &ScriptedThread::Start));
        thread.Start();
        EXPECT_EQ(WordsOrExit("MEngineThread.Flush", answer),
                  answered("WaitForMultipleObjects", &ScriptedThread::Flush));
        thread.Flush();
        EXPECT_EQ(answer == 128 ? "MEngineThread.Stop:Abandoned"
                                : Words("MEngineThread.Stop", answer, 1),
                  answered("WaitForSingleObject", &ScriptedThread::Stop));
        EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());

        if (answer < 2 || answer == WAIT_TIMEOUT)
            continue; // no failures of a thread's own wait
        thread.onStarted = [=] { FailNext("WaitForMultipleObjects", answer); };
        thread.Start();
        EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { thread.Flush(); }));
        EXPECT_EQ("ends;" + Words("MEngineThread.WaitForEvents", answer, 2) + ";", thread.failures);
    }
}

TEST(FailureTable, FailedCallIsRidOfItsCommandAndLeavesNoHandle)
{
    const std::string call = "MCommandProcessor.ExecuteSynchronously:";
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    int executed = 0;
    const auto answered = [&](const char* import, DWORD answer) {
        FailNext(import, answer);
        return Raised([&] { processor.ExecuteSynchronously(NewCommand([&] { ++executed; })); });
    };
    EXPECT_EQ("", answered("WaitForSingleObject", WAIT_TIMEOUT));
    {
        const ExpectNoMoreHandles handles;
        for (DWORD answer : answers) {
            const std::string number = " winErrorCode=" + std::to_string(answer);
            EXPECT_EQ(call + (answer == 1                      ? "CommandProcessingAborted"
                              : answer == 128 || answer == 129 ? "Abandoned"
                                                               : "WaitFailed" + number),
                      answered("WaitForMultipleObjects", answer));
            EXPECT_EQ(call + "WaitFailed" + number, answered("CreateEventW", answer));
            FailNext("CreateEventW", answer);
            EXPECT_FALSE(HANDLE(PlatformEvent(EventReset::Manual)));
            if (answer != WAIT_TIMEOUT) {
                EXPECT_EQ("MCommandProcessor.IsAborted:ErrorAccessingEvent" + number,
                          answered("WaitForSingleObject", answer));
            }
        }
    }
    EXPECT_EQ(12, executed);
    processor.Stop();
}
