#include "diagnostics/KLogLock.h"

void KLogLock::Initialise()
{
    InitializeCriticalSection(&criticalSection);
    initialised = true;
}

void KLogLock::Enter()
{
    if (initialised)
        EnterCriticalSection(&criticalSection);
}

void KLogLock::Leave()
{
    if (initialised)
        LeaveCriticalSection(&criticalSection);
}
