#pragma once

#include "engine/MCallbackFunctor.h"
#include "engine/MCommandSynchronous.h"
#include "engine/MDesyncEvent.h"
#include "foundation/MException.h"

#include <functional>
#include <string>

// Work for engine threads, made from lambdas.

typedef std::function<void()> Action;

/// A functor that calls `body`, a lambda that captures plain data only: like an event, a functor is
/// freed without a destructor being run.
template <class Body>
MCallbackFunctorPtr FunctorFor(Body body)
{
    struct Functor final : MCallbackFunctor {
        explicit Functor(Body body) : body(body) {}
        void Invoke() override { body(); }
        Body body;
    };
    return MCallbackFunctorPtr(new Functor(body));
}

/// An event that calls `body`, a lambda of that kind too.
template <class Body>
MDesyncEvent* NewEvent(Body body)
{
    struct Event final : MDesyncEvent {
        explicit Event(Body body) : body(body) {}
        void Fire() override { body(); }
        Body body;
    };
    return new Event(body);
}

/// A command that calls `action`; what it raises goes into `slot`.
inline std::auto_ptr<MCommandSynchronous> NewCommand(const Action& action,
                                                     const MExceptionSlot& slot = MExceptionSlot())
{
    struct Command : MCommandSynchronous {
        Command(const Action& action, const MExceptionSlot& slot)
            : MCommandSynchronous(slot), action(action)
        {
        }
        void Execute() override { action(); }
        Action action;
    };
    return std::auto_ptr<MCommandSynchronous>(new Command(action, slot));
}

/// A slot with an empty exception.
inline MExceptionSlot NewSlot()
{
    return MExceptionSlot(std::auto_ptr<MException>(new MException));
}

/// Raises an `MException` that holds an error with the Code `code`.
[[noreturn]] inline void Raise(const std::string& code)
{
    throw MException(MError(std::wstring(code.begin(), code.end()).c_str()));
}
