#pragma once

#include "bench/support/Comparison.h"
#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEvent.h"
#include "engine/MDesyncEventScheduler.h"
#include "engine/MExceptionSlot.h"

/// The least that a processor can execute.
class EmptyCommand : public MCommandSynchronous
{
public:
    explicit EmptyCommand(const MExceptionSlot& slot) : MCommandSynchronous(slot) {}

protected:
    void Execute() override {}
};

/// The least that a scheduler can fire.
class EmptyEvent final : public MDesyncEvent
{
public:
    void Fire() override {}
};

/// A scheduler without a running thread, so that nobody competes with the one who raises events.
class IdleScheduler : public MDesyncEventScheduler
{
public:
    IdleScheduler() : MDesyncEventScheduler(nullptr) {}

    void Drain() { OnSchedulerEvent(); }
};

/// A processor that runs, and a scheduler, for as long as the object lives, with the process on one
/// processor of the machine.
///
/// An exchange is as quick as its two threads are placed, which changes from run to run and hits
/// one side only. On one processor both sides are placed alike, and nothing is lost: one of the
/// threads always waits for the other.
class EngineParts
{
public:
    EngineParts();
    EngineParts(const EngineParts&) = delete;
    EngineParts& operator=(const EngineParts&) = delete;
    ~EngineParts();

    /// Executes empty commands.
    Comparison::Work Executing();

    MCommandProcessor processor;
    IdleScheduler scheduler;

private:
    MExceptionSlot slot;
};
