#pragma once

#include "diagnostics/dump/RecorderBlocks.h"

#include <windows.h>

#include <dbghelp.h>

/// The system's function for minidumps, found beforehand, and room for all that it is told.
class Minidump
{
public:
    /// Without the system's library nothing will be written.
    Minidump();
    Minidump(const Minidump&) = delete;
    Minidump& operator=(const Minidump&) = delete;
    ~Minidump();

    /// Writes threads, modules, the memory of all flight recorders in the process, and the
    /// exception unless `pointers` is null. False when that fails, by a fault even.
    bool Write(HANDLE file, _EXCEPTION_POINTERS* pointers);

private:
    void FillStreams();
    bool CallSystem(HANDLE file, _EXCEPTION_POINTERS* pointers);

    const HMODULE library;
    const decltype(&SymGetOptions) getOptions;
    const decltype(&SymSetOptions) setOptions;
    const decltype(&MiniDumpWriteDump) writeDump;
    RecorderBlocks blocks;
    MINIDUMP_USER_STREAM streams[1 + RecorderBlocks::capacity];
};
