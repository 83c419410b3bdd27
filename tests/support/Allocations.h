#pragma once

#include "foundation/MException.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

// The test executables bring their own `operator new`: it counts the blocks that are out, and can
// be told to fail.

/// Heap blocks out in the whole process, but for what log cores keep for good by design: rings, and
/// the memory of names.
std::int64_t CountBlocks();

enum class AllocationFailure {
    Throws,        ///< the one allocation throws std::bad_alloc
    ThrowsForGood, ///< and so do all after it
    AnswersNull    ///< the one allocation answers null; only where the code tests for that
};

/// Makes the `nth` allocation of the calling thread fail, 1 being the next. One at a time in the
/// process.
void ArmAllocationFailure(AllocationFailure how, int nth);

/// The same for the only other thread that is at work.
void ArmAllocationFailureElsewhere(AllocationFailure how, int nth);

/// Lets all further allocations succeed. Whether the nth has been asked for.
bool DisarmAllocationFailure();

/// How an operation ended whose nth allocation was to fail.
enum class ShortageOutcome { NotMet, Completed, RaisedMException, RaisedBadAlloc };

/// Runs `operation` with its `nth` allocation failing.
template <class Operation>
ShortageOutcome RunShortOfMemory(AllocationFailure how, int nth, Operation operation)
{
    ShortageOutcome outcome = ShortageOutcome::Completed;
    ArmAllocationFailure(how, nth);
    try {
        operation();
    } catch (MException&) {
        outcome = ShortageOutcome::RaisedMException;
    } catch (std::bad_alloc&) {
        outcome = ShortageOutcome::RaisedBadAlloc;
    }
    return DisarmAllocationFailure() ? outcome : ShortageOutcome::NotMet;
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
    for (int nth = 1; nth < 1000; ++nth) {
        const ShortageOutcome outcome = RunShortOfMemory(how, nth, operation);
        if (outcome == ShortageOutcome::NotMet)
            return;
        SCOPED_TRACE("allocation " + std::to_string(nth) + " failed");
        check(outcome);
    }
    ADD_FAILURE() << "the operation never completes";
}
