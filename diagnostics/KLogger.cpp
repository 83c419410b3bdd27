#include "diagnostics/KLogger.h"

#include "diagnostics/RecorderDescription.h"

#include <cassert>
#include <cstring>
#include <ctime>

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
    if (!moduleLogger) {
        moduleLogger = new KLogger;
        description.core = moduleLogger;
    }
    return moduleLogger;
}

KLogger::KLogger()
{
    for (KLogLock* lock : {&eventNamesLock, &threadNamesLock, &idNamesLock, &stateNamesLock,
                           &objectNamesLock, &spareLock})
        lock->Initialise();

    for (const EventKind& event : eventKinds)
        eventNames.Insert(static_cast<std::uint32_t>(event.kind), event.name,
                          std::strlen(event.name));

    counterFrequency = ReadCounterFrequency();
    startCounter = ReadCounter();
    _ftime64(&startWallClock);
    if (_ctime64_s(startDate, sizeof startDate, &startWallClock.time) != 0)
        *startDate = '\0';

    capacity = ringCapacity;
    writeIndex = 0xFFFFFFFF;
    enabled = true;
    records = new KLogRecord[capacity]();
    assert((writeIndex + 1) % capacity == 0 && FindOldest() == 0);
}

// The lock is not released when the insertion throws: a map that ran out of memory is closed to
// further names. A name that is there already takes no memory.
void KLogger::Insert(KLogNames& names, KLogLock& lock, std::uint64_t key, const std::string& name)
{
    lock.Enter();
    names.Insert(key, name.data(), name.size());
    lock.Leave();
}

void KLogger::SetIdName(std::uint32_t id, const std::string& name)
{
    if (this != nullptr)
        Insert(idNames, idNamesLock, id, name);
}

void KLogger::SetMessageName(std::uint32_t id, const std::string& name)
{
    if (this != nullptr)
        Insert(stateNames, stateNamesLock, id, name);
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
        Insert(threadNames, threadNamesLock, GetCurrentThreadId(), name);
}

void KLogger::Copy(KLogNames& from, KLogLock& fromLock, KLogNames& to, KLogLock& toLock)
{
    fromLock.Enter();
    toLock.Enter();
    for (const KLogNames::Name* name = from.GetNewest(); name; name = name->older)
        to.Insert(name->key, name->GetText(), name->length);
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
