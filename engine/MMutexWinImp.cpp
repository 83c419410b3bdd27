#include "engine/MMutexImp.h"

#include <windows.h>

namespace
{

class MMutexWinImp : public MMutexImp
{
public:
    MMutexWinImp() { InitializeCriticalSection(&criticalSection); }
    ~MMutexWinImp() override { DeleteCriticalSection(&criticalSection); }

    bool Lock() override
    {
        EnterCriticalSection(&criticalSection);
        return true;
    }

    bool TryLock() override { return TryEnterCriticalSection(&criticalSection) != 0; }

    void Unlock() override { LeaveCriticalSection(&criticalSection); }

private:
    CRITICAL_SECTION criticalSection;
};

} // namespace

MMutexImp* CreateMutexImp()
{
    return new MMutexWinImp;
}
