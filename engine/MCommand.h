#pragma once

/// A piece of work for an `MCommandProcessor`, which runs it once on its thread and deletes it.
/// Concrete commands derive from `MCommandSynchronous`.
class MCommand
{
public:
    virtual ~MCommand();

    /// The whole of the work, called once on the processor thread. What leaves it ends that thread.
    virtual void ExecuteGenericCommand() = 0;
};
