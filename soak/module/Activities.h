#pragma once

#include "varek/Export.h"

// What a module does all day, in small pieces. Each comes back when nothing of it is left at work,
// and raises an `MException` when something came out otherwise than it must. Any thread may call
// any of them at any time.

/// Commands whose callers wait, that fail, that are not waited for to the end, that are taken back.
VAREK_API void ExecuteCommands();

/// A burst of events that own what they carry, some of which fail.
VAREK_API void DeliverEvents();

/// A document filed into a text, into a file and into the registry, read again, and edited.
VAREK_API void FileDocuments();

/// A processor, a scheduler and a worker of their own, from their start to their end.
VAREK_API void StartAndStopThreads();
