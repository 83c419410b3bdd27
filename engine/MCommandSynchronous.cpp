#include "engine/MCommandSynchronous.h"

#include "foundation/MException.h"

#include <windows.h>

const wchar_t MCommandSynchronous::className[] = L"MCommandSynchronous";

namespace
{

void Fill(MExceptionSlot& slot, const MException& outcome)
{
    if (slot.IsEmpty())
        return;
    MException copy(outcome);
    slot->TakeFrom(copy);
}

} // namespace

MCommandSynchronous::MCommandSynchronous(const MExceptionSlot& exceptionSlot)
    : exceptionSlot(exceptionSlot), completionEvent(nullptr)
{
}

MCommandSynchronous::~MCommandSynchronous() = default;

void MCommandSynchronous::ExecuteGenericCommand()
{
    Fill(exceptionSlot, MException());
    try {
        Execute();
    } catch (MException& exception) {
        Fill(exceptionSlot, exception);
    }
    SetEvent(completionEvent);
}
