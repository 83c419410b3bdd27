#pragma once

#include "engine/MEngineThread.h"

/// An engine thread without work of its own: it waits, in the multithreaded COM apartment, and
/// calls the functor of whichever registered handle is signalled. What a functor raises ends the
/// thread. A running one may be destroyed: it stops itself.
class MSchedulerThread : public MEngineThread
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// Not started. `errorHandler` may be null, is not owned, and must outlive the thread.
    explicit MSchedulerThread(IThreadErrorHandler* errorHandler);
    ~MSchedulerThread() override;

    /// Adds a handle, which must stay open while the thread runs, and its functor, owned from here
    /// on; a restarted thread still serves it. While the thread is not started, from one caller at
    /// a time. Raises "ThreadRunning", or "TooManyWaitableEvents" beyond 62; the functor then stays
    /// the caller's.
    void RegisterSchedulerEvent(HANDLE event, MCallbackFunctor* functor);

protected:
    void ThreadFunction() override;
    void OnFlush() override;
    void OnStop() override;

private:
    struct Locations;

    void RunLoop();
    void LeaveCom();
};
