#pragma once

#include "module/CallbackFunctor1Param.h"

#include <string>

struct _EXCEPTION_POINTERS;

/// The host's callback for faults: writes a minidump of the process while the stack of the fault
/// still stands.
class MiniDumpWriter : public Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>
{
public:
    explicit MiniDumpWriter(const std::wstring& path);

    void operator()(_EXCEPTION_POINTERS* pointers) override;

private:
    std::wstring path;
};
