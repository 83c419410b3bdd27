#pragma once

#include "engine/MEngineThread.h"
#include "tests/support/Allocations.h"
#include "tests/support/EngineWork.h"
#include "tests/support/ExpectNoMoreHandles.h"
#include "tests/support/FailingCalls.h"
#include "tests/support/Gate.h"
#include "tests/support/Raised.h"

#include <atomic>
#include <map>
#include <thread>

#include <windows.h>

/// What a test has an engine thread do, and what became of it.
struct Script : IThreadErrorHandler {
    void Call(const std::string& name)
    {
        calls += name + " ";
        if (on[name])
            on[name]();
    }
    void OnSpontaneousError(const MException& exception) override
    {
        failures += FailureText(exception) + ";";
    }
    void OnUnhandledException(_EXCEPTION_POINTERS*) override { failures += "fault;"; }

    std::map<std::string, Action> on; ///< what is done at a call, by its name
    std::string calls, failures;
};

/// An engine thread that calls its script, its inside open.
struct ScriptedThread : Script, MEngineThread {
    ScriptedThread() : MEngineThread(this) {}
    ~ScriptedThread() override { ForceStop(); }

    using MEngineThread::AddEvent;
    using MEngineThread::IsStopRequested;
    using MEngineThread::IsThreadActive;

    Action onStarted = [] {};

    void ThreadFunction() override
    {
        Call("start");
        SignalThreadStarted();
        onStarted();
        do
            WaitForEvents(waitForEver);
        while (!IsStopRequested());
        ServeStop();
    }
    void OnFlush() override { Call("flush"); }
    void OnStop() override { Call("stop"); }
};

/// Runs `body` on `count` threads at once, with the thread's number.
template <class Body>
void RunOnThreads(int count, Body body)
{
    std::atomic<int> missing{count};
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back([&, number] {
            for (--missing; missing > 0;)
                Sleep(0);
            body(number);
        });
    for (std::thread& thread : threads)
        thread.join();
}
