#include "module/ModuleCommandProcessor.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "engine/EngineErrors.h"
#include "engine/MMutexLock.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MOutFilerTaggedXml.h"

#include <utility>

const wchar_t ModuleCommandProcessor::className[] = L"ModuleCommandProcessor";

// Named in the log before there is a thread that can fail: the way from a failure to the host needs
// no memory for it.
struct ModuleCommandProcessor::Locations {
    static Locations& Get()
    {
        static Locations locations;
        return locations;
    }

    MFlowLocation construction{className, className};
    MFlowLocation destruction{className, L"~ModuleCommandProcessor"};
    MFlowLocation start{className, L"Start"};
    MFlowLocation stop{className, L"Stop"};
    MFlowLocation onShutdown{className, L"OnShutdown"};
    MFlowLocation runShutdownFunctors{className, L"RunShutdownFunctors"};
    MFlowLocation onSpontaneousError{className, L"OnSpontaneousError"};
    MFlowLocation onUnhandledException{className, L"OnUnhandledException"};
    MFlowLocation registerFatalErrorHandlers{className, L"RegisterFatalErrorHandlers"};
};

namespace
{

const std::uint32_t idleTimeoutMs = 10000;

std::uint32_t LowBits(const void* pointer)
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

std::wstring FileChain(const MException& exception)
{
    MOutFilerTaggedXml document(L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(nullptr, &document);
    MString text;
    if (exception.Write(filer, L"Exception"))
        document.GetDocumentText(&text);
    return text.c_str();
}

/// The chain as a document, empty when it cannot be filed, for want of memory or otherwise.
std::wstring FatalErrorText(const MException& exception)
{
    try {
        return FileChain(exception);
    } catch (...) {
        return std::wstring();
    }
}

// For statics that go after the singleton.
std::atomic<bool> isGone;

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
    GetSingleton().Start();
    return GetSingleton();
}

ModuleCommandProcessor& ModuleCommandProcessor::GetSingleton()
{
    static ModuleCommandProcessor instance;
    return instance;
}

ModuleCommandProcessor::ModuleCommandProcessor()
    : lifecycleDone(false), shutdownNumber(0), shutdownFunctorsRun(false)
{
    MFlowLocation& location = Locations::Get().construction;
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
    GetDiagnosticsRegistry()->RegisterObjectName(this, L"singleton of the module");
}

// In a process that ends without a shutdown the threads are gone already, and stopping them fails;
// so may be what the functors would stop.
ModuleCommandProcessor::~ModuleCommandProcessor()
{
    MFlowLocation& location = Locations::Get().destruction;
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    isGone = true;
    shutdownFunctors.clear();
    DismissFailureOf([this] { ModuleCommandProcessor::Stop(); }, location.SetLine(__LINE__));
}

void ModuleCommandProcessor::Start()
{
    if (this == nullptr || lifecycleDone)
        return;
    MFlowLocation& location = Locations::Get().start;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    MMutexLock lock(lifecycleMutex);
    if (lifecycleDone)
        return;
    moduleReference.Hold();
    try {
        StartScheduler();
        StartProcessor();
    } catch (...) {
        Dismantle();
        throw;
    }
    lifecycleDone = true;
}

void ModuleCommandProcessor::StartScheduler()
{
    desyncScheduler.reset(new MDesyncEventScheduler(this));
    GetDiagnosticsRegistry()->RegisterObjectName(desyncScheduler.get(),
                                                 L"scheduler of outgoing callbacks");
    desyncScheduler->Enable();
}

// Named before it is started: a processor that runs is the end of the start.
void ModuleCommandProcessor::StartProcessor()
{
    MCallbackFunctorPtr idle = MakeFunctor(this, &ModuleCommandProcessor::OnCommandProcessorIdle);
    commandProcessor.reset(
        new MCommandProcessor(this, nullptr, nullptr, idle.release(), idleTimeoutMs));
    GetDiagnosticsRegistry()->RegisterObjectName(commandProcessor.get(),
                                                 L"processor of the module's commands");
    commandProcessor->Start();
}

/// Back to where `Start` began.
void ModuleCommandProcessor::Dismantle()
{
    commandProcessor.reset();
    desyncScheduler.reset();
    moduleReference.Drop();
}

void ModuleCommandProcessor::Stop()
{
    if (this == nullptr)
        return;
    MFlowLocation& location = Locations::Get().stop;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    RaiseIfOwnThread();
    MMutexLock lock(lifecycleMutex);
    if (lifecycleDone)
        StopThreads();
    lifecycleDone = true;
}

// Ahead of the lock, which another thread may hold while it waits for this one. What is raised is
// what that thread's own stop raises.
void ModuleCommandProcessor::RaiseIfOwnThread()
{
    if (!lifecycleDone)
        return;
    if (commandProcessor->IsCurrentThread())
        commandProcessor->Stop();
    if (desyncScheduler->IsCurrentThread())
        desyncScheduler->Disable();
}

void ModuleCommandProcessor::StopThreads()
{
    RunShutdownFunctors();
    try {
        commandProcessor->Stop();
        desyncScheduler->Disable();
    } catch (...) {
        DropReferenceOnceEnded();
        throw;
    }
    DropReferenceOnceEnded();
}

void ModuleCommandProcessor::DropReferenceOnceEnded()
{
    if (commandProcessor->HasEnded() && desyncScheduler->HasEnded())
        moduleReference.Drop();
}

std::uint64_t ModuleCommandProcessor::OnShutdown(MCallbackFunctorPtr functor)
{
    return GetSingleton().AddShutdownFunctor(std::move(functor));
}

bool ModuleCommandProcessor::ForgetOnShutdown(std::uint64_t number)
{
    return !isGone && GetSingleton().RemoveShutdownFunctor(number);
}

std::uint64_t ModuleCommandProcessor::AddShutdownFunctor(MCallbackFunctorPtr functor)
{
    MFlowLocation& location = Locations::Get().onShutdown;
    MMutexLock lock(shutdownMutex);
    if (shutdownFunctorsRun)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ModuleStopped");
    if (functor)
        shutdownFunctors.emplace_back(shutdownNumber + 1, std::move(functor));
    return ++shutdownNumber;
}

bool ModuleCommandProcessor::RemoveShutdownFunctor(std::uint64_t number)
{
    MMutexLock lock(shutdownMutex);
    for (auto i = shutdownFunctors.begin(); i != shutdownFunctors.end(); ++i)
        if (i->first == number) {
            shutdownFunctors.erase(i);
            return true;
        }
    return false;
}

void ModuleCommandProcessor::RunShutdownFunctors()
{
    MFlowLocation& location = Locations::Get().runShutdownFunctors;
    while (const MCallbackFunctorPtr functor = TakeShutdownFunctor())
        DismissFailureOf([&] { functor->Invoke(); }, location.SetObject(this).SetLine(__LINE__));
}

/// The latest that is left; null, and the end of registration, when there is none.
MCallbackFunctorPtr ModuleCommandProcessor::TakeShutdownFunctor()
{
    MMutexLock lock(shutdownMutex);
    shutdownFunctorsRun = shutdownFunctors.empty();
    if (shutdownFunctorsRun)
        return nullptr;
    MCallbackFunctorPtr latest = std::move(shutdownFunctors.back().second);
    shutdownFunctors.pop_back();
    return latest;
}

void ModuleCommandProcessor::OnCommandProcessorIdle() {}

void ModuleCommandProcessor::OnSpontaneousError(const MException& exception)
{
    if (this == nullptr)
        return;
    MFlowLocation& location = Locations::Get().onSpontaneousError;
    MFlowScope scope(location.SetObject(this), LowBits(spontaneousErrorCallback.get()));
    const auto tell = [&] { (*spontaneousErrorCallback)(FatalErrorText(exception)); };
    if (spontaneousErrorCallback)
        DismissFailureOf(tell, location.SetLine(__LINE__));
}

void ModuleCommandProcessor::OnUnhandledException(_EXCEPTION_POINTERS* pointers)
{
    if (this == nullptr)
        return;
    MFlowLocation& location = Locations::Get().onUnhandledException;
    MFlowScope scope(location.SetObject(this), LowBits(crashCallback.get()));
    if (crashCallback)
        (*crashCallback)(pointers);
}

void ModuleCommandProcessor::RegisterCallbacks(SpontaneousErrorCallback onSpontaneousError,
                                               CrashCallback onCrash)
{
    MFlowLocation& location = Locations::Get().registerFatalErrorHandlers;
    MFlowScope scope(location.SetObject(this), LowBits(onSpontaneousError.get()),
                     LowBits(onCrash.get()));
    Replace(spontaneousErrorCallback, std::move(onSpontaneousError));
    Replace(crashCallback, std::move(onCrash));
}
