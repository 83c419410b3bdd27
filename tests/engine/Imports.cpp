// The import slots of what the engine asks of the system.

#include "tests/support/FailingCalls.h"

#include <process.h>

namespace
{

const char waitForMultipleObjects[] = "WaitForMultipleObjects";
const char waitForSingleObject[] = "WaitForSingleObject";
const char beginThread[] = "_beginthreadex";
const char createEvent[] = "CreateEventW";
const char setEvent[] = "SetEvent";
const char resetEvent[] = "ResetEvent";
const char closeHandle[] = "CloseHandle";

// Whoever closes what is another's by now takes it from him, and his own closing fails.
BOOL Close(HANDLE handle)
{
    const BOOL closed = CallOrFail<closeHandle, FALSE, BOOL>(handle);
    EXPECT_TRUE(closed) << "a handle that is not open was closed";
    return closed;
}

} // namespace

extern "C" {
decltype(&WaitForMultipleObjects) __imp_WaitForMultipleObjects =
    WaitAndFail<waitForMultipleObjects>;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = WaitAndFail<waitForSingleObject>;
decltype(&_beginthreadex) __imp__beginthreadex = CallOrFail<beginThread, 0>;
decltype(&CreateEventW) __imp_CreateEventW = CallOrFail<createEvent, 0>;
decltype(&SetEvent) __imp_SetEvent = CallOrFail<setEvent, FALSE>;
decltype(&ResetEvent) __imp_ResetEvent = CallOrFail<resetEvent, FALSE>;
decltype(&CloseHandle) __imp_CloseHandle = Close;
}
