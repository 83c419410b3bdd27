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

bool CutAtLast(std::string_view mark, std::string_view& text, std::string_view& behind)
{
    return CutAt(text.rfind(mark), mark, text, behind);
}

std::string_view Unless(std::string_view unknown, std::string_view name)
{
    return name == unknown ? std::string_view() : name;
}

/// " for_object 000000001D2C5A40 (name) in_thread 4312 (name)"
bool TakeObjectAndThread(std::string_view& line, const DumpRecord& record, RecordText& names)
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

/// " in_class name at name" or " in_class name at_point number"
bool TakePlace(std::string_view& line, const DumpRecord& record, RecordText& names)
{
    Phrase point;
    point.Text(" at_point ").Number(record.pointId);
    const bool isUnnamedPoint = record.kind == EventKind::TimingPoint && TakeBack(line, point);

    if (!isUnnamedPoint && !CutAtLast(" at ", line, names.function))
        return false;
    if (!CutAtLast(" in_class ", line, names.className))
        return false;

    names.function = Unless("(unknown)", names.function);
    names.className = Unless("(unknown)", names.className);
    return true;
}

bool TakeName(std::string_view& line, std::string_view lead, std::string_view unknown,
              RecordText& names)
{
    if (!TakeFront(line, lead))
        return false;
    names.parameter = Unless(unknown, line);
    return true;
}

/// What stands between the kind and the class.
bool TakeParameter(std::string_view line, const DumpRecord& record, RecordText& names)
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

} // namespace

std::optional<RecordText> RecordText::Parse(std::string_view line, const DumpRecord& record)
{
    RecordText names;
    const bool fits = TakeFront(line, "% ") && TakeFront(line, EventKind::Name(record.kind)) &&
                      TakeObjectAndThread(line, record, names) && TakePlace(line, record, names) &&
                      TakeParameter(line, record, names);
    return fits ? std::optional<RecordText>(names) : std::nullopt;
}
