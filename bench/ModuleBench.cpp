// What a module costs that is loaded, has its threads running, and has nothing to do.

#include "bench/support/Report.h"
#include "module/CallbackFunctor1Param.h"

#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include <windows.h>

namespace
{

const double kib = 1024;
const double ringBytes = 0x20000 * 40;

typedef std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<const std::wstring&>> ErrorCallback;
typedef std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>> CrashCallback;
typedef void (*Register)(ErrorCallback onSpontaneousError, CrashCallback onCrash);
typedef void (*Shutdown)();

const char registerName[] =
    "_ZN5Varek7Runtime26RegisterFatalErrorHandlersESt8auto_ptrINS0_21CallbackFunctor1ParamIRKNSt7__"
    "cxx1112basic_stringIwSt11char_traitsIwESaIwEEEEEES1_INS2_IP19_EXCEPTION_POINTERSEEE";
const char shutdownName[] = "_ZN5Varek7Runtime8ShutdownEv";

template <class Function>
Function Find(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool IsPrivate(const MEMORY_BASIC_INFORMATION& region)
{
    const DWORD writable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT &&
           (region.Type == MEM_PRIVATE ||
            (region.Type == MEM_IMAGE && (region.Protect & writable) != 0));
}

/// All that is committed for this process alone, whether it has been touched or not: private
/// memory, and the writable pages of the loaded images.
double PrivateBytes()
{
    double bytes = 0;
    MEMORY_BASIC_INFORMATION region;
    char* address = nullptr;
    while (VirtualQuery(address, &region, sizeof region) != 0) {
        if (IsPrivate(region))
            bytes += static_cast<double>(region.RegionSize);
        address = static_cast<char*>(region.BaseAddress) + region.RegionSize;
    }
    return bytes;
}

/// Two threads that do nothing, for as long as the object lives.
class BareThreads
{
public:
    ~BareThreads()
    {
        SetEvent(end);
        first.join();
        second.join();
    }

private:
    void Wait() { WaitForSingleObject(end, INFINITE); }

    const HANDLE end = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread first{&BareThreads::Wait, this};
    std::thread second{&BareThreads::Wait, this};
};

void LetThreadsSettle()
{
    Sleep(200);
}

} // namespace

int main()
{
    // A system library, which the module imports and most hosts have loaded anyway.
    LoadLibraryW(L"ole32.dll");
    PrivateBytes();

    const double atFirst = PrivateBytes();
    const BareThreads bareThreads;
    LetThreadsSettle();
    const double withThreads = PrivateBytes();

    const HMODULE module = LoadLibraryW(L"varek.dll");
    const Register start = Find<Register>(module, registerName);
    const Shutdown shutdown = Find<Shutdown>(module, shutdownName);
    if (!start || !shutdown) {
        std::printf("varek.dll cannot be loaded\n");
        return 1;
    }
    start(ErrorCallback(), CrashCallback());
    LetThreadsSettle();
    const double withModule = PrivateBytes();

    const double growth = withModule - withThreads;
    const double threads = withThreads - atFirst;
    Report::Heading("Memory of an idle module, committed");
    Report::Figure("all of it", growth / kib, "KiB");
    Report::Figure("of that, the ring", ringBytes / kib, "KiB");
    Report::Figure("of that, what two threads of any kind cost", threads / kib, "KiB");
    Report::FigureAtMost("the rest", (growth - ringBytes - threads) / kib, "KiB", 1024);
    shutdown();
}
