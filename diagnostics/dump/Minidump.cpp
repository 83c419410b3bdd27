#include "diagnostics/dump/Minidump.h"

#include "diagnostics/StructuredGuard.h"

Minidump::Minidump() : library(LoadLibraryW(L"dbghelp.dll")), writeDump(nullptr)
{
    if (library)
        writeDump = reinterpret_cast<decltype(writeDump)>(
            reinterpret_cast<void (*)()>(GetProcAddress(library, "MiniDumpWriteDump")));
}

Minidump::~Minidump()
{
    if (library)
        FreeLibrary(library);
}

bool Minidump::Write(HANDLE file, _EXCEPTION_POINTERS* pointers)
{
    if (!writeDump)
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
