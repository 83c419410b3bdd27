// What docs/own-threads.md shows, as a test.

#include "engine/MSchedulerThread.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/support/Gate.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

namespace
{

Gate ticked, changed;

void SaveTotals()
{
    ticked.Open();
}

void SurveyFolder()
{
    changed.Open();
}

/// Saves the totals every so often, and looks at the folder when it has changed.
class Watcher
{
public:
    Watcher() : thread(&ModuleCommandProcessor::GetInstance()), timer(MakeTimer())
    {
        thread.RegisterSchedulerEvent(timer, MakeFunctor(this, &Watcher::OnTimer).release());
    }

    ~Watcher() { CloseHandle(timer); }

    void Start(HANDLE folderChanged)
    {
        ModuleCommandProcessor::OnShutdown(MakeFunctor(this, &Watcher::Stop)); // first
        thread.RegisterSchedulerEvent(folderChanged,
                                      MakeFunctor(this, &Watcher::OnFolder).release());
        LARGE_INTEGER now = {};
        SetWaitableTimer(timer, &now, 60 * 1000, nullptr, nullptr, FALSE);
        thread.Start();
    }

    void Stop()
    {
        CancelWaitableTimer(timer);
        thread.Stop();
    }

private:
    static HANDLE MakeTimer() { return CreateWaitableTimerW(nullptr, FALSE, nullptr); }

    void OnTimer() { SaveTotals(); }
    void OnFolder() { SurveyFolder(); }

    MSchedulerThread thread;
    HANDLE timer;
};

} // namespace

TEST(OwnThreadsExample, ShutdownStopsTheThreadOfAStatic)
{
    LeakCheck::Skip(); // statics stay
    static Gate folder;
    static Watcher watcher;
    watcher.Start(folder.event);
    ticked.Pass();
    folder.Open();
    changed.Pass();
    ModuleCommandProcessor::GetInstance().Stop(); // as `Shutdown` does
}
