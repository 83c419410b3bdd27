#include "engine/MExceptionSlot.h"

#include "tests/engine/EngineFixtures.h"

// That the last handle deletes the exception, and only once, is seen by the check for leaks.

TEST(MExceptionSlot, HandlesShareOneException)
{
    MExceptionSlot slot = NewSlot();
    const MExceptionSlot other(slot);
    EXPECT_EQ(slot.Get(), other.Get());
    slot = NewSlot();
    const MExceptionSlot& self = slot;
    slot = self;
    slot = MExceptionSlot();
    EXPECT_TRUE(slot.IsEmpty());
    EXPECT_EQ(0u, other->GetErrorCount());
}

TEST(MExceptionSlot, LastHandleMayGoOnEitherThread)
{
    for (int i = 0; i < 200; ++i) {
        MExceptionSlot slot = NewSlot();
        std::thread other([copy = slot]() mutable { copy = MExceptionSlot(); });
        slot = MExceptionSlot();
        other.join();
    }
}

TEST(MExceptionSlot, WithoutMemoryTheExceptionIsDeleted)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull}) {
        std::auto_ptr<MException> exception(new MException);
        FailingAllocation failing(how, 1);
        EXPECT_EQ(how == AllocationFailure::Throws ? ShortageOutcome::RaisedBadAlloc
                                                   : ShortageOutcome::Completed,
                  RunShortOfMemory([&] { EXPECT_TRUE(MExceptionSlot(exception).IsEmpty()); }));
    }
}
