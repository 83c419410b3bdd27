// Any bytes as a dump: the viewer reads them or says that they are none, and what it makes of them
// keeps the rules of its forms.

#include "tests/viewer/TraceRules.h"
#include "viewer/forms/Utf8.h"
#include "viewer/model/scopes/Timelines.h"
#include "viewer/reading/text/DumpReader.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/Summary.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <cstdio>
#include <cstdlib>

namespace
{

std::string BrokenRule(std::string bytes)
{
    Dump dump = DumpReader::Read(Utf8::FromFile(std::move(bytes)));
    std::vector<Timeline> timelines = Timelines::Of(dump);
    ScopeTree::Compose(dump, timelines);
    Summary::Compose(dump, {});
    const std::string broken =
        BrokenTraceRule(TraceEvents::Compose(dump, timelines, "fuzz"), dump.records.size());
    if (!broken.empty())
        return broken;

    RecordFilter filter;
    filter.from = dump.Begin() + 1;
    filter.className = "Pump";
    Timelines::Keep(filter, dump.names, timelines);
    std::size_t depth = 0; // of the next entry at most
    for (const Timeline& timeline : timelines) {
        for (const TimelineEntry& entry : timeline.entries) {
            if (entry.depth > depth)
                return "depth of what a filter leaves";
            depth = entry.depth + entry.isScope;
        }
        depth = 0;
    }
    return "";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const std::string broken = BrokenRule(std::string(data, data + size));
        if (broken.empty())
            return 0;
        std::fprintf(stderr, "broken rule: %s\n", broken.c_str());
        std::abort();
    } catch (const NotADump&) {
        return 0;
    }
}
