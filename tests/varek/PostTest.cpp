// Posted functions. That their captures and events are freed is seen by the check for leaks.

#include "varek/Post.h"
#include "tests/engine/EngineFixtures.h"
#include "varek/Testing.h"

#include <stdexcept>

TEST(Post, FunctionsRunInOrderAndTheirCapturesGoWithThemWhateverTheyRaise)
{
    const auto owned = std::make_shared<std::string>();
    MDesyncEventScheduler scheduler(nullptr);
    Gate done;
    const std::pair<char, Action> events[] = {
        {'a', [] {}},
        {'b', [] { Raise("dismissed"); }},
        {'c', [] { throw std::runtime_error("dismissed too"); }},
        {'d', [] {}}};
    for (const auto& event : events)
        varek::Post(scheduler, [owned, event] {
            *owned += event.first;
            event.second();
        });
    varek::Post(scheduler, NewEvent([] {}));
    scheduler.Enable();
    varek::AwaitEvents(scheduler);
    EXPECT_EQ("abcd", *owned);
    EXPECT_EQ(1, owned.use_count());
}

TEST(Post, UnderAStopEachIsRunOnceOrDestroyedUnrun)
{
    std::atomic<int> ran{0};
    const auto owned = std::make_shared<int>();
    {
        MDesyncEventScheduler scheduler(nullptr);
        scheduler.Enable();
        RunOnThreads(3, [&](int number) {
            for (int i = 0; i < 100; ++i) {
                if (number == 0 && i == 50)
                    scheduler.Disable();
                varek::Post(scheduler, [&ran, owned] { ++ran; });
            }
        });
        EXPECT_LE(51, owned.use_count());
        EXPECT_EQ(301, ran + owned.use_count());
    }
    EXPECT_EQ(1, owned.use_count());
}
