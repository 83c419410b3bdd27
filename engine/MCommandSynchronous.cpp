#include "engine/MCommandSynchronous.h"

#include "foundation/MException.h"

#include <windows.h>

const wchar_t MCommandSynchronous::className[] = L"MCommandSynchronous";

MCommandSynchronous::MCommandSynchronous(const MExceptionSlot& exceptionSlot)
    : exceptionSlot(exceptionSlot), completionEvent(nullptr)
{
}

MCommandSynchronous::~MCommandSynchronous() = default;

// What `Execute` raises is handed over, not copied: a failure reaches its caller without memory.
void MCommandSynchronous::ExecuteGenericCommand()
{
    EmptySlot();
    try {
        Execute();
    } catch (MException& exception) {
        if (!exceptionSlot.IsEmpty())
            exceptionSlot->TakeFrom(exception);
    }
    SetEvent(completionEvent);
}

void MCommandSynchronous::EmptySlot()
{
    if (exceptionSlot.IsEmpty() || exceptionSlot->GetErrorCount() == 0)
        return;
    MException empty;
    exceptionSlot->TakeFrom(empty);
}
