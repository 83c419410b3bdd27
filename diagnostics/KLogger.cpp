#include "diagnostics/KLogger.h"

#include <windows.h>

namespace
{

struct EventKind {
    std::int32_t kind;
    const char* name;
};

const EventKind eventKinds[] = {
    {-202, "Log_module_added"},
    {-201, "Log_module_removed"},
    {-105, "Root_error"},
    {-104, "Cascade_error"},
    {-103, "Dismissed_error"},
    {-102, "Return_error"},
    {-101, "Warning"},
    {-25, "State_change"},
    {-23, "Notify"},
    {-22, "Update"},
    {-21, "Message_send"},
    {-20, "Message_receive"},
    {-14, "Construction"},
    {-13, "Destruction"},
    {-8, "Scope_pop"},
    {-7, "Scope_push"},
    {-1, "Timing_point"},
    {0, "Timing_point"},
};

std::int64_t ReadCounter()
{
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    return ticks.QuadPart;
}

std::int64_t ReadCounterFrequency()
{
    LARGE_INTEGER ticksPerSecond;
    QueryPerformanceFrequency(&ticksPerSecond);
    return ticksPerSecond.QuadPart;
}

std::uint64_t AddressOf(const void* object)
{
    return reinterpret_cast<std::uintptr_t>(object);
}

KLogger* moduleLogger = nullptr;

} // namespace

KLogger* KLogger::GetModuleLogger()
{
    if (!moduleLogger)
        moduleLogger = new KLogger;
    return moduleLogger;
}

KLogger::KLogger()
{
    for (KLogLock* lock : {&eventNamesLock, &threadNamesLock, &idNamesLock, &stateNamesLock,
                           &objectNamesLock, &spareLock})
        lock->Initialise();

    for (const EventKind& event : eventKinds)
        eventNames.emplace(event.kind, event.name);

    counterFrequency = ReadCounterFrequency();
    startCounter = ReadCounter();
    _ftime64(&startWallClock);

    capacity = ringCapacity;
    writeIndex = 0xFFFFFFFF;
    enabled = true;
    records = new KLogRecord[capacity]();
}

// The lock is not released when the insertion throws: a map that ran out of memory in mid-change
// is closed to everybody rather than read. A name that is there already takes no memory.
template <class Map>
void KLogger::Insert(Map& names, KLogLock& lock, typename Map::key_type key,
                     const std::string& name)
{
    lock.Enter();
    const typename Map::iterator place = names.lower_bound(key);
    if (place == names.end() || place->first != key)
        names.emplace_hint(place, key, name);
    lock.Leave();
}

void KLogger::SetIdName(std::uint32_t id, const std::string& name)
{
    if (this != nullptr)
        Insert(idNames, idNamesLock, static_cast<std::int32_t>(id), name);
}

void KLogger::SetMessageName(std::uint32_t id, const std::string& name)
{
    if (this != nullptr)
        Insert(stateNames, stateNamesLock, static_cast<std::int32_t>(id), name);
}

void KLogger::SetClassStateName(std::uint32_t classId, std::uint32_t state, const std::string& name)
{
    if (this != nullptr)
        Insert(stateNames, stateNamesLock, StateKey(classId, state), name);
}

void KLogger::SetObjectName(const void* object, const std::string& name)
{
    if (this != nullptr)
        Insert(objectNames, objectNamesLock, AddressOf(object), name);
}

void KLogger::SetThreadName(const std::string& name)
{
    if (this != nullptr)
        Insert(threadNames, threadNamesLock, static_cast<std::int32_t>(GetCurrentThreadId()), name);
}

template <class Map>
void KLogger::Copy(Map& from, KLogLock& fromLock, Map& to, KLogLock& toLock)
{
    fromLock.Enter();
    toLock.Enter();
    for (const typename Map::value_type& entry : from)
        to.insert(entry);
    toLock.Leave();
    fromLock.Leave();
}

void KLogger::CopyNamesTo(KLogger& other)
{
    if (this == nullptr)
        return;
    Copy(threadNames, threadNamesLock, other.threadNames, other.threadNamesLock);
    Copy(idNames, idNamesLock, other.idNames, other.idNamesLock);
    Copy(stateNames, stateNamesLock, other.stateNames, other.stateNamesLock);
    Copy(objectNames, objectNamesLock, other.objectNames, other.objectNamesLock);
}

std::int32_t KLogger::StateKey(std::uint32_t classId, std::uint32_t state)
{
    return static_cast<std::int32_t>(classId * 100 + state);
}
