#include "fuzz/TraceRules.h"

#include <nlohmann/json.hpp>

#include <map>
#include <vector>

namespace
{

using Json = nlohmann::json;

/// False if the slice leaves the one around it; `openEnds` are those of the slices around the last.
bool Nests(const Json& slice, std::vector<std::uint64_t>& openEnds)
{
    const std::uint64_t begin = slice.at("ts");
    const std::uint64_t end = begin + slice.at("dur").get<std::uint64_t>();
    while (!openEnds.empty() && openEnds.back() <= begin)
        openEnds.pop_back();
    const bool nests = openEnds.empty() || end <= openEnds.back();
    openEnds.push_back(end);
    return nests && slice.at("dur").is_number_unsigned();
}

} // namespace

std::string BrokenTraceRule(const std::string& text, std::size_t records)
{
    std::map<std::uint64_t, std::vector<std::uint64_t>> openEndsByThread;
    const Json trace = Json::parse(text);
    for (const Json& event : trace.at("traceEvents")) {
        const std::uint64_t thread =
            event.at("pid").get<std::uint64_t>() << 32 | event.at("tid").get<std::uint64_t>();
        const bool isKnown = openEndsByThread.count(thread) == 1;
        std::vector<std::uint64_t>& openEnds = openEndsByThread[thread];
        if (event.at("ph") == "M") {
            if (isKnown || event.at("args").at("name") == "")
                return "name of a thread: " + event.dump();
            continue;
        }
        if (!isKnown || event.at("name") == "" || !event.at("ts").is_number_unsigned())
            return "thread, name and time: " + event.dump();
        if (event.value("cat", "") == "flow")
            continue;
        if (event.at("ph") == "X" && !Nests(event, openEnds))
            return "nesting: " + event.dump();
        const Json& args = event.at("args");
        const bool isPair =
            event.at("ph") == "X" && !args.contains("lostBegin") && !args.contains("lostEnd");
        records -= isPair ? 2 : 1;
    }
    return records == 0 ? "" : "number of records";
}

std::string JsonPart(const std::string& text, const std::string& pointer)
{
    return Json::parse(text).at(Json::json_pointer(pointer)).dump();
}
