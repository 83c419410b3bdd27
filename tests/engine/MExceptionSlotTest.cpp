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

TEST(MExceptionSlot, HandlesMayBeCopiedAndDroppedOnDifferentThreads)
{
    const MExceptionSlot slot = NewSlot();
    std::atomic<int> ready{0};
    RunOnThreads(2, [&](int) {
        ++ready;
        while (ready < 2)
            Sleep(0);
        for (int i = 0; i < 1000000; ++i)
            MExceptionSlot copy(slot);
    });
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
