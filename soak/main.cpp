// A host that works with a module for as long as it is told, and looks at what the process holds.

#include "soak/Curve.h"
#include "soak/Load.h"
#include "varek/Errors.h"
#include "varek/Host.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace
{

const char usage[] = "usage: soak MINUTES TABLE [KIND...]\n"
                     "\n"
                     "Works with a module for so many minutes, and writes what the process held\n"
                     "meanwhile into a table, values separated by commas. With kinds, only\n"
                     "commands, events, documents, threads, texts or minidumps.\n"
                     "\n"
                     "Exit codes: 0 nothing grew, 1 something grew or went wrong, 2 the command\n"
                     "line is wrong.\n";

const double minuteOfSeconds = 60;
const double samplesAtLeast = 60;
const double longestPause = 5; // seconds between two samples

typedef std::chrono::duration<double> Seconds;

class Soak
{
public:
    Soak(double minutes, const std::vector<std::string>& kinds)
        : seconds(minutes * minuteOfSeconds), kinds(kinds)
    {
    }

    /// Works until the time is over or something goes wrong.
    void Run()
    {
        const varek::Host host(L"soak-module.dll");
        Load load(host, kinds);
        while (failure.empty() && Passed() < seconds) {
            std::this_thread::sleep_for(Seconds(pause));
            Look(load);
        }
    }

    /// Says what came of it. True when nothing grew and nothing went wrong.
    bool Judge(const char* tablePath) const
    {
        std::printf("%.0f s of computing\n", SecondsOfComputing());
        if (!curve.WriteTable(tablePath))
            std::printf("%s cannot be written\n", tablePath);
        if (!failure.empty())
            std::printf("FAILED: %s\n", failure.c_str());
        return failure.empty() && curve.Judge();
    }

private:
    double Passed() const { return Seconds(std::chrono::steady_clock::now() - begin).count(); }

    void Look(Load& load)
    {
        const Load::Pause pause(load);
        const Holdings holdings = CountHoldings();
        curve.Add(Passed() / minuteOfSeconds, holdings);
        failure = load.Failure();
        if (Passed() >= printed)
            Print(load.Done(), holdings);
    }

    /// A line a minute, ten at least.
    void Print(unsigned long long done, const Holdings& holdings)
    {
        if (printed == 0)
            std::printf("%8s %10s %12s %12s %8s %8s\n", "minute", "done", "heap KiB", "private KiB",
                        "handles", "threads");
        std::printf("%8.1f %10llu %12.1f %12.0f %8.0f %8.0f\n", Passed() / minuteOfSeconds, done,
                    holdings.heapBytes / 1024, holdings.privateBytes / 1024, holdings.handles,
                    holdings.threads);
        std::fflush(stdout);
        printed = Passed() + std::min(minuteOfSeconds, seconds / 10);
    }

    const double seconds;
    const double pause = std::min(longestPause, seconds / samplesAtLeast);
    Curve curve{static_cast<std::size_t>(seconds / pause) + 1};
    const std::vector<std::string> kinds;
    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    double printed = 0; // when to print again
    std::string failure;
};

bool AreKnown(const std::vector<std::string>& kinds)
{
    const std::vector<std::string>& known = Load::Kinds();
    return std::all_of(kinds.begin(), kinds.end(), [&](const std::string& kind) {
        return std::find(known.begin(), known.end(), kind) != known.end();
    });
}

} // namespace

int main(int argc, char** argv)
{
    const double minutes = argc >= 3 ? std::atof(argv[1]) : 0;
    const std::vector<std::string> kinds(argv + std::min(argc, 3), argv + argc);
    if (minutes <= 0 || !AreKnown(kinds)) {
        std::fputs(usage, stderr);
        return 2;
    }
    try {
        Soak soak(minutes, kinds.empty() ? Load::Kinds() : kinds);
        soak.Run();
        return soak.Judge(argv[2]) ? 0 : 1;
    } catch (const std::exception& exception) {
        std::printf("FAILED: %s\n", varek::What(exception).c_str());
        return 1;
    }
}
