// The calls of the kernel, as they are documented.

#include "explore/kernel/Handles.h"

#include <cstdlib>

#include <objbase.h>
#include <process.h>

namespace
{

HANDLE OpenNew(const char* call, bool signalled, bool stays)
{
    const Turn turn(call, Turn::Entry::AtOnce);
    return OpenHandle(MakeObject(signalled, stays));
}

BOOL Signal(const char* call, HANDLE event, bool signalled)
{
    Turn turn(call);
    Object* const object = Find(event);
    if (!object)
        return FALSE;
    object->signalled = signalled;
    if (signalled) {
        Turn::Release(object);
        turn.Changed();
    }
    return TRUE;
}

/// The objects of a wait, which stay while it lasts.
struct Awaited {
    Awaited(DWORD count, const HANDLE* handles) : count(0)
    {
        for (DWORD i = 0; i < count; ++i) {
            Object* const object = Find(handles[i]);
            if (!object)
                return;
            ++object->references;
            objects[this->count++] = object;
        }
    }
    ~Awaited()
    {
        for (DWORD i = 0; i < count; ++i)
            Drop(objects[i]);
    }

    /// The number of the first object that is set, or the count.
    DWORD FirstSignalled() const
    {
        DWORD index = 0;
        while (index < count && !objects[index]->signalled)
            ++index;
        return index;
    }

    DWORD count;
    Object* objects[MAXIMUM_WAIT_OBJECTS];
};

/// What a wait that the object of that number has ended leaves of it, and answers.
DWORD End(Object& object, DWORD index)
{
    Turn::Acquire(&object);
    object.signalled = object.stays;
    if (!object.isMutex)
        return WAIT_OBJECT_0 + index;
    const bool abandoned = object.abandoned;
    object.abandoned = false;
    object.thread = CurrentThread().id;
    return (abandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + index;
}

DWORD Wait(const char* call, DWORD count, const HANDLE* handles, DWORD timeoutMs)
{
    Turn turn(call);
    if (count > MAXIMUM_WAIT_OBJECTS) {
        CurrentThread().lastError = ERROR_INVALID_PARAMETER;
        return WAIT_FAILED;
    }
    const Awaited awaited(count, handles);
    if (awaited.count < count)
        return WAIT_FAILED;
    DWORD index = count;
    const auto isSet = [&] { return (index = awaited.FirstSignalled()) < count; };
    return turn.Await(isSet, timeoutMs) ? End(*awaited.objects[index], index) : WAIT_TIMEOUT;
}

/// A thread that has not begun, from its maker to itself.
struct NewThread {
    unsigned (*routine)(void*);
    void* argument;
    Object* object;
};

void RunNewThread(void* context)
{
    const NewThread thread = *static_cast<NewThread*>(context);
    std::free(context);
    thread.routine(thread.argument);
    Turn turn("the end of a thread");
    thread.object->signalled = true;
    Turn::Release(thread.object);
    Drop(thread.object);
    turn.Changed();
}

} // namespace

HANDLE CreateEventW(void*, BOOL manualReset, BOOL initialState, const wchar_t*)
{
    return OpenNew("CreateEventW", initialState != FALSE, manualReset != FALSE);
}

HANDLE CreateMutexW(void*, BOOL, const wchar_t*)
{
    Turn turn("CreateMutexW");
    Object* const mutex = MakeObject(true, false);
    mutex->isMutex = true;
    return OpenHandle(mutex);
}

HANDLE OpenThread(DWORD, BOOL, DWORD threadId)
{
    Turn turn("OpenThread");
    Object* const thread = FindThread(threadId);
    if (!thread)
        return nullptr;
    ++thread->references;
    return OpenHandle(thread);
}

BOOL SetEvent(HANDLE event)
{
    return Signal("SetEvent", event, true);
}

BOOL ResetEvent(HANDLE event)
{
    return Signal("ResetEvent", event, false);
}

BOOL CloseHandle(HANDLE handle)
{
    Turn turn("CloseHandle");
    return ForgetHandle(handle) ? TRUE : FALSE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD timeoutMs)
{
    return Wait("WaitForSingleObject", 1, &handle, timeoutMs);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL, DWORD timeoutMs)
{
    return Wait("WaitForMultipleObjects", count, handles, timeoutMs);
}

std::uintptr_t _beginthreadex(void*, unsigned, unsigned (*routine)(void*), void* argument, unsigned,
                              unsigned* threadId)
{
    HANDLE handle = nullptr;
    NewThread* thread = nullptr;
    {
        Turn turn("_beginthreadex");
        thread = static_cast<NewThread*>(std::malloc(sizeof *thread));
        *thread = {routine, argument, MakeObject(false, true)};
        thread->object->thread = *threadId = NextThreadId();
        ++thread->object->references;
        handle = OpenHandle(thread->object);
    }
    RunThread(*threadId, RunNewThread, thread);
    return reinterpret_cast<std::uintptr_t>(handle);
}

HANDLE CreateThread(void*, std::size_t, LPTHREAD_START_ROUTINE routine, void* argument, DWORD,
                    DWORD*)
{
    unsigned id = 0;
    return reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, routine, argument, 0, &id));
}

// It stays where it waits.
BOOL TerminateThread(HANDLE, DWORD)
{
    return TRUE;
}

void InitializeCriticalSection(CRITICAL_SECTION* section)
{
    *section = {0, 0};
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION* section)
{
    Turn turn("TryEnterCriticalSection");
    const DWORD self = CurrentThread().id;
    if (section->depth > 0 && section->owner != self)
        return FALSE;
    section->owner = self;
    ++section->depth;
    Turn::Acquire(section);
    return TRUE;
}

void EnterCriticalSection(CRITICAL_SECTION* section)
{
    Turn turn("EnterCriticalSection");
    const DWORD self = CurrentThread().id;
    turn.Await([=] { return section->depth == 0 || section->owner == self; }, INFINITE);
    section->owner = self;
    ++section->depth;
    Turn::Acquire(section);
}

void LeaveCriticalSection(CRITICAL_SECTION* section)
{
    Turn turn("LeaveCriticalSection", Turn::Entry::AtOnce);
    Turn::Release(section);
    if (--section->depth == 0)
        turn.Changed();
}

void DeleteCriticalSection(CRITICAL_SECTION*) {}

DWORD GetCurrentProcessId()
{
    return 4;
}

DWORD GetCurrentThreadId()
{
    return CurrentThread().id;
}

DWORD GetLastError()
{
    return CurrentThread().lastError;
}

void SetLastError(DWORD error)
{
    CurrentThread().lastError = error;
}

void Sleep(DWORD milliseconds)
{
    Turn turn("Sleep");
    turn.Await([] { return false; }, milliseconds);
}

BOOL SwitchToThread()
{
    Sleep(0);
    return TRUE;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks)
{
    ticks->QuadPart = CurrentTime() / 100;
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* ticksPerSecond)
{
    ticksPerSecond->QuadPart = 10000000;
    return TRUE;
}

// The code of this program stays loaded, so there is nothing to hold.
BOOL GetModuleHandleExW(DWORD, const wchar_t*, HMODULE* module)
{
    *module = nullptr;
    return FALSE;
}

BOOL FreeLibrary(HMODULE)
{
    return TRUE;
}

// There are no files, and the registry is empty and takes nothing.

HANDLE CreateFileW(const wchar_t*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)
{
    return INVALID_HANDLE_VALUE;
}

BOOL WriteFile(HANDLE, const void*, DWORD, DWORD*, void*)
{
    return FALSE;
}

LSTATUS RegOpenKeyExW(HKEY, const wchar_t*, DWORD, REGSAM, HKEY*)
{
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegCreateKeyExW(HKEY, const wchar_t*, DWORD, wchar_t*, DWORD, REGSAM, void*, HKEY*, DWORD*)
{
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegSetValueExW(HKEY, const wchar_t*, DWORD, DWORD, const BYTE*, DWORD)
{
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegQueryValueExW(HKEY, const wchar_t*, DWORD*, DWORD*, BYTE*, DWORD*)
{
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS RegCloseKey(HKEY)
{
    return ERROR_SUCCESS;
}

LONG CoInitializeEx(void*, DWORD)
{
    CurrentThread().inApartment = true;
    return S_OK;
}

void CoUninitialize()
{
    CurrentThread().inApartment = false;
}

LONG CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER*)
{
    *type = APTTYPE_MTA;
    return CurrentThread().inApartment ? S_OK : -1;
}
