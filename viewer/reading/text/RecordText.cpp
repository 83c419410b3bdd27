#include "viewer/reading/text/RecordText.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/reading/text/RecordNumbers.h"

#include <algorithm>
#include <charconv>

namespace
{

using RecordNumbers::TakeFront;

/// A short text put together without the heap.
class Phrase
{
public:
    Phrase& Text(std::string_view text)
    {
        end = std::copy(text.begin(), text.end(), end);
        return *this;
    }

    Phrase& Number(std::int32_t number)
    {
        end = std::to_chars(end, letters + sizeof letters, number).ptr;
        return *this;
    }

    operator std::string_view() const
    {
        return std::string_view(letters, static_cast<std::size_t>(end - letters));
    }

private:
    char letters[64]; // the longest is 30
    char* end = letters;
};

bool TakeBack(std::string_view& text, std::string_view back)
{
    if (text.size() < back.size() || text.substr(text.size() - back.size()) != back)
        return false;
    text.remove_suffix(back.size());
    return true;
}

/// Cuts `text` at `mark`, which is found at `at`, and gives what is behind it.
bool CutAt(std::size_t at, std::string_view mark, std::string_view& text, std::string_view& behind)
{
    if (at == std::string_view::npos)
        return false;
    behind = text.substr(at + mark.size());
    text = text.substr(0, at);
    return true;
}

bool CutAtFirst(std::string_view mark, std::string_view& text, std::string_view& behind)
{
    return CutAt(text.find(mark), mark, text, behind);
}

std::string_view Unless(std::string_view unknown, std::string_view name)
{
    return name == unknown ? std::string_view() : name;
}

/// " for_object 000000001D2C5A40 (name) in_thread 4312 (name)"
bool TakeObjectAndThread(std::string_view& line, const DumpRecord& record, RecordNames& names)
{
    Phrase object;
    object.Text(" for_object ").Text(TextForms::Address(record.object)).Text(" (");
    if (!TakeBack(line, ")") || !CutAtFirst(object, line, names.object))
        return false;

    Phrase thread;
    thread.Text(") in_thread ").Number(record.threadId).Text(" (");
    if (record.threadId != 0 && !CutAtFirst(thread, names.object, names.thread))
        return false;

    names.object = Unless("unknown", names.object);
    names.thread = Unless("unknown", names.thread);
    return true;
}

constexpr std::string_view classMark = " in_class ";
constexpr std::string_view functionMark = " at ";

bool TakeName(std::string_view& line, std::string_view lead, std::string_view unknown,
              RecordNames& names)
{
    if (!TakeFront(line, lead))
        return false;
    names.parameter = Unless(unknown, line);
    return true;
}

/// What stands between the kind and the class.
bool TakeParameter(std::string_view line, const DumpRecord& record, RecordNames& names)
{
    Phrase text;
    if (EventKind::IsError(record.kind))
        return TakeName(line, " ", "(unknown)", names);
    if (record.kind == EventKind::StateChange)
        return TakeName(line, " to ", text.Text("state_").Number(record.param1), names);
    if (record.kind == EventKind::MessageSend)
        return TakeName(line, " ", text.Number(record.param1), names);
    if (record.kind == EventKind::TimingPoint)
        text.Text(" (").Number(record.param1).Text(", ").Number(record.param2).Text(")");
    return line == text;
}

/// Goes through the places of `mark` in `text`, from the last to the first, until `take` answers
/// true to what is before and behind one.
template <class Take>
bool TryCuts(std::string_view text, std::string_view mark, Take take)
{
    std::size_t at = text.rfind(mark);
    while (at != std::string_view::npos) {
        if (take(text.substr(0, at), text.substr(at + mark.size())))
            return true;
        at = at == 0 ? std::string_view::npos : text.rfind(mark, at - 1);
    }
    return false;
}

/// Goes through the readings of a line until `take` answers true to one.
template <class Take>
bool TryReadings(std::string_view line, const DumpRecord& record, Take take)
{
    RecordNames names;
    if (!TakeFront(line, EventKind::Name(record.kind)) || !TakeObjectAndThread(line, record, names))
        return false;

    Phrase point;
    point.Text(" at_point ").Number(record.pointId);
    const bool isUnnamedPoint = record.kind == EventKind::TimingPoint && TakeBack(line, point);
    const auto takeNames = [&](std::string_view className, std::string_view function) {
        names.className = Unless("(unknown)", className);
        names.function = Unless("(unknown)", function);
        return take(names);
    };
    return TryCuts(line, classMark, [&](std::string_view front, std::string_view place) {
        if (!TakeParameter(front, record, names))
            return false;
        return isUnnamedPoint ? takeNames(place, "") : TryCuts(place, functionMark, takeNames);
    });
}

} // namespace

std::optional<RecordNames> RecordText::Parse(std::string_view line, const DumpRecord& record)
{
    std::optional<RecordNames> reading;
    TryReadings(line, record, [&](const RecordNames& names) {
        reading = names;
        return true;
    });
    return reading;
}

std::vector<RecordNames> RecordText::ParseAll(std::string_view line, const DumpRecord& record)
{
    constexpr std::size_t most = 64;
    std::vector<RecordNames> readings;
    TryReadings(line, record, [&](const RecordNames& names) {
        readings.push_back(names);
        return readings.size() == most;
    });
    return readings;
}

bool RecordText::IsDoubtful(std::string_view line)
{
    const auto isTwice = [&](std::string_view mark) { return line.find(mark) != line.rfind(mark); };
    return isTwice(classMark) || isTwice(functionMark);
}
