#include "engine/MCommandSynchronous.h"

#include "foundation/MException.h"

#include <windows.h>

const wchar_t MCommandSynchronous::className[] = L"MCommandSynchronous";

MCommandSynchronous::MCommandSynchronous(const MExceptionSlot& exceptionSlot)
    : exceptionSlot(exceptionSlot), completionEvent(nullptr)
{
}

MCommandSynchronous::~MCommandSynchronous() = default;

void MCommandSynchronous::ExecuteGenericCommand()
{
    if (!exceptionSlot.IsEmpty())
        FillSlot(MException());
    try {
        Execute();
    } catch (MException& exception) {
        if (!exceptionSlot.IsEmpty())
            FillSlot(exception);
    }
    SetEvent(completionEvent);
}

void MCommandSynchronous::FillSlot(MException outcome)
{
    exceptionSlot->TakeFrom(outcome);
}
