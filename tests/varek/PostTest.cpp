// Posted functions. That their captures and events are freed is seen by the check for leaks.

#include "varek/Post.h"
#include "tests/engine/EngineFixtures.h"
#include "varek/Testing.h"

#include <stdexcept>

TEST(Post, FunctionsRunInOrderAndTheirCapturesGoWithThemWhateverTheyRaise)
{
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
    EXPECT_EQ("abcd", *owned);
    EXPECT_EQ(1, owned.use_count());
}
