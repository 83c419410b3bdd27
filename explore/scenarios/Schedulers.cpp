// What may meet at a scheduler of events.

#include "explore/scenarios/Parts.h"

#include <windows.h>

namespace
{

/// A scheduler, and what its events have written.
struct Diary {
    /// Has a letter written, later.
    void Schedule(char letter)
    {
        scheduler.ScheduleDesyncEvent(NewEvent([this, letter] {
            Expect(++inside == 1, "two events at once");
            text += letter;
            --inside;
        }));
    }

    /// Lets all that is scheduled happen.
    void RunOut()
    {
        const PlatformEvent last(EventReset::Automatic);
        const HANDLE set = last;
        scheduler.ScheduleDesyncEvent(NewEvent([set] { SetEvent(set); }));
        WaitForSingleObject(last, INFINITE);
    }

    std::string text;
    int inside = 0;
    MDesyncEventScheduler scheduler{nullptr};
};

void EventsKeepTheirOrder()
{
    Diary diary;
    diary.scheduler.Enable();
    {
        const Caller other([&] {
            diary.Schedule('a');
            diary.Schedule('b');
        });
        diary.Schedule('1');
        diary.Schedule('2');
    }
    diary.RunOut();
    diary.scheduler.Disable();
    const std::string& text = diary.text;
    Expect(text.size() == 4 && text.find('a') < text.find('b') && text.find('1') < text.find('2'),
           "fired in the order " + text);
}

void EventsWaitWhileDisabled()
{
    Diary diary;
    diary.scheduler.Enable();
    {
        const Caller other([&] {
            diary.Schedule('a');
            diary.Schedule('b');
        });
        diary.scheduler.Disable();
        const std::string fired = diary.text;
        SwitchToThread();
        Expect(diary.text == fired, "fired while disabled");
        diary.scheduler.Enable();
    }
    diary.RunOut();
    diary.scheduler.Disable();
    Expect(diary.text == "ab", "fired " + diary.text);
}

void SchedulerGoesWithEventsQueued()
{
    MayLoseBlocks(); // what nobody fires is not freed either
    Diary diary;
    diary.scheduler.Enable();
    const Caller other([&] { diary.Schedule('a'); });
    diary.Schedule('b');
    diary.Schedule('c');
}

void EventDisablesItsScheduler()
{
    Diary diary;
    std::string told = "nothing";
    MDesyncEventScheduler* const scheduler = &diary.scheduler;
    std::string* const answer = &told;
    diary.scheduler.Enable();
    diary.scheduler.ScheduleDesyncEvent(NewEvent(
        [scheduler, answer] { *answer = Failure([scheduler] { scheduler->Disable(); }); }));
    diary.scheduler.Disable();
    diary.scheduler.Enable();
    diary.RunOut();
    diary.scheduler.Disable();
    Expect(told == "CannotFlushSelf", "told " + told);
}

} // namespace

std::vector<Scenario> SchedulerScenarios()
{
    return {
        {"EventsKeepTheirOrder", EventsKeepTheirOrder, false},
        {"EventsWaitWhileDisabled", EventsWaitWhileDisabled, false},
        {"SchedulerGoesWithEventsQueued", SchedulerGoesWithEventsQueued, false},
        {"EventDisablesItsScheduler", EventDisablesItsScheduler, false},
    };
}
