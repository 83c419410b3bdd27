#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class MDesyncEventScheduler;

// For those who test a module: wait for its events, look at what a piece of code has recorded, and
// count what it leaves behind.
//
//     varek::Recording recording;
//     varek::Call([&] { kettle.Heat(90); });
//     varek::AwaitEvents();
//     recording.Expect(varek::Scope(L"Kettle", L"Heat")).Before(varek::Error(L"Boils"));
//
// With GoogleTest, included ahead of this, what is not as expected fails the test; without, it is
// raised.

namespace varek
{

/// @{
/// Returns when every event has been delivered that was posted before. Not on the scheduler thread.
/// Raises "varek.AwaitEvents:TimedOut" after half a minute: the scheduler is disabled, has died, or
/// is at an event that does not end.
void AwaitEvents(MDesyncEventScheduler& scheduler);
void AwaitEvents();
/// @}

/// A record of the flight recorder, as a dump shows it.
struct Record {
    std::string kind;      ///< "Scope_push", "Root_error" ...
    std::string error;     ///< of an error, its short code
    std::string className; ///< "(unknown)" for none
    std::string function;  ///< empty where none is shown
    std::string text;      ///< the whole line
};

/// What is looked for among records, as they have it; an empty text stands for any.
struct RecordPattern {
    std::string kind;      ///< "Scope_push", "Root_error" ...
    std::string error;     ///< of an error, its short code
    std::string className; ///< of the function
    std::string function;  ///< without its class
};

/// @{
/// A function that is entered, one that is left, an object that comes or goes (by its class), and a
/// failure that is raised or dismissed (by its function).
RecordPattern Scope(const std::wstring& className, const std::wstring& function);
RecordPattern ScopeEnd(const std::wstring& className, const std::wstring& function);
RecordPattern Construction(const std::wstring& className);
RecordPattern Destruction(const std::wstring& className);
RecordPattern Error(const std::wstring& shortCode);
RecordPattern Dismissed(const std::wstring& className, const std::wstring& function);
/// @}

namespace detail
{

/// Raises "varek.Recording:NotAsExpected" with "finding".
void RaiseFinding(const std::string& finding);

#ifdef ADD_FAILURE
static inline void TellFinding(const std::string& finding)
{
    ADD_FAILURE() << finding;
}
#else
static inline void TellFinding(const std::string& finding)
{
    RaiseFinding(finding);
}
#endif

} // namespace detail

/// What the flight recorder of this module gets from the making of the object on, of all threads.
class Recording
{
public:
    /// Takes what is not as expected, with the records.
    typedef std::function<void(const std::string& finding)> Tell;

    /// A record that has been found, and what is expected of its place.
    class Found
    {
    public:
        /// Expects a record of that pattern later on; the first one is what is found then.
        Found Before(const RecordPattern& pattern) const;

    private:
        friend class Recording;
        Found(const Recording& recording, std::size_t next) : recording(recording), next(next) {}

        const Recording& recording;
        std::size_t next;
    };

    /// Begins here.
    explicit Recording(Tell tell = detail::TellFinding);

    /// What has been recorded up to now, oldest first. Raises "varek.Recording:Overrun" when the
    /// recorder has gone round since the beginning.
    std::vector<Record> GetRecords() const;

    /// Expects a record of that pattern; the first one is what is found.
    Found Expect(const RecordPattern& pattern) const;

    /// Expects none.
    void ExpectNone(const RecordPattern& pattern) const;

private:
    std::size_t Find(const std::vector<Record>& records, const RecordPattern& pattern,
                     std::size_t start) const;
    Found ExpectFrom(std::size_t start, const RecordPattern& pattern) const;

    Tell tell;
    std::string mark; // in the record from which on it counts
};

/// Counts what a piece of code leaves behind: heap blocks of the C run time and handles of the
/// system, of the whole process. Run the code once before, since what is made on first use stays.
class Leaks
{
public:
    /// Counts from here.
    Leaks();

    /// @{
    /// How many more there are now.
    long long Blocks() const;
    long long Handles() const;
    /// @}

private:
    long long blocks;
    std::size_t handles;
};

} // namespace varek
