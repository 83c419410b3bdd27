#pragma once

#include "diagnostics/MDiagnosticsRegistryImplementation.h"
#include "diagnostics/MFlowLoggerImplementation.h"

#include <atomic>

class KLogger;

/// The flow logger and diagnostics registry of a module in one object: both faces write to a log
/// core, and, once another adapter is attached, to that one's core too.
///
/// One instance a module is made at load and never freed; code reaches it through `MFlowLogger` and
/// `GetDiagnosticsRegistry`. Every operation may be called from any thread; attach and detach while
/// nobody else does.
class MKLoggerAdapter : public MFlowLoggerImplementation, public MDiagnosticsRegistryImplementation
{
public:
    /// The module's instance as a flow logger, made at the first call.
    static MFlowLoggerImplementation* GetFlowLoggerImplementation();

    /// The same instance as a registry of names.
    static MDiagnosticsRegistryImplementation* GetRegistryImplementation();

    /// Writes to `core`, which is not owned and must outlive the adapter.
    explicit MKLoggerAdapter(KLogger* core);
    ~MKLoggerAdapter() override;

    void LogEvent(std::uint32_t eventIndex, std::uint32_t param1, std::uint32_t param2,
                  std::uint32_t classId, std::uint32_t pointId, const void* object) override;
    void DumpToStream(std::ostream& out) override;
    bool DumpToFile() override;

    /// Feeds this log into that of `other`, names included: from now on every event goes to both,
    /// with a time stamp and a slot of its own in each. Replaces an earlier attachment. Null, or a
    /// logger that is not an `MKLoggerAdapter`, detaches. Names given away stay given.
    void AttachLogger(MFlowLoggerImplementation* other) override;

    void RegisterClassName(std::uint32_t classId, const wchar_t* name) override;
    void RegisterFunctionName(std::uint32_t classId, std::uint32_t functionId,
                              const wchar_t* name) override;
    void RegisterObjectName(const void* object, const wchar_t* name) override;
    void RegisterThreadName(const wchar_t* name) override;
    void RegisterStateName(std::uint32_t classId, std::uint32_t state,
                           const wchar_t* name) override;
    void RegisterErrorName(std::uint32_t errorId, const wchar_t* name) override;
    void RegisterMessageName(std::uint32_t messageId, const wchar_t* name) override;

private:
    static MKLoggerAdapter* GetInstance();
    static void RecordModule(KLogger* core, std::int32_t kind, const KLogger* module);

    void Attach(KLogger* other);
    void Detach();
    template <class Naming>
    void Register(Naming naming);
    void RegisterIdName(std::uint32_t id, const wchar_t* name);

    KLogger* Attached() const { return attachedCore.load(std::memory_order_relaxed); }

    KLogger* core;
    std::atomic<KLogger*> attachedCore; // null until another logger is attached
};
