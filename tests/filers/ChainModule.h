#pragma once

#include "module/Runtime.h"

#include <string>

// What the modules of the chain test export beside the three functions of every module.

typedef Varek::Runtime::CallbackFunctor1Param<const std::wstring&> TextReceiver;

/// Ends an engine thread by an exception with two errors; `receiver` gets the fatal error text and
/// goes to the module.
extern "C" VAREK_API void FailOnEngineThread(TextReceiver* receiver);

/// Throws and catches an error that carries the chain filed in `text`, and files what was caught.
extern "C" VAREK_API void CarryChain(const std::wstring& text, TextReceiver& receiver);

extern "C" VAREK_API void StopModule();
