#include "soak/Load.h"

#include "soak/module/Activities.h"
#include "varek/Errors.h"
#include "varek/Host.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <windows.h>

namespace
{

const unsigned threadCount = 3;
typedef std::chrono::steady_clock Clock;

const int restPerWork = 8; // so many times as long as the work took
const Clock::duration longestRest = std::chrono::seconds(10);

struct Activity {
    const char* kind;
    std::function<void()> act;
    unsigned times; ///< in a round
};

void TakeTextDump(const varek::Host& host, unsigned number)
{
    const std::string path = "C:\\Temp\\soak-" + std::to_string(number) + ".log";
    host.WriteLog(path);
    DeleteFileA(path.c_str());
}

} // namespace

const std::vector<std::string>& Load::Kinds()
{
    static const std::vector<std::string> kinds = {"commands", "events", "documents",
                                                   "threads",  "texts",  "minidumps"};
    return kinds;
}

Load::Load(const varek::Host& host, const std::vector<std::string>& kinds)
    : host(host), kinds(kinds), dump(L"C:\\Temp\\soak")
{
    for (unsigned number = 0; number < threadCount; ++number)
        threads.emplace_back(&Load::Run, this, number);
}

Load::Pause::Pause(Load& load) : lock(load.atWork, std::chrono::minutes(3))
{
    if (lock)
        return;
    std::puts("FAILED: something does not come back");
    std::fflush(stdout);
    std::_Exit(1);
}

Load::~Load()
{
    ends = true;
    for (std::thread& thread : threads)
        thread.join();
}

void Load::Run(unsigned number)
{
    const Activity round[] = {
        {"minidumps", [this] { TakeMinidump(); }, 1},
        {"texts", [&] { TakeTextDump(host, number); }, 4},
        {"commands", ExecuteCommands, 120},
        {"events", DeliverEvents, 120},
        {"documents", FileDocuments, 120},
        {"threads", StartAndStopThreads, 40},
    };
    try {
        while (!ends)
            for (const Activity& activity : round)
                if (std::find(kinds.begin(), kinds.end(), activity.kind) != kinds.end())
                    for (unsigned time = 0; time < activity.times && !ends; ++time)
                        Do(activity.act);
    } catch (const std::exception& exception) {
        Tell(varek::What(exception));
    }
}

void Load::Do(const std::function<void()>& activity)
{
    const Clock::time_point begin = Clock::now();
    {
        const std::shared_lock<std::shared_timed_mutex> working(atWork);
        activity();
    }
    ++done;
    std::this_thread::sleep_for(std::min((Clock::now() - begin) * restPerWork, longestRest));
}

// The system writes one at a time.
void Load::TakeMinidump()
{
    const std::lock_guard<std::mutex> alone(dumping);
    if (!dump.WriteMinidump(nullptr))
        throw std::runtime_error("no minidump, " + std::to_string(GetLastError()));
    DeleteFileW(dump.GetPath());
}

void Load::Tell(const std::string& what)
{
    const std::lock_guard<std::shared_timed_mutex> alone(atWork);
    failure += what + "\n";
}
