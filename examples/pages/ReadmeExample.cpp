// The page "Writing a command, an event and a traced function" of the README, as a test.

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEvent.h"
#include "engine/MDesyncEventScheduler.h"
#include "foundation/MException.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

class Pump
{
public:
    static const wchar_t className[];

    // A traced function.
    int Drain(int litres)
    {
        static MFlowLocation location(className, L"Drain");
        MFlowScope scope(location.SetObject(this)); // recorded again when the block is left

        if (litres > level) {
            MError error;
            location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"RunsDry");
            error.AddParameter(L"level", level);
            location.Throw(error);
        }
        return level -= litres;
    }

private:
    int level = 100;
};

const wchar_t Pump::className[] = L"Pump";
const ClassName pumpName(Pump::className);

// An event: plain data, fired on the scheduler thread.
class DrainedEvent final : public MDesyncEvent
{
public:
    DrainedEvent(int level, volatile int* display) : level(level), display(display) {}

    void Fire() override { *display = level; }

private:
    int level;
    volatile int* display;
};

// A command: its input, and where its result goes.
class DrainCommand : public MCommandSynchronous
{
public:
    DrainCommand(const MExceptionSlot& slot, Pump& pump, int litres, int& level)
        : MCommandSynchronous(slot), pump(pump), litres(litres), level(level)
    {
    }

private:
    void Execute() override { level = pump.Drain(litres); }

    Pump& pump;
    int litres;
    int& level;
};

MExceptionSlot Drain(MCommandProcessor& processor, Pump& pump, int litres, int& level)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    processor.ExecuteSynchronously(
        std::auto_ptr<MCommandSynchronous>(new DrainCommand(slot, pump, litres, level)));
    return slot; // an empty chain means success, otherwise the last entry is the failure
}

} // namespace

TEST(ReadmeExample, CommandEventAndTracedFunction)
{
    Pump pump;
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    MDesyncEventScheduler scheduler(nullptr);
    processor.Start();
    scheduler.Enable();

    int level = 0;
    EXPECT_EQ(0u, Drain(processor, pump, 30, level)->GetErrorCount());
    EXPECT_EQ(70, level);

    const MExceptionSlot slot = Drain(processor, pump, 80, level);
    ASSERT_EQ(1u, slot->GetErrorCount());
    EXPECT_STREQ(L"Pump.Drain:RunsDry", slot->GetError(0)->GetCode().c_str());

    volatile int display = 0;
    scheduler.ScheduleDesyncEvent(new DrainedEvent(level, &display));
    processor.Stop();
    while (display == 0)
        SwitchToThread();
    scheduler.Disable();
    EXPECT_EQ(70, display);
}
