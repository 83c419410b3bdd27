// Posted functions. That their captures and events are freed is seen by the check for leaks.

#include "varek/Post.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"
#include "varek/Testing.h"

#include <stdexcept>

TEST(Post, FunctionsRunInOrderAndTheirCapturesGoWithThemWhateverTheyRaise)
{
    LeakCheck::Skip(); // names
    const varek::Recording recording;
    const auto owned = std::make_shared<std::string>();
    MDesyncEventScheduler scheduler(nullptr);
    const Action endings[] = {[] {}, [] { Raise("dismissed"); },
                              [] { throw std::runtime_error("dismissed too"); }, [] {}};
    for (char name = 'a'; name <= 'd'; ++name)
        varek::Post(scheduler, [owned, name, &endings] {
            *owned += name;
            endings[name - 'a']();
        });
    scheduler.Enable();
    varek::AwaitEvents(scheduler);
    ForEachFailingAllocation(
        AllocationFailure::Throws,
        [&] {
            MDesyncEvent* left = nullptr;
            {
                MDesyncEventScheduler idle(nullptr);
                varek::Post(idle, [owned] {});
                varek::Post(idle, left = NewEvent([] {}));
            }
            ::operator delete(left); // which an idle scheduler leaves as it is
        },
        [&](ShortageOutcome) { EXPECT_EQ(1, owned.use_count()); });
    EXPECT_EQ("abcd", *owned);
    EXPECT_EQ(1, owned.use_count());
    recording.Expect(varek::Construction(L"MDesyncEventScheduler"))
        .Before(varek::Dismissed(L"MDesyncEventScheduler", L""))
        .Before(varek::Destruction(L"MDesyncEventScheduler"));
}
