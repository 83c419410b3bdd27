#include "viewer/showing/text/RecordList.h"

#include "viewer/forms/TextForms.h"
#include "viewer/forms/Utf8.h"
#include "viewer/showing/text/Description.h"

#include <algorithm>
#include <unordered_map>

namespace
{

constexpr std::size_t usualLine = 110;
constexpr std::size_t leastThread = 12;
constexpr std::size_t leastEvent = 20;

/// A recording, and how far the list has come in it.
class Source
{
public:
    explicit Source(const Recording& recording) : recording(&recording) { SkipWhatDoesNotPass(); }

    bool IsAtEnd() const { return next == recording->dump.records.size(); }
    std::int64_t Time() const { return recording->dump.records[next].time; }

    void AppendTo(std::string& text)
    {
        const DumpRecord& record = recording->dump.records[next++];
        const std::size_t begin = text.size();
        text += TextForms::AlignRight(TextForms::Seconds(record.time), TextForms::timeWidth) + "  ";
        AppendWallClock(text, record.time);
        text += ThreadOf(record.threadId) + "  ";
        text += Fit(Description::Whole(record, recording->dump.names),
                    std::string_view(text).substr(begin)) +
                "\n";
        SkipWhatDoesNotPass();
    }

    std::size_t ThreadWidth() const
    {
        std::size_t width = 0;
        for (const Timeline& timeline : recording->timelines)
            width =
                std::max(width, Utf8::Length(Description::Thread(timeline.threadId, *recording)));
        return width;
    }

    std::size_t threadWidth = 0; // as all sources have it
    std::size_t width = 0;       // likewise

private:
    void SkipWhatDoesNotPass()
    {
        const std::vector<DumpRecord>& records = recording->dump.records;
        while (next < records.size() && !recording->Passes(records[next]))
            ++next;
    }

    // The date and the time up to the second change rarely; calendars are slow.
    void AppendWallClock(std::string& text, std::int64_t time)
    {
        constexpr std::int64_t second = 1000000;
        if (!recording->dump.start)
            return;
        const std::int64_t moment = recording->dump.MomentAt(time);
        if (clock.empty() || moment >= clockBegin + second) {
            clockBegin = moment - (moment % second + second) % second;
            clock = WallClock(clockBegin).Text();
            clock.resize(clock.size() - 3);
            if (width != 0)
                clock.erase(0, clock.find(' ') + 1);
        }
        text += clock + std::to_string(1000 + (moment - clockBegin) / 1000).substr(1) + "  ";
    }

    const std::string& ThreadOf(std::int32_t threadId)
    {
        std::string& thread = threads[threadId];
        if (thread.empty()) {
            thread = TextForms::Shorten(Description::Thread(threadId, *recording), threadWidth);
            const std::size_t length = Utf8::Length(thread);
            thread.append(threadWidth > length ? threadWidth - length : 0, ' ');
        }
        return thread;
    }

    std::string Fit(const std::string& event, std::string_view inFront) const
    {
        if (width == 0)
            return event;
        const std::size_t used = std::min(width, Utf8::Length(inFront));
        return TextForms::Shorten(event, std::max(leastEvent, width - used));
    }

    const Recording* recording;
    std::size_t next = 0;
    std::int64_t clockBegin = 0;
    std::string clock;
    std::unordered_map<std::int32_t, std::string> threads;
};

} // namespace

std::string RecordList::Compose(const Recordings& recordings, std::size_t width)
{
    std::vector<Source> sources;
    std::size_t records = 0, threadWidth = 0;
    for (const Recording& recording : recordings) {
        sources.emplace_back(recording);
        records += recording.dump.records.size();
        threadWidth = std::max(threadWidth, sources.back().ThreadWidth());
    }
    if (width != 0)
        threadWidth = std::min(threadWidth, std::max(leastThread, width / 6));
    for (Source& source : sources) {
        source.threadWidth = threadWidth;
        source.width = width;
    }

    std::string text;
    text.reserve(records * usualLine);
    const auto isEarlier = [](const Source& one, const Source& other) {
        return !one.IsAtEnd() && (other.IsAtEnd() || one.Time() < other.Time());
    };
    const auto earliest = [&] {
        return std::min_element(sources.begin(), sources.end(), isEarlier);
    };
    for (auto source = earliest(); !source->IsAtEnd(); source = earliest())
        source->AppendTo(text);
    return text;
}
