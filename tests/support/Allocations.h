#pragma once

#include "foundation/MException.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

// The test executables bring their own `operator new`: it counts the blocks that are out, and can
// be told to fail.

/// Heap blocks out in the whole process, but for what is kept for good by design: the names of the
/// module's flight recorder, and the ring of any log core. Not while other threads register names.
std::int64_t CountBlocks();

enum class AllocationFailure {
    Throws,        ///< the one allocation throws std::bad_alloc
    ThrowsForGood, ///< and so do all after it
    AnswersNull    ///< the one allocation answers null; only where the code tests for that
};

/// Makes the `nth` allocation of the calling thread fail, counted from its construction, 1 being
/// the first. One at a time in the process.
class FailingAllocation
{
public:
    FailingAllocation(AllocationFailure how, int nth);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() { Disarm(); }

    /// Lets all further allocations succeed.
    void Disarm();

    /// Whether the nth allocation has been asked for.
    bool HasFailed() const;
};

/// How an operation ended that met a failing allocation.
enum class ShortageOutcome { Completed, RaisedMException, RaisedBadAlloc };

template <class Operation>
ShortageOutcome RunShortOfMemory(Operation operation)
{
    try {
        operation();
    } catch (MException&) {
        return ShortageOutcome::RaisedMException;
    } catch (std::bad_alloc&) {
        return ShortageOutcome::RaisedBadAlloc;
    }
    return ShortageOutcome::Completed;
}

/// Runs `operation` with its first, second, third ... allocation failing until it makes no more,
/// and `check(outcome)` after each run that met the failure. The last run is a whole one, and goes
/// unchecked.
///
/// Run the operation once before, so that the names that it registers in the flight recorder are
/// there: a failure in mid-registration closes the recorder's map for good.
template <class Operation, class Check>
void ForEachFailingAllocation(AllocationFailure how, Operation operation, Check check)
{
    const int enough = 1000;
    for (int nth = 1; nth < enough; ++nth) {
        FailingAllocation failing(how, nth);
        const ShortageOutcome outcome = RunShortOfMemory(operation);
        failing.Disarm();
        if (!failing.HasFailed())
            return;
        SCOPED_TRACE("allocation " + std::to_string(nth) + " failed");
        check(outcome);
    }
    ADD_FAILURE() << "the operation never completes";
}
