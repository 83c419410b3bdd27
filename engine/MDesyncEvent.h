#pragma once

/// An event whose receiver is called later, on the scheduler thread. Made with `new`, handed to
/// `MDesyncEventScheduler::ScheduleDesyncEvent`, fired once.
///
/// It is freed with plain `operator delete`, no destructor being run, so a subclass carries plain
/// data only: numbers, and pointers that it does not own.
class MDesyncEvent
{
public:
    /// Calls the receiver. An `MException` is recorded and dismissed; anything else ends the
    /// scheduler thread.
    virtual void Fire() = 0;

protected:
    ~MDesyncEvent() = default;
};

/// An event that owns something. It lets go of it in `Fire`, or in `Drop` when it is never fired.
class MOwningDesyncEvent : public MDesyncEvent
{
public:
    /// Lets go of what the event owns. Called once, by whoever destroys the scheduler, in place of
    /// `Fire`; must not raise.
    virtual void Drop() = 0;

protected:
    ~MOwningDesyncEvent() = default;
};
