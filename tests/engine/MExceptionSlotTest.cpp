#include "engine/MExceptionSlot.h"

#include "tests/engine/EngineFixtures.h"

// That the last handle deletes the exception, and only once, is seen by the check for leaks.

TEST(MExceptionSlot, HandlesShareOneExceptionOnDifferentThreadsTooAndAreEmptyWithoutMemory)
{
    MExceptionSlot slot = NewSlot();
    const MExceptionSlot other(slot);
    EXPECT_EQ(slot.Get(), other.Get());
    const MExceptionSlot& self = slot = NewSlot();
    slot = self;
    RunOnThreads(2, [&](int) {
        for (int i = 0; i < 1000000; ++i)
            MExceptionSlot copy(other);
    });
    EXPECT_EQ(0u, other->GetErrorCount());
    std::auto_ptr<MException> exception(new MException);
    RunShortOfMemory(AllocationFailure::AnswersNull, 1,
                     [&] { EXPECT_TRUE(MExceptionSlot(exception).IsEmpty()); });
}
