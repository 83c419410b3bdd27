#pragma once

/// A piece of work for an `MCommandProcessor`, which runs it once on its thread and deletes it.
/// Concrete commands derive from `MCommandSynchronous`.
class MCommand
{
public:
    virtual ~MCommand();

    virtual void ExecuteGenericCommand() = 0;
};
