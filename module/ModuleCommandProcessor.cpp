#include "module/ModuleCommandProcessor.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/EngineErrors.h"
#include "engine/MMutexLock.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MException.h"

#include <utility>

const wchar_t ModuleCommandProcessor::className[] = L"ModuleCommandProcessor";

namespace
{

const std::uint32_t idleTimeoutMs = 10000;

std::uint32_t LowBits(const void* pointer)
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

/// The chain as a document, empty when it cannot be filed.
std::wstring FatalErrorText(const MException& exception)
{
    MOutFilerTaggedXml document(L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(nullptr, &document);
    MString text;
    if (exception.Write(filer, L"Exception"))
        document.GetDocumentText(&text);
    return text.c_str();
}

/// Registering what is registered already changes nothing.
template <class Callback>
void Replace(Callback& stored, Callback fresh)
{
    if (stored.get() == fresh.get())
        fresh.release();
    else
        stored = std::move(fresh);
}

} // namespace

ModuleCommandProcessor& ModuleCommandProcessor::GetInstance()
{
    static ModuleCommandProcessor instance;
    instance.Start();
    return instance;
}

ModuleCommandProcessor::ModuleCommandProcessor() : lifecycleDone(false), shutdownFunctorsRun(false)
{
    static MFlowLocation location(className, className);
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
    GetDiagnosticsRegistry()->RegisterObjectName(this, L"singleton of the module");
}

// In a process that ends without a shutdown the threads are gone already, and stopping them fails;
// so may be what the functors would stop.
ModuleCommandProcessor::~ModuleCommandProcessor()
{
    static MFlowLocation location(className, L"~ModuleCommandProcessor");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    shutdownFunctors.clear();
    try {
        ModuleCommandProcessor::Stop();
    } catch (MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
}

void ModuleCommandProcessor::Start()
{
    static MFlowLocation location(className, L"Start");
    if (this == nullptr || lifecycleDone)
        return;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    MMutexLock lock(lifecycleMutex);
    if (lifecycleDone)
        return;
    moduleReference.Hold();
    StartScheduler();
    StartProcessor();
    lifecycleDone = true;
}

void ModuleCommandProcessor::StartScheduler()
{
    desyncScheduler.reset(new MDesyncEventScheduler(this));
    GetDiagnosticsRegistry()->RegisterObjectName(desyncScheduler.get(),
                                                 L"scheduler of outgoing callbacks");
    desyncScheduler->Enable();
}

void ModuleCommandProcessor::StartProcessor()
{
    MCallbackFunctorPtr idle = MakeFunctor(this, &ModuleCommandProcessor::OnCommandProcessorIdle);
    commandProcessor.reset(
        new MCommandProcessor(this, nullptr, nullptr, idle.release(), idleTimeoutMs));
    commandProcessor->Start();
    GetDiagnosticsRegistry()->RegisterObjectName(commandProcessor.get(),
                                                 L"processor of the module's commands");
}

void ModuleCommandProcessor::Stop()
{
    static MFlowLocation location(className, L"Stop");
    if (this == nullptr)
        return;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    MMutexLock lock(lifecycleMutex);
    if (lifecycleDone) {
        RunShutdownFunctors();
        commandProcessor->Stop();
        desyncScheduler->Disable();
        moduleReference.Drop();
    }
    lifecycleDone = true;
}

void ModuleCommandProcessor::OnShutdown(MCallbackFunctorPtr functor)
{
    static MFlowLocation location(className, L"OnShutdown");
    MMutexLock lock(shutdownMutex);
    if (shutdownFunctorsRun)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ModuleStopped");
    if (functor)
        shutdownFunctors.push_back(std::move(functor));
}

void ModuleCommandProcessor::RunShutdownFunctors()
{
    static MFlowLocation location(className, L"RunShutdownFunctors");
    while (const MCallbackFunctorPtr functor = TakeShutdownFunctor()) {
        try {
            functor->Invoke();
        } catch (MException& exception) {
            location.SetObject(this).SetLine(__LINE__).DismissError(exception);
        } catch (...) {
            location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
        }
    }
}

/// The latest that is left; null, and the end of registration, when there is none.
MCallbackFunctorPtr ModuleCommandProcessor::TakeShutdownFunctor()
{
    MMutexLock lock(shutdownMutex);
    shutdownFunctorsRun = shutdownFunctors.empty();
    if (shutdownFunctorsRun)
        return nullptr;
    MCallbackFunctorPtr latest = std::move(shutdownFunctors.back());
    shutdownFunctors.pop_back();
    return latest;
}

void ModuleCommandProcessor::OnCommandProcessorIdle() {}

void ModuleCommandProcessor::OnSpontaneousError(const MException& exception)
{
    static MFlowLocation location(className, L"OnSpontaneousError");
    if (this == nullptr)
        return;
    MFlowScope scope(location.SetObject(this), LowBits(spontaneousErrorCallback.get()));
    if (spontaneousErrorCallback)
        (*spontaneousErrorCallback)(FatalErrorText(exception));
}

void ModuleCommandProcessor::OnUnhandledException(_EXCEPTION_POINTERS* pointers)
{
    static MFlowLocation location(className, L"OnUnhandledException");
    if (this == nullptr)
        return;
    MFlowScope scope(location.SetObject(this), LowBits(crashCallback.get()));
    if (crashCallback)
        (*crashCallback)(pointers);
}

void ModuleCommandProcessor::RegisterCallbacks(SpontaneousErrorCallback onSpontaneousError,
                                               CrashCallback onCrash)
{
    static MFlowLocation location(className, L"RegisterFatalErrorHandlers");
    MFlowScope scope(location.SetObject(this), LowBits(onSpontaneousError.get()),
                     LowBits(onCrash.get()));
    Replace(spontaneousErrorCallback, std::move(onSpontaneousError));
    Replace(crashCallback, std::move(onCrash));
}
