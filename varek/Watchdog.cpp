#include "varek/Watchdog.h"

#include "diagnostics/MFlowLogger.h"
#include "varek/Errors.h"

#include <algorithm>
#include <sstream>

namespace varek
{

namespace
{

std::string TakeDump()
{
    try {
        std::ostringstream dump;
        MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
        return dump ? dump.str() : std::string();
    } catch (std::exception&) {
        return std::string();
    }
}

} // namespace

Watchdog::Watching::Watching()
{
    static TracedLocation location(L"varek", L"Watchdog");
    if (!WatchedWork::BeginWatching())
        Raise(location.SetObject(this), L"AlreadyOn").Throw();
}

Watchdog::Watching::~Watching()
{
    WatchedWork::EndWatching();
}

Watchdog::Watchdog(std::chrono::milliseconds limit, Report report)
    : limit(limit), report(std::move(report))
{
    worker.Every(std::max(limit / 4, std::chrono::milliseconds(1)), [this] { Look(); });
    worker.Start();
}

void Watchdog::Look()
{
    WatchedWork::TellOverdue(limit, [this](WatchedWork::Kind work, unsigned long threadId,
                                           std::chrono::milliseconds running) {
        report({work, threadId, running, TakeDump()});
    });
}

} // namespace varek
