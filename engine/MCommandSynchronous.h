#pragma once

#include "engine/MCommand.h"
#include "engine/MExceptionSlot.h"
#include "engine/PlatformEvent.h"

/// The base of concrete commands: work that a caller waits for.
///
/// A subclass carries its input, and a pointer to wherever its result goes, since the command
/// itself is gone when the caller wakes:
///
///     class CountCommand : public MCommandSynchronous
///     {
///     public:
///         CountCommand(const MExceptionSlot& slot, int* result)
///             : MCommandSynchronous(slot), result(result) {}
///     private:
///         void Execute() override { *result = Count(); }
///         int* result;
///     };
class MCommandSynchronous : public MCommand
{
public:
    /// The class literal, which is the id of the class in the log. A command that is traced itself
    /// declares its own, which hides this one.
    static const wchar_t className[];

    /// What `Execute` raises goes into `exceptionSlot`; with an empty slot it is dropped.
    explicit MCommandSynchronous(const MExceptionSlot& exceptionSlot);
    ~MCommandSynchronous() override;

    /// Empties the slot, runs `Execute`, and wakes the caller.
    void ExecuteGenericCommand() final;

protected:
    /// The command's own work, on the processor thread. It may raise `MException`; anything else
    /// ends the processor thread and the process.
    virtual void Execute() = 0;

private:
    friend class MCommandProcessor;

    void EmptySlot();

    MExceptionSlot exceptionSlot;
    HANDLE completionEvent; // of the waiting call, which closes it
};
