#pragma once

#include <cstddef>
#include <cstdint>

// As much of <windows.h> as the rooms include it for, on the build machine. explore/kernel answers
// the calls, as they are documented.

typedef std::int32_t BOOL;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef std::uint32_t ULONG;
typedef LONG HRESULT;
typedef void* HANDLE;
typedef void* HMODULE;

const BOOL FALSE = 0;
const BOOL TRUE = 1;

const DWORD INFINITE = 0xFFFFFFFF;
const DWORD WAIT_OBJECT_0 = 0;
const DWORD WAIT_ABANDONED = 128;
const DWORD WAIT_ABANDONED_0 = 128;
const DWORD WAIT_TIMEOUT = 258;
const DWORD WAIT_FAILED = 0xFFFFFFFF;
const DWORD MAXIMUM_WAIT_OBJECTS = 64;

const DWORD ERROR_INVALID_HANDLE = 6;
const DWORD ERROR_INVALID_PARAMETER = 87;

const HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005);

const DWORD SYNCHRONIZE = 0x00100000;

extern "C" {

HANDLE CreateEventW(void* security, BOOL manualReset, BOOL initialState, const wchar_t* name);
HANDLE CreateMutexW(void* security, BOOL initialOwner, const wchar_t* name);
HANDLE OpenThread(DWORD access, BOOL inherit, DWORD threadId);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
BOOL CloseHandle(HANDLE handle);
DWORD WaitForSingleObject(HANDLE handle, DWORD timeoutMs);
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all, DWORD timeoutMs);

typedef DWORD (*LPTHREAD_START_ROUTINE)(void*);

HANDLE CreateThread(void* security, std::size_t stackSize, LPTHREAD_START_ROUTINE routine,
                    void* argument, DWORD flags, DWORD* threadId);
BOOL TerminateThread(HANDLE thread, DWORD exitCode);

struct CRITICAL_SECTION {
    DWORD owner;
    DWORD depth;
};

void InitializeCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
BOOL TryEnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);

DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();
DWORD GetLastError();
void SetLastError(DWORD error);
void Sleep(DWORD milliseconds);
BOOL SwitchToThread();

union LARGE_INTEGER {
    std::int64_t QuadPart;
};

BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* ticksPerSecond);

const DWORD GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 4;

BOOL GetModuleHandleExW(DWORD flags, const wchar_t* address, HMODULE* module);
BOOL FreeLibrary(HMODULE module);

const unsigned CP_UTF8 = 65001; // the only one that is known

int WideCharToMultiByte(unsigned codePage, DWORD flags, const wchar_t* text, int length,
                        char* bytes, int size, const char* unknown, BOOL* anyUnknown);
int MultiByteToWideChar(unsigned codePage, DWORD flags, const char* bytes, int size, wchar_t* text,
                        int length);

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(-1))
const DWORD GENERIC_WRITE = 0x40000000;
const DWORD FILE_SHARE_READ = 1;
const DWORD FILE_SHARE_WRITE = 2;
const DWORD CREATE_ALWAYS = 2;
const DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share, void* security, DWORD creation,
                   DWORD attributes, HANDLE likeness);
BOOL WriteFile(HANDLE file, const void* bytes, DWORD count, DWORD* written, void* overlapped);

struct EXCEPTION_RECORD {
    DWORD ExceptionCode;
};

struct _EXCEPTION_POINTERS {
    EXCEPTION_RECORD* ExceptionRecord;
};

typedef _EXCEPTION_POINTERS EXCEPTION_POINTERS;

const DWORD EXCEPTION_ACCESS_VIOLATION = 0xC0000005;

void RaiseException(DWORD code, DWORD flags, DWORD count, const void* arguments);

struct HKEY__;
typedef HKEY__* HKEY;
typedef DWORD REGSAM;
typedef LONG LSTATUS;
typedef unsigned char BYTE;

const LSTATUS ERROR_SUCCESS = 0;
const LSTATUS ERROR_FILE_NOT_FOUND = 2;
const LSTATUS ERROR_MORE_DATA = 234;
const REGSAM KEY_READ = 0x20019;
const REGSAM KEY_WRITE = 0x20006;
const DWORD REG_NONE = 0;
const DWORD REG_SZ = 1;
const DWORD REG_DWORD = 4;
const DWORD REG_OPTION_NON_VOLATILE = 0;

#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(0x80000001))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(0x80000002))

LSTATUS RegOpenKeyExW(HKEY parent, const wchar_t* path, DWORD options, REGSAM access, HKEY* key);
LSTATUS RegCreateKeyExW(HKEY parent, const wchar_t* path, DWORD reserved, wchar_t* keyClass,
                        DWORD options, REGSAM access, void* security, HKEY* key,
                        DWORD* disposition);
LSTATUS RegSetValueExW(HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data,
                       DWORD size);
LSTATUS RegQueryValueExW(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data,
                         DWORD* size);
LSTATUS RegCloseKey(HKEY key);
}
