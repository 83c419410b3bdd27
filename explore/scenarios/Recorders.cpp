// What may meet at a flight recorder.

#include "diagnostics/KLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "explore/scenarios/Parts.h"
#include "tests/support/DumpedRecord.h"

namespace
{

// A core is too large to be made for each run.
KLogger& HostCore()
{
    static KLogger core;
    return core;
}

KLogger& ModuleCore()
{
    static KLogger core;
    return core;
}

/// A number that no earlier run has used.
std::uint32_t NextId()
{
    static std::uint32_t last = 0;
    return ++last;
}

void JoiningMeetsLogging()
{
    MayLoseBlocks(); // names are kept for good
    MKLoggerAdapter host(&HostCore()), module(&ModuleCore());
    const std::uint32_t id = NextId();
    const std::wstring name = L"name " + std::to_wstring(id);
    {
        const Caller other([&] {
            module.RegisterClassName(id, name.c_str());
            module.LogEvent(4, 0, 0, id, 0, nullptr);
        });
        module.AttachLogger(&host);
    }
    module.LogEvent(5, 0, 0, id, 0, nullptr);
    Expect(DumpedTexts(HostCore()).back().find("Destruction in_class name ") == 2,
           "a name has not reached the joined logger");
}

void LeavingMeetsLogging()
{
    MayLoseBlocks();
    MKLoggerAdapter host(&HostCore()), module(&ModuleCore());
    module.AttachLogger(&host);
    const Caller other([&] {
        module.RegisterClassName(NextId(), L"name");
        module.LogEvent(4, 0, 0, 0, 0, nullptr);
    });
    module.AttachLogger(nullptr);
}

void DumpMeetsLogging()
{
    MayLoseBlocks();
    MKLoggerAdapter module(&ModuleCore());
    const std::uint32_t id = NextId();
    const Caller other([&] { module.RegisterClassName(id, L"name"); });
    module.LogEvent(4, 0, 0, id, 0, nullptr);
    Expect(DumpedTexts(ModuleCore()).back().find("Construction in_class ") == 2, "no whole record");
}

} // namespace

std::vector<Scenario> RecorderScenarios()
{
    return {
        {"JoiningMeetsLogging", JoiningMeetsLogging, false},
        {"LeavingMeetsLogging", LeavingMeetsLogging, false},
        {"DumpMeetsLogging", DumpMeetsLogging, false},
    };
}
