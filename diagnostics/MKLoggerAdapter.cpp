#include "diagnostics/MKLoggerAdapter.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/KLogger.h"

#include <string>

namespace
{

const std::int32_t moduleAdded = -202;
const std::int32_t moduleRemoved = -201;

// The core event kinds, in the order of `FlowEvent`.
const std::int32_t kinds[] = {0, -105, -104, -103, -14, -13, -25, -7, -8, 0, -102, -101, -21, -20};
static_assert(sizeof kinds / sizeof *kinds == FlowEventEnd, "each flow event has its kind");

MKLoggerAdapter* instance = nullptr;

// No code page: a character is its low 8 bits.
std::string Narrow(const wchar_t* name)
{
    std::string narrow;
    for (; *name; ++name)
        narrow += static_cast<char>(*name);
    return narrow;
}

} // namespace

MKLoggerAdapter* MKLoggerAdapter::GetInstance()
{
    if (!instance)
        instance = new MKLoggerAdapter(KLogger::GetModuleLogger());
    return instance;
}

MFlowLoggerImplementation* MKLoggerAdapter::GetFlowLoggerImplementation()
{
    return GetInstance();
}

MDiagnosticsRegistryImplementation* MKLoggerAdapter::GetRegistryImplementation()
{
    return GetInstance();
}

MKLoggerAdapter::MKLoggerAdapter(KLogger* core) : core(core), attachedCore(nullptr) {}

MKLoggerAdapter::~MKLoggerAdapter()
{
    if (instance == this)
        instance = nullptr;
}

void MKLoggerAdapter::LogEvent(std::uint32_t eventIndex, std::uint32_t param1, std::uint32_t param2,
                               std::uint32_t classId, std::uint32_t pointId, const void* object)
{
    const std::int32_t kind = kinds[eventIndex];
    core->AddRecord(kind, param1, param2, classId, pointId, object);
    if (KLogger* const attached = Attached())
        attached->AddRecord(kind, param1, param2, classId, pointId, object);
}

void MKLoggerAdapter::DumpToStream(std::ostream& out)
{
    core->WriteDump(out);
}

bool MKLoggerAdapter::DumpToFile()
{
    return core->WriteDumpFile();
}

void MKLoggerAdapter::AttachLogger(MFlowLoggerImplementation* other)
{
    if (MKLoggerAdapter* const adapter = dynamic_cast<MKLoggerAdapter*>(other))
        Attach(adapter->core);
    else if (Attached())
        Detach();
}

void MKLoggerAdapter::Attach(KLogger* other)
{
    RecordModule(core, moduleAdded, other);
    attachedCore.store(other, std::memory_order_relaxed);
    RecordModule(other, moduleAdded, core);
    core->CopyNamesTo(*other);
}

void MKLoggerAdapter::Detach()
{
    KLogger* const other = Attached();
    RecordModule(core, moduleRemoved, other);
    attachedCore.store(nullptr, std::memory_order_relaxed);
    RecordModule(other, moduleRemoved, core);
}

void MKLoggerAdapter::RecordModule(KLogger* core, std::int32_t kind, const KLogger* module)
{
    core->AddRecord(kind, 0, 0, 0, 0, module);
}

/// Gives a name to this log, and to the one that it feeds.
template <class Naming>
void MKLoggerAdapter::Register(Naming naming)
{
    naming(core);
    if (KLogger* const attached = Attached())
        naming(attached);
}

void MKLoggerAdapter::RegisterIdName(std::uint32_t id, const wchar_t* name)
{
    const std::string narrow = Narrow(name);
    Register([&](KLogger* log) { log->SetIdName(id, narrow); });
}

void MKLoggerAdapter::RegisterClassName(std::uint32_t classId, const wchar_t* name)
{
    RegisterIdName(classId, name);
}

void MKLoggerAdapter::RegisterFunctionName(std::uint32_t, std::uint32_t functionId,
                                           const wchar_t* name)
{
    RegisterIdName(functionId, name);
}

void MKLoggerAdapter::RegisterErrorName(std::uint32_t errorId, const wchar_t* name)
{
    RegisterIdName(errorId, name);
}

void MKLoggerAdapter::RegisterObjectName(const void* object, const wchar_t* name)
{
    const std::string narrow = Narrow(name);
    Register([&](KLogger* log) { log->SetObjectName(object, narrow); });
}

void MKLoggerAdapter::RegisterThreadName(const wchar_t* name)
{
    const std::string narrow = Narrow(name);
    Register([&](KLogger* log) { log->SetThreadName(narrow); });
}

void MKLoggerAdapter::RegisterStateName(std::uint32_t classId, std::uint32_t state,
                                        const wchar_t* name)
{
    const std::string narrow = Narrow(name);
    Register([&](KLogger* log) { log->SetClassStateName(classId, state, narrow); });
}

void MKLoggerAdapter::RegisterMessageName(std::uint32_t messageId, const wchar_t* name)
{
    const std::string narrow = Narrow(name);
    Register([&](KLogger* log) { log->SetMessageName(messageId, narrow); });
}
