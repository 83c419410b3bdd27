#pragma once

#include <csetjmp>
#include <functional>

/// A course of calls with a stack of its own, which runs until it lets another go on.
class Fiber
{
public:
    /// Runs `body` when it is first entered; `body` must never return, but let another go on.
    explicit Fiber(std::function<void()> body);
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;
    ~Fiber();

    /// Leaves the one that runs, which is `from`, and goes on with this one.
    void Enter(Fiber& from);

private:
    friend class MainFiber;
    Fiber() : stack(nullptr), begun(true) {}

    static void Begin(unsigned high, unsigned low);
    void Resume();

    std::function<void()> body;
    void* stack;
    bool begun;
    jmp_buf place;
    void* exceptions[2] = {}; // in flight and caught, which the run time keeps for the thread
};

/// The course of calls that is there from the beginning.
class MainFiber : public Fiber
{
public:
    MainFiber() = default;
};
