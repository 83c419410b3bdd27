#pragma once

#include "tests/support/EngineWork.h"

#include <windows.h>

// This executable brings import slots of its own for a few functions of the system, through which
// the engine's calls go like everybody's. A handle that is closed twice, or that is none, fails the
// test at once.

enum class Import {
    WaitForMultipleObjects,
    WaitForSingleObject,
    BeginThread,
    CreateEvent,
    SetEvent,
    ResetEvent,
    CloseHandle
};

/// Has the next call of the calling thread answer `answer`, with that for last error and `errno`.
/// Waits are made before they answer wrong; the others are not made.
void AnswerNext(Import import, DWORD answer);

/// Has `action` done ahead of the next call of the calling thread. Not owned. One of either kind at
/// a time in the process.
void DoAheadOfNext(Import import, const Action& action);
