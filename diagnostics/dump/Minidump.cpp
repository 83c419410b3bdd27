#include "diagnostics/dump/Minidump.h"

#include "diagnostics/StructuredGuard.h"

namespace
{

/// While one lives, the system's library loads no image's symbols before somebody asks for one.
/// A minidump needs none; but for a debug record without a file's name, as a build id is, some
/// versions of the library read all that lies beside the image, and may fail over it.
class SymbolsDeferred
{
public:
    SymbolsDeferred(decltype(&SymGetOptions) get, decltype(&SymSetOptions) set)
        : set(set), before(get())
    {
        set(before | SYMOPT_DEFERRED_LOADS);
    }
    SymbolsDeferred(const SymbolsDeferred&) = delete;
    SymbolsDeferred& operator=(const SymbolsDeferred&) = delete;
    ~SymbolsDeferred() { set(before); }

private:
    const decltype(&SymSetOptions) set;
    const DWORD before;
};

template <class Function>
Function* Find(HMODULE library, const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void (*)()>(library ? GetProcAddress(library, name) : nullptr));
}

} // namespace

Minidump::Minidump()
    : library(LoadLibraryW(L"dbghelp.dll")),
      getOptions(Find<decltype(SymGetOptions)>(library, "SymGetOptions")),
      setOptions(Find<decltype(SymSetOptions)>(library, "SymSetOptions")),
      writeDump(Find<decltype(MiniDumpWriteDump)>(library, "MiniDumpWriteDump"))
{
}

Minidump::~Minidump()
{
    if (library)
        FreeLibrary(library);
}

bool Minidump::Write(HANDLE file, _EXCEPTION_POINTERS* pointers)
{
    if (!getOptions || !setOptions || !writeDump)
        return false;
    struct Call {
        Minidump* minidump;
        HANDLE file;
        _EXCEPTION_POINTERS* pointers;
        bool written;
    } call = {this, file, pointers, false};
    const GuardedBody write = [](void* context) {
        Call& guarded = *static_cast<Call*>(context);
        guarded.written = guarded.minidump->CallSystem(guarded.file, guarded.pointers);
    };
    const GuardFilter acceptAll = [](void*, _EXCEPTION_POINTERS*) -> long { return GuardAccept; };
    FillStreams();
    const SymbolsDeferred deferred(getOptions, setOptions);
    return RunGuarded(write, acceptAll, &call) && call.written;
}

void Minidump::FillStreams()
{
    blocks.Collect();
    RecorderBlock* const list = blocks.Get();
    const ULONG count = blocks.GetCount();
    streams[0] = {RecorderBlocksStream, count * static_cast<ULONG>(sizeof *list), list};
    for (ULONG i = 0; i < count; ++i)
        streams[1 + i] = {RecorderFirstBlockStream + i, static_cast<ULONG>(list[i].size),
                          reinterpret_cast<void*>(list[i].address)};
}

bool Minidump::CallSystem(HANDLE file, _EXCEPTION_POINTERS* pointers)
{
    MINIDUMP_EXCEPTION_INFORMATION exception = {GetCurrentThreadId(), pointers, FALSE};
    MINIDUMP_USER_STREAM_INFORMATION recorders = {1 + blocks.GetCount(), streams};
    return writeDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                     pointers ? &exception : nullptr, &recorders, nullptr) != FALSE;
}
