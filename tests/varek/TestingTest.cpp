// What module authors test with.

#include "tests/support/LeakCheck.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include "varek/Errors.h"
#include "varek/Post.h"
#include "varek/Testing.h"

#include <windows.h>

namespace
{

class Kettle
{
    VAREK_TRACED_CLASS(Kettle);

public:
    void Heat()
    {
        VAREK_TRACE();
        VAREK_RAISE(L"Boils").Throw();
    }
};

} // namespace

TEST(Testing, RecordsAreFoundInOrderAndWhatIsNotThereIsToldWithWhatIs)
{
    LeakCheck::Skip(); // the names stay
    std::string told;
    varek::Recording before;
    Raised([] { Kettle().Heat(); });
    varek::Recording recording([&](const std::string& finding) { told = finding; });
    recording.ExpectNone(varek::Scope(L"Kettle", L"Heat"));
    EXPECT_EQ("", told);
    before.Expect(varek::Scope(L"Kettle", L"Heat"))
        .Before(varek::Error(L"Boils"))
        .Before(varek::ScopeEnd(L"Kettle", L"Heat"));

    Raised([] { Kettle().Heat(); });
    recording.Expect(varek::Error(L"Boils"));
    EXPECT_EQ("", told);
    recording.Expect(varek::Error(L"Boils")).Before(varek::Scope(L"Kettle", L"Heat"));
    EXPECT_EQ(0u,
              told.find("there is no Scope_push Kettle Heat among\n% Scope_pop in_class Kettle"));
    recording.ExpectNone(varek::Error(L"Boils"));
    EXPECT_EQ(0u, told.find("not expected: % Root_error Boils in_class Kettle at Heat"));
    recording.Expect(varek::Dismissed(L"Kettle", L"Cool"));
    EXPECT_EQ(0u, told.find("there is no Dismissed_error Kettle Cool"));
    EXPECT_EQ(0u, Raised([] {
                      varek::detail::RaiseFinding("odd");
                  }).find("varek.Recording:NotAsExpected finding=odd"));
}

TEST(Testing, EventsAreAwaited)
{
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Enable();
    int fired = 0;
    for (int i = 0; i < 10; ++i)
        varek::Post(scheduler, [&] { ++fired; });
    varek::AwaitEvents(scheduler);
    EXPECT_EQ(10, fired);
}

TEST(Testing, LeaksAreCounted)
{
    varek::Leaks none;
    EXPECT_EQ(0, none.Handles());
    varek::Leaks leaks;
    const auto block = std::make_unique<int>();
    const HANDLE handle = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(1, leaks.Blocks());
    EXPECT_EQ(1, leaks.Handles());
    CloseHandle(handle);
}
