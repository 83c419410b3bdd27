#pragma once

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "explore/scenarios/Scenario.h"
#include "tests/support/EngineWork.h"

#include <functional>
#include <string>

/// A thread of the scenario's own, which is waited for at the end of its life.
class Caller
{
public:
    explicit Caller(std::function<void()> body);
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
    ~Caller();

private:
    static unsigned __stdcall Run(void* caller);

    std::function<void()> body;
    HANDLE thread;
};

/// The failure that `call` raises, by the last word of its Code; empty when it raises none.
std::string Failure(const std::function<void()>& call);

/// A call of a command, with all that must hold of it whatever happens around it.
class Call
{
public:
    /// Executes a command that does `action`, and waits for the answer.
    void Make(
        MCommandProcessor& processor, const std::function<void()>& action = [] {});

    /// Whether the command was executed, rather than refused. It was once, or never and its caller
    /// has been told so.
    bool IsDone() const { return executed == 1; }

    /// The last word of the failure that the caller was told.
    const std::string& Answer() const { return answer; }

private:
    int executed = 0;
    std::string answer;
};

/// A processor that stops before it goes.
struct Processor : MCommandProcessor {
    explicit Processor(MCallbackFunctorPtr idle = nullptr, std::uint32_t idleTimeoutMs = 0);
    ~Processor() override { ForceStop(); }
};
