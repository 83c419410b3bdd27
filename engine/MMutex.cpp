#include "engine/MMutex.h"

#include "engine/MMutexImp.h"

MMutex::MMutex() : imp(CreateMutexImp()), lockCount(0) {}

MMutex::~MMutex()
{
    delete imp;
}

bool MMutex::Lock()
{
    const bool locked = imp && imp->Lock();
    if (locked)
        ++lockCount;
    return locked;
}

void MMutex::Unlock()
{
    if (!imp)
        return;
    if (lockCount > 0)
        --lockCount;
    imp->Unlock();
}
