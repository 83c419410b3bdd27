// What docs/commands-and-events.md shows, as a test.

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

    int Drain(int litres);

private:
    int level = 100;
};

const wchar_t Pump::className[] = L"Pump";
const ClassName pumpName(Pump::className);

int Pump::Drain(int litres)
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

struct Display {
    void Show(int newLevel) { level = newLevel; }
    void Show(const MString& newFailure) { failure = newFailure; }

    volatile int level = 0;
    MString failure;
};

class DrainCommand : public MCommandSynchronous
{
public:
    DrainCommand(const MExceptionSlot& slot, Pump& pump, int litres, int& level);

private:
    void Execute() override { level = pump.Drain(litres); }

    Pump& pump;
    int litres;
    int& level;
};

DrainCommand::DrainCommand(const MExceptionSlot& slot, Pump& pump, int litres, int& level)
    : MCommandSynchronous(slot), pump(pump), litres(litres), level(level)
{
}

void Drain(MCommandProcessor& processor, Pump& pump, int& level, Display* display)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    processor.ExecuteSynchronously(
        std::auto_ptr<MCommandSynchronous>(new DrainCommand(slot, pump, 80, level)));
    if (const MError* failure = slot->GetFailure())
        display->Show(failure->GetCode()); // Pump.Drain:RunsDry
}

class DrainedEvent final : public MDesyncEvent
{
public:
    DrainedEvent(int level, Display* display);

    void Fire() override { display->Show(level); }

private:
    int level;
    Display* display;
};

DrainedEvent::DrainedEvent(int level, Display* display) : level(level), display(display) {}

void Announce(MDesyncEventScheduler& scheduler, int level, Display* display)
{
    scheduler.ScheduleDesyncEvent(new DrainedEvent(level, display));
}

} // namespace

TEST(CommandExample, CommandEventAndTracedFunction)
{
    Pump pump;
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    MDesyncEventScheduler scheduler(nullptr);
    processor.Start();
    scheduler.Enable();

    Display display;
    int level = 0;
    Drain(processor, pump, level, &display);
    EXPECT_TRUE(display.failure.IsEmpty());
    EXPECT_EQ(20, level);
    Drain(processor, pump, level, &display);
    EXPECT_STREQ(L"Pump.Drain:RunsDry", display.failure.c_str());

    Announce(scheduler, level, &display);
    processor.Stop();
    while (display.level == 0)
        SwitchToThread();
    scheduler.Disable();
    EXPECT_EQ(20, display.level);
}
