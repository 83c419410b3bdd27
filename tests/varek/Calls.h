#pragma once

#include "tests/engine/EngineFixtures.h"
#include "varek/Call.h"

struct StartedProcessor : MCommandProcessor {
    StartedProcessor() : MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0) { Start(); }
    ~StartedProcessor() override { Stop(); }
};

/// Every way of calling, to the end.
inline void CallBy(int way, MCommandProcessor& processor, const Action& work)
{
    way == 0   ? varek::Call(processor, work, varek::CancelToken())
    : way == 1 ? varek::CallFor(std::chrono::hours(2000), processor, work)
               : varek::CallAsync(processor, work).get();
}
