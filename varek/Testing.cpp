#include "varek/Testing.h"

#include "diagnostics/MFlowLogger.h"
#include "varek/Errors.h"
#include "varek/OpenHandles.h"
#include "varek/Post.h"

#include <atomic>
#include <sstream>

#include <malloc.h>
#include <windows.h>

namespace varek
{

namespace
{

const DWORD longestDelivery = 30000; // ms

/// What stands between two words of a line; empty without the first of them.
std::string Between(const std::string& line, const std::string& before, const std::string& behind)
{
    const std::size_t start = line.find(before);
    if (start == std::string::npos)
        return std::string();
    const std::size_t end = line.find(behind, start + before.size());
    return line.substr(start + before.size(), end - start - before.size());
}

// "% Root_error Boils in_class Kettle at Heat for_object 0000 (unknown) in_thread 264 (...)"
Record ReadRecord(const std::string& line)
{
    const std::string what = Between(line, "% ", " in_class ");
    const std::string kind = what.substr(0, what.find(' '));
    return {kind, what.substr(std::min(kind.size() + 1, what.size())),
            Between(line, " in_class ", " at"), // or " at_point", with a number
            Between(line, " at ", " for_object "), line};
}

bool Fits(const std::string& wanted, const std::string& found)
{
    return wanted.empty() || wanted == found;
}

RecordPattern Pattern(const char* kind, const std::wstring& className, const std::wstring& function)
{
    return {kind, std::string(), ToUtf8(className), ToUtf8(function)};
}

long long CountBlocks()
{
    long long count = 0;
    _HEAPINFO block = {};
    while (_heapwalk(&block) == _HEAPOK)
        count += block._useflag == _USEDENTRY;
    return count;
}

} // namespace

void AwaitEvents(MDesyncEventScheduler& scheduler)
{
    const auto delivered = std::make_shared<PlatformEvent>(EventReset::Manual);
    Post(scheduler, [delivered] { SetEvent(*delivered); });
    if (WaitForSingleObject(*delivered, longestDelivery) == WAIT_OBJECT_0)
        return;
    static TracedLocation location(L"varek", L"AwaitEvents");
    Raise(location, L"TimedOut").Throw();
}

void AwaitEvents()
{
    AwaitEvents(detail::ModuleScheduler());
}

RecordPattern Scope(const std::wstring& className, const std::wstring& function)
{
    return Pattern("Scope_push", className, function);
}

RecordPattern ScopeEnd(const std::wstring& className, const std::wstring& function)
{
    return Pattern("Scope_pop", className, function);
}

RecordPattern Construction(const std::wstring& className)
{
    return Pattern("Construction", className, std::wstring());
}

RecordPattern Destruction(const std::wstring& className)
{
    return Pattern("Destruction", className, std::wstring());
}

RecordPattern Error(const std::wstring& shortCode)
{
    return {"Root_error", ToUtf8(shortCode), std::string(), std::string()};
}

RecordPattern Dismissed(const std::wstring& className, const std::wstring& function)
{
    return Pattern("Dismissed_error", className, function);
}

void detail::RaiseFinding(const std::string& finding)
{
    static TracedLocation location(L"varek", L"Recording");
    Raise(location, L"NotAsExpected").With(L"finding", finding).Throw();
}

// The record that marks the beginning names an object that is nobody's, nor another module's mark.
Recording::Recording(Tell tell) : tell(std::move(tell))
{
    static TracedLocation location(L"varek", L"Recording");
    static std::atomic<std::uintptr_t> serial{0};
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(&serial) + ++serial;
    location.SetObject(reinterpret_cast<const void*>(number)).LogTimingPoint();
    std::ostringstream object;
    object << std::uppercase << std::hex;
    object.width(16);
    object.fill('0');
    object << number;
    mark = " in_class varek at Recording for_object " + object.str();
}

std::vector<Record> Recording::GetRecords() const
{
    std::ostringstream dump;
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
    std::istringstream lines(dump.str());
    std::vector<Record> records;
    bool began = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.find(mark) != std::string::npos) {
            began = true;
            records.clear(); // it was that of a module that was here before
        } else if (began && line.compare(0, 2, "% ") == 0)
            records.push_back(ReadRecord(line));
    }
    if (!began) {
        static TracedLocation location(L"varek", L"Recording");
        Raise(location, L"Overrun").Throw();
    }
    return records;
}

std::size_t Recording::Find(const std::vector<Record>& records, const RecordPattern& pattern,
                            std::size_t start) const
{
    while (start < records.size() &&
           !(Fits(pattern.kind, records[start].kind) && Fits(pattern.error, records[start].error) &&
             Fits(pattern.className, records[start].className) &&
             Fits(pattern.function, records[start].function)))
        ++start;
    return start;
}

Recording::Found Recording::ExpectFrom(std::size_t start, const RecordPattern& pattern) const
{
    const std::vector<Record> records = GetRecords();
    const std::size_t found = Find(records, pattern, start);
    if (found < records.size())
        return Found(*this, found + 1);
    std::string finding = "there is no " + pattern.kind + " " + pattern.error + pattern.className +
                          " " + pattern.function + " among\n";
    for (std::size_t i = start; i < records.size(); ++i)
        finding += records[i].text + "\n";
    tell(finding);
    return Found(*this, records.size());
}

Recording::Found Recording::Expect(const RecordPattern& pattern) const
{
    return ExpectFrom(0, pattern);
}

Recording::Found Recording::Found::Before(const RecordPattern& pattern) const
{
    return recording.ExpectFrom(next, pattern);
}

void Recording::ExpectNone(const RecordPattern& pattern) const
{
    const std::vector<Record> records = GetRecords();
    const std::size_t found = Find(records, pattern, 0);
    if (found < records.size())
        tell("not expected: " + records[found].text);
}

Leaks::Leaks() : blocks(CountBlocks()), handles(CountOpenHandles()) {}

long long Leaks::Blocks() const
{
    return CountBlocks() - blocks;
}

long long Leaks::Handles() const
{
    return static_cast<long long>(CountOpenHandles() - handles);
}

} // namespace varek
