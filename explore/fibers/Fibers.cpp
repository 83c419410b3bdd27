// Threads that take turns: one goes on until it is in line for the kernel or waits there, and an
// order decides who is next.

#include "explore/fibers/Fiber.h"
#include "explore/fibers/Heap.h"
#include "explore/fibers/Orders.h"
#include "explore/fibers/Run.h"
#include "explore/kernel/Handles.h"
#include "explore/scenarios/Scenario.h"

#include <csignal>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace
{

const unsigned longestRun = 20000; // turns
const unsigned patience = 12;      // times that only time runs out

struct Thread {
    explicit Thread(std::uint32_t id, std::function<void()> body)
        : fiber(std::move(body)), state{id, 0, nullptr, false}
    {
    }

    bool CanGoOn() const { return !ended && (!ready || ready(context)); }
    bool CanTimeOut() const { return !ended && ready && timed; }

    Fiber fiber;
    ThreadState state;
    const char* call = "";
    bool (*ready)(void*) = nullptr; ///< what it waits for, if it does
    void* context = nullptr;
    bool timed = false;
    bool ended = false;
};

/// The run that is going on.
struct {
    MainFiber main;
    Order* order;
    const std::function<void(const std::string&)>* told;
    std::vector<std::unique_ptr<Thread>> threads;
    std::vector<Candidate> candidates;
    Thread* current;
    unsigned turns;
    unsigned timeOuts;
    std::uint32_t lastThreadId;
    std::int64_t time;
    bool mayLoseBlocks;
    bool mayLoseHandles;
    std::string failure;
} run;

ThreadState outside = {}; // of whoever is not in a run

[[noreturn]] void EndRun(const std::string& failure)
{
    MarkBlocks(false);
    run.failure = failure;
    Fiber& leaving = run.current->fiber;
    run.current = nullptr;
    run.main.Enter(leaving);
    std::abort();
}

unsigned NumberOf(const Thread& thread)
{
    unsigned number = 0;
    while (run.threads[number].get() != &thread)
        ++number;
    return number;
}

/// First those who hold nobody up: the current one if it can go on, and otherwise all who can.
void FindCandidates()
{
    run.candidates.clear();
    const bool goesOn = run.current->CanGoOn();
    if (goesOn)
        run.candidates.push_back({NumberOf(*run.current), false});
    for (unsigned i = 0; i < run.threads.size(); ++i)
        if (run.threads[i].get() != run.current && run.threads[i]->CanGoOn())
            run.candidates.push_back({i, goesOn});
    const bool somebodyCan = !run.candidates.empty();
    for (unsigned i = 0; i < run.threads.size(); ++i)
        if (run.threads[i]->CanTimeOut() && !run.threads[i]->CanGoOn())
            run.candidates.push_back({i, somebodyCan});
    run.timeOuts += somebodyCan ? 0 : 1;
}

std::string WhatEachDoes()
{
    std::ostringstream text;
    for (const auto& thread : run.threads)
        text << "\n    thread " << NumberOf(*thread) << ": "
             << (thread->ended ? "ended" : thread->call);
    return text.str();
}

void CheckPatience()
{
    if (run.candidates.empty())
        EndRun("nobody goes on" + WhatEachDoes());
    if (run.timeOuts > patience)
        EndRun("nothing happens but that time runs out" + WhatEachDoes());
    if (++run.turns > longestRun)
        EndRun("there is no end" + WhatEachDoes());
}

void Tell(const Thread& thread)
{
    if (*run.told)
        (*run.told)("    " + std::to_string(NumberOf(thread)) + " " + thread.call);
}

/// Lets the order decide who goes on, and goes on when it is this thread's turn.
void PassOn()
{
    MarkBlocks(false);
    FindCandidates();
    CheckPatience();
    const std::size_t chosen = run.candidates.size() == 1 ? 0 : run.order->Choose(run.candidates);
    Thread& next = *run.threads[run.candidates[chosen].thread];
    Thread& leaving = *run.current;
    Tell(next);
    run.current = &next;
    if (&next != &leaving)
        next.fiber.Enter(leaving.fiber);
    MarkBlocks(true);
}

void EndThread()
{
    run.current->ended = true;
    for (const auto& thread : run.threads)
        if (!thread->ended)
            PassOn();
    EndRun("");
}

void AddThread(std::uint32_t id, const std::function<void()>& body)
{
    MarkBlocks(false);
    run.threads.push_back(std::make_unique<Thread>(id, [body] {
        MarkBlocks(true);
        body();
        MarkBlocks(false);
        EndThread();
    }));
    MarkBlocks(true);
}

void Begin(const std::function<void()>& scenario, Order& order,
           const std::function<void(const std::string&)>& told)
{
    run.threads.clear();
    run.order = &order;
    run.told = &told;
    run.turns = run.timeOuts = 0;
    run.lastThreadId = 0;
    run.time = 0;
    run.mayLoseBlocks = run.mayLoseHandles = false;
    run.failure.clear();
    AddThread(NextThreadId(), scenario);
    MarkBlocks(false);
    run.current = run.threads.front().get();
}

// A fault ends the run that it happens in, and nothing else.
void EndFaultyRun(int signal)
{
    if (!run.current)
        std::_Exit(signal);
    EndRun("a machine fault, or the end of the process");
}

void CatchFaults()
{
    struct sigaction action = {};
    action.sa_handler = EndFaultyRun;
    action.sa_flags = SA_NODEFER;
    for (int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        sigaction(signal, &action, nullptr);
}

} // namespace

Turn::Turn(const char* call, Entry entry)
{
    if (!run.current || entry == Entry::AtOnce)
        return; // at start-up there is one thread
    run.current->call = call;
    PassOn();
}

Turn::~Turn() = default;

void Turn::Changed() {}

bool Turn::AwaitCondition(bool (*ready)(void*), void* context, std::uint32_t timeoutMs)
{
    if (ready(context))
        return true;
    if (!run.current || timeoutMs == 0)
        return false;
    Thread& self = *run.current;
    self.ready = ready;
    self.context = context;
    self.timed = timeoutMs != INFINITE;
    PassOn();
    self.ready = nullptr;
    return ready(context);
}

void Turn::Release(void*) {}

void Turn::Acquire(void*) {}

ThreadState& CurrentThread()
{
    return run.current ? run.current->state : outside;
}

void RunThread(std::uint32_t id, void (*body)(void*), void* context)
{
    AddThread(id, [=] { body(context); });
}

std::uint32_t NextThreadId()
{
    return run.lastThreadId += 4;
}

std::int64_t CurrentTime()
{
    return run.time += 100;
}

std::string RunOnce(const std::function<void()>& scenario, Order& order,
                    const std::function<void(const std::string&)>& told)
{
    const std::size_t handles = CountHandles();
    const std::size_t blocks = MarkedBlocks();
    CatchFaults();
    Begin(scenario, order, told);
    run.threads.front()->fiber.Enter(run.main);
    if (run.failure.empty() && !run.mayLoseHandles && CountHandles() != handles)
        run.failure = "handles are open at the end";
    if (run.failure.empty() && !run.mayLoseBlocks && MarkedBlocks() != blocks)
        run.failure = "heap blocks are out at the end";
    ForgetFreedBlocks();
    return run.failure;
}

void Expect(bool holds, const std::string& otherwise)
{
    if (!holds)
        EndRun(otherwise);
}

void MayLoseBlocks()
{
    run.mayLoseBlocks = true;
}

void MayLoseAll()
{
    run.mayLoseBlocks = run.mayLoseHandles = true;
}
