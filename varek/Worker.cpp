#include "varek/Worker.h"

#include "engine/EngineErrors.h"
#include "engine/MMutexLock.h"
#include "engine/MSchedulerThread.h"
#include "module/ModuleCommandProcessor.h"
#include "varek/Errors.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <vector>

#include <windows.h>

namespace varek
{

namespace
{

const std::chrono::milliseconds longestInterval(std::numeric_limits<LONG>::max()); // of a timer

TracedLocation& Location()
{
    static TracedLocation location(L"varek", L"Worker");
    return location;
}

} // namespace

/// What is named, and the engine thread that does it while the worker runs.
struct Worker::State {
    // Held through starts and stops, and so ahead of the locks of the engine thread, and at a start
    // of those of the module. Never waited for by the worker's own thread.
    MMutex mutex;
    std::vector<std::unique_ptr<Duty>> duties VAREK_LOCK_RULE(guarded_by(mutex));
    std::unique_ptr<MSchedulerThread> running VAREK_LOCK_RULE(guarded_by(mutex));
    std::atomic<unsigned long> threadAtWork{0};
};

/// Says which thread is the worker's, while it is in a function.
class Worker::AtWork
{
public:
    explicit AtWork(State& state) : state(state) { state.threadAtWork = GetCurrentThreadId(); }
    ~AtWork() { state.threadAtWork = 0; }

private:
    State& state;
};

/// Something to do, with its timer if it has one.
struct Worker::Duty {
    Duty(State& state, HANDLE handle, Function function)
        : state(state), handle(handle), function(std::move(function))
    {
    }
    Duty(State& state, std::chrono::milliseconds interval, bool periodic, Function function)
        : state(state), handle(CreateWaitableTimerW(nullptr, FALSE, nullptr)), interval(interval),
          periodic(periodic), hasTimer(true), function(std::move(function))
    {
        if (!handle)
            Raise(Location(), L"CannotMakeTimer").WithLastError().Throw();
    }
    ~Duty()
    {
        if (hasTimer)
            CloseHandle(handle);
    }

    void Begin()
    {
        if (!hasTimer)
            return;
        LARGE_INTEGER due;
        due.QuadPart = -10000 * interval.count(); // relative, in units of 100 ns
        const LONG period =
            periodic ? static_cast<LONG>(std::max<long long>(interval.count(), 1)) : 0;
        if (!SetWaitableTimer(handle, &due, period, nullptr, nullptr, FALSE))
            Raise(Location(), L"CannotSetTimer").WithLastError().Throw();
    }

    void Do()
    {
        const AtWork atWork(state);
        try {
            function();
        } catch (std::exception& exception) {
            ThrowAsMException(Location(), exception);
        }
    }

    State& state;
    HANDLE handle;
    std::chrono::milliseconds interval{};
    bool periodic = false;
    bool hasTimer = false;
    Function function;
};

/// Leads from the module's shutdown to the worker, if there still is one by then. Both have a
/// share in it.
class Worker::ShutdownLink
{
public:
    explicit ShutdownLink(Worker* worker) : worker(worker), isOver(false), shares(2), number(0) {}

    /// Whether the module has been shut down.
    bool IsOver() const { return isOver; }

    /// Raises what `OnShutdown` raises.
    void Register()
    {
        number = ModuleCommandProcessor::OnShutdown(MakeFunctor(this, &ShutdownLink::OnShutdown));
    }

    /// A shutdown that is just stopping the worker is waited for.
    void Cut()
    {
        {
            MMutexLock lock(mutex);
            worker = nullptr;
        }
        if (ModuleCommandProcessor::ForgetOnShutdown(number))
            Release();
        Release();
    }

private:
    struct GiveBack {
        void operator()(ShutdownLink* link) const { link->Release(); }
    };

    void OnShutdown()
    {
        const std::unique_ptr<ShutdownLink, GiveBack> share(this);
        isOver = true; // ahead of the stop, for a start that comes behind it
        MMutexLock lock(mutex);
        if (worker)
            worker->Stop();
    }

    void Release()
    {
        if (--shares == 0)
            delete this;
    }

    MMutex mutex; // ahead of that of the worker's state
    Worker* worker VAREK_LOCK_RULE(guarded_by(mutex));
    std::atomic<bool> isOver;
    std::atomic<int> shares;
    std::uint64_t number;
};

Worker::Worker() : state(new State), link(nullptr) {}

Worker::~Worker()
{
    if (link)
        link->Cut();
    DismissFailureOf([this] { Stop(); }, Location().SetObject(this));
}

void Worker::When(HANDLE handle, Function function)
{
    Add(std::unique_ptr<Duty>(new Duty(*state, handle, std::move(function))));
}

void Worker::AddTimer(std::chrono::milliseconds interval, bool periodic, Function function)
{
    if (interval > longestInterval)
        Raise(Location().SetObject(this), L"IntervalTooLong")
            .With(L"milliseconds", interval.count())
            .Throw();
    Add(std::unique_ptr<Duty>(new Duty(*state, interval, periodic, std::move(function))));
}

void Worker::Add(std::unique_ptr<Duty> duty)
{
    CheckNotOwnThread(L"Running");
    MMutexLock lock(state->mutex);
    if (state->running)
        Raise(Location().SetObject(this), L"Running").Throw();
    state->duties.push_back(std::move(duty));
}

void Worker::Start()
{
    CheckNotOwnThread(L"Running");
    MMutexLock lock(state->mutex);
    if (state->running)
        Raise(Location().SetObject(this), L"Running").Throw();
    StopWithModule();
    std::unique_ptr<MSchedulerThread> fresh(
        new MSchedulerThread(&ModuleCommandProcessor::GetInstance()));
    for (const std::unique_ptr<Duty>& duty : state->duties) {
        MCallbackFunctorPtr functor = MakeFunctor(duty.get(), &Duty::Do);
        fresh->RegisterSchedulerEvent(duty->handle, functor.get());
        functor.release();
    }
    for (const std::unique_ptr<Duty>& duty : state->duties)
        duty->Begin();
    fresh->Start();
    state->running = std::move(fresh);
}

void Worker::Stop()
{
    CheckNotOwnThread(L"CannotStopSelf");
    MMutexLock lock(state->mutex);
    if (!state->running)
        return;
    state->running->Stop();
    state->running.reset();
}

// Whoever stops the worker holds its lock, and waits for the function that asks.
void Worker::CheckNotOwnThread(const wchar_t* code)
{
    if (state->threadAtWork == GetCurrentThreadId())
        Raise(Location().SetObject(this), code).Throw();
}

void Worker::StopWithModule()
{
    if (link && link->IsOver())
        Raise(Location().SetObject(this), L"ModuleStopped").Throw();
    if (link)
        return;
    std::unique_ptr<ShutdownLink> fresh(new ShutdownLink(this));
    fresh->Register();
    link = fresh.release();
}

} // namespace varek
