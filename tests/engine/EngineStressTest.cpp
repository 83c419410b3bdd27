// Many threads and many lives.

#include "engine/MCommandProcessor.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

TEST(EngineStress, EveryCallIsAnsweredToItsOwnCallerWhoeverStopsTheProcessor)
{
    // A command that arrives when the last stop has emptied the queue is nobody's any more.
    LeakCheck::Skip();
    std::vector<std::size_t> handles;
    for (int storm = 0; storm < 40; ++storm) {
        MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 1);
        processor.Start();
        RunOnThreads(5, [&](int number) {
            if (number > 2) {
                Sleep(5);
                return processor.Stop();
            }
            const MExceptionSlot slot = NewSlot();
            for (int calls = 0, refused = 0; !refused; ++calls) {
                const std::string answer = std::to_string(number) + "." + std::to_string(calls);
                const Action action = [&] {
                    EXPECT_EQ(0u, slot->GetErrorCount()); // emptied of the last answer
                    Raise(answer);
                };
                const auto call = [&] { processor.ExecuteSynchronously(NewCommand(action, slot)); };
                refused = Raised(call) != "";
                EXPECT_EQ(!refused, FailureText(*slot.Get()) == answer);
            }
        });
        handles.push_back(varek::CountOpenHandles());
    }
    // A lock that was waited for keeps a handle; what every storm leaked would be many.
    EXPECT_GE(handles.front() + 8, handles.back());
}
