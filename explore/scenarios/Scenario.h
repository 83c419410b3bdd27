#pragma once

#include <functional>
#include <string>
#include <vector>

/// A small program of two to four threads, the one that runs it among them, that states what must
/// hold of it.
struct Scenario {
    const char* name;
    void (*run)();
    bool onceAProcess; ///< leaves behind what the next run would notice
};

std::vector<Scenario> ProcessorScenarios();
std::vector<Scenario> SchedulerScenarios();
std::vector<Scenario> RecorderScenarios();
std::vector<Scenario> ModuleScenarios();

/// Ends the run as a failure unless `holds`.
void Expect(bool holds, const std::string& otherwise);

/// Says that heap blocks may be out at the end, for a reason that stands beside the call.
void MayLoseBlocks();

/// The same of handles too.
void MayLoseAll();
