#include "diagnostics/CrashDump.h"

#include "diagnostics/dump/KDumpFile.h"
#include "diagnostics/dump/Minidump.h"
#include "diagnostics/KLogger.h"

#include <windows.h>

namespace
{

/// The right to write, if nobody else has it.
class Turn
{
public:
    explicit Turn(std::atomic_flag& busy) : busy(busy), mine(!busy.test_and_set()) {}
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn()
    {
        if (mine)
            busy.clear();
    }
    bool IsMine() const { return mine; }

private:
    std::atomic_flag& busy;
    const bool mine;
};

} // namespace

CrashDump::CrashDump(const wchar_t* prefix) : minidump(new Minidump), path(prefix) {}

CrashDump::~CrashDump() = default;

bool CrashDump::WriteMinidump(_EXCEPTION_POINTERS* pointers)
{
    const Turn turn(busy);
    if (!turn.IsMine())
        return false;
    const HANDLE file = path.MakeFile(L".dmp");
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool written = minidump->Write(file, pointers);
    CloseHandle(file);
    if (!written)
        DeleteFileW(path.Get());
    return written;
}

bool CrashDump::WriteText()
{
    const Turn turn(busy);
    if (!turn.IsMine())
        return false;
    KDumpFile file(path.MakeFile(L".log"));
    return file.IsOpen() && KLogger::GetModuleLogger()->WriteTo(file);
}
