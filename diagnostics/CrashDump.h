#pragma once

#include "diagnostics/dump/DumpPath.h"

#include <atomic>
#include <memory>

class Minidump;
struct _EXCEPTION_POINTERS;

/// What a host leaves behind of a process that dies. Made at the start of the host, used in its
/// fault callback:
///
///     CrashDump crashDump(L"C:\\Dumps\\pump"); // for as long as the module may call back
///
///     void operator()(_EXCEPTION_POINTERS* pointers) override
///     {
///         crashDump.WriteMinidump(pointers); // C:\Dumps\pump-20261121-231805-042-4711.dmp
///         crashDump.WriteText();             // C:\Dumps\pump-20261121-231806-130-4711.log
///     }
///
/// The files have the local time and the id of the process in their names, and none overwrites
/// another. Nothing makes the folder.
///
/// Writing takes nothing from the process's heap and no lock of the framework; all that it needs is
/// brought in when the object is made. The system's own function for minidumps stops the other
/// threads meanwhile, and may take memory for itself.
///
/// Threads: any, one at a time; who comes while another writes is answered false at once.
class CrashDump
{
public:
    /// The files are called `prefix` and what is told above. Loads the system's library for
    /// minidumps. Raises std::bad_alloc, and std::length_error for a prefix of more than 900
    /// characters.
    explicit CrashDump(const wchar_t* prefix);
    CrashDump(const CrashDump&) = delete;
    CrashDump& operator=(const CrashDump&) = delete;
    ~CrashDump();

    /// Writes a minidump of the threads, the modules and, unless `pointers` is null, the exception;
    /// with the memory of all flight recorders in the process as `RecorderDescription` tells, which
    /// is about 5.5 MB for each. False, and no file, when it cannot be made or written.
    bool WriteMinidump(_EXCEPTION_POINTERS* pointers);

    /// Writes the text dump of the caller's own recorder, with what joined modules feed into it.
    /// False when the file cannot be made, or a machine fault ended the dump.
    bool WriteText();

    /// The file tried last; empty when there is none yet.
    const wchar_t* GetPath() const { return path.Get(); }

private:
    const std::unique_ptr<Minidump> minidump;
    DumpPath path;
    std::atomic_flag busy = ATOMIC_FLAG_INIT;
};
