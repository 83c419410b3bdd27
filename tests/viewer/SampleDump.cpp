#include "tests/viewer/SampleDump.h"

#include "viewer/model/records/EventKind.h"
#include "viewer/reading/DumpFile.h"

#include <map>
#include <sstream>

const char sampleDump[] =
    R"(%% Reference time: -1.750000 is approximately 532ms past Sun Nov 15 15:12:20 2026
%%
% Construction in_class Station at Station for_object 000000001D2C5A40 (a (b) in_class c at d) in_thread 36 (Host)
    0.000000, -14, 0, 32, 100, -104, 489445952, 36
% Scope_push in_class Station at Serve for_object 000000001D2C5A40 (a (b) in_class c at d) in_thread 36 (Host)
    0.000100, -7, 0, 5, 100, 108, 489445952, 36
% State_change to off, in_class at in_class Station at ChangeState for_object 000000001D2C5A40 (a (b) in_class c at d) in_thread 260 (in_thread 36 (x))
    0.000250, -25, 1, 0, 100, 112, 489445952, 260
% Scope_push in_class Pump at Drain for_object FFFFFFFFFFFFFFF0 (unknown) in_thread 36 (Host)
    0.000300, -7, 0, 0, 200, 204, -16, 36
% Root_error RunsDry in_class Pump at Drain for_object FFFFFFFFFFFFFFF0 (unknown) in_thread 36 (Host)
    0.000310, -105, 300, 38, 200, 204, -16, 36
% Scope_pop in_class Pump at Drain for_object FFFFFFFFFFFFFFF0 (unknown) in_thread 36 (Host)
    0.000320, -8, 0, 0, 200, 204, -16, 36
% Dismissed_error (unknown) in_class Station at Serve for_object 000000001D2C5A40 (a (b) in_class c at d) in_thread 36 (Host)
    0.000400, -103, 0, 52, 100, 108, 489445952, 36
% Timing_point (1, -2) in_class (unknown) at_point 55 for_object 0000000000000000 (unknown) in_thread 260 (in_thread 36 (x))
    1.000000, 0, 1, -2, 500, 55, 0, 260
% Scope_pop in_class Station at Serve for_object 000000001D2C5A40 (a (b) in_class c at d) in_thread 36 (Host)
    12.345901, -8, 0, 5, 100, 108, 489445952, 36
)";

namespace
{

const char emptyDump[] = "%% Reference time: 0.000000 is wrong.\n%%\n";

/// Whole seconds rounded down, and what is to be added.
std::string Age(std::int64_t microseconds)
{
    const std::int64_t fraction = (microseconds % 1000000 + 1000000) % 1000000;
    return std::to_string((microseconds - fraction) / 1000000) + "." +
           std::to_string(1000000 + fraction).substr(1);
}

std::int32_t IdOf(const std::string& name)
{
    std::uint32_t id = 0;
    for (const char letter : name)
        id = id * 31 + static_cast<unsigned char>(letter);
    return static_cast<std::int32_t>(id);
}

std::string ShapeOf(const TimelineEntry& entry)
{
    const std::string begin = std::to_string(entry.begin);
    const std::string name(1, static_cast<char>(entry.record->pointId));
    if (!entry.isScope)
        return name + begin;
    return name + begin + (entry.lostBegin ? "?" : "") + "-" + std::to_string(entry.end) +
           (entry.lostEnd ? "?" : "");
}

} // namespace

Dump ReadText(const std::string& text)
{
    return DumpFile::Choose(DumpFile::Read(text), 0);
}

Recordings RecordingsOf(Dump dump, const RecordFilter& filter)
{
    Recordings recordings;
    recordings.emplace_back(std::move(dump), "some.log");
    recordings.back().Keep(filter);
    return recordings;
}

Recordings RecordingsOf(const std::string& text)
{
    return RecordingsOf(ReadText(text));
}

std::string RecordLines(std::int64_t microseconds, std::int32_t kind, const std::string& place,
                        std::int32_t thread)
{
    const std::size_t point = place.find('.');
    const std::string className = point == std::string::npos ? "C" : place.substr(0, point);
    const std::string function = place.substr(point + 1);
    const std::string parameters = kind == EventKind::TimingPoint ? " (0, 0)"
                                   : EventKind::IsError(kind)     ? " (unknown)"
                                                                  : "";
    const std::string inThread =
        thread == 0 ? "" : " in_thread " + std::to_string(thread) + " (unknown)";
    return "% " + std::string(EventKind::Name(kind)) + parameters + " in_class " + className +
           " at " + function + " for_object 0000000000000000 (unknown)" + inThread + "\n    " +
           Age(microseconds) + ", " + std::to_string(kind) + ", 0, 0, " +
           std::to_string(IdOf(className)) + ", " + std::to_string(IdOf(function)) + ", 0, " +
           std::to_string(thread) + "\n";
}

Dump DumpOf(const std::string& story)
{
    std::string words;
    char thread = '7';
    for (std::size_t at = 0; at < story.size(); ++at) {
        const char letter = story[at];
        if (letter >= '0' && letter <= '9')
            thread = letter;
        else if (letter == '~')
            words += " 0-p";
        else
            words += {' ', thread, letter, letter == '.' ? 'p' : story[++at]};
    }
    return DumpOfPlaces(words);
}

Dump DumpOfPlaces(const std::string& story)
{
    const std::map<char, std::int32_t> kinds = {
        {'+', EventKind::ScopePush},      {'-', EventKind::ScopePop},
        {'.', EventKind::TimingPoint},    {'/', EventKind::Destruction},
        {'<', EventKind::LogModuleAdded}, {'>', EventKind::LogModuleRemoved},
        {'!', EventKind::RootError},      {'^', EventKind::CascadeError},
        {'*', EventKind::DismissedError}};
    std::string text = emptyDump;
    std::istringstream words(story);
    std::int64_t time = 0;
    for (std::string word; words >> word; ++time)
        text += RecordLines(time, kinds.at(word[1]), word.substr(2), word[0] - '0');
    return ReadText(text);
}

std::string Shape(const std::vector<Timeline>& timelines)
{
    std::string shape;
    for (const Timeline& timeline : timelines) {
        shape += (shape.empty() ? "" : "; ") + std::to_string(timeline.threadId) + ":";
        for (const TimelineEntry& entry : timeline.entries)
            shape += " " + std::string(entry.depth, '>') + ShapeOf(entry);
    }
    return shape;
}
