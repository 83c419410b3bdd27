#pragma once

#include <functional>
#include <memory>
#include <string>

struct _EXCEPTION_POINTERS;

namespace varek
{

/// What a host wants to hear of a module, and where its crash dumps go.
struct HostOptions {
    /// Takes the chain of an exception that ended one of the module's threads, as the document that
    /// `RegisterFatalErrorHandlers` tells; on that thread. When it is empty, the text goes to the
    /// standard error and to the debugger.
    std::function<void(const std::wstring& chain)> onFailure;

    /// Takes the raw context of a fault, on the faulting thread, when the dumps have been written.
    /// When it is empty, a line goes to the standard error and to the debugger. It takes no lock
    /// and no memory.
    std::function<void(_EXCEPTION_POINTERS* pointers)> onCrash;

    /// What the paths of crash dumps begin with; the folder must be there. When it is empty, the
    /// name of the module without its ending, in the folder where the process works.
    std::wstring dumpPrefix;
};

/// A module in the hands of its host: loaded, joined, and shut down in the end.
///
///     varek::Host host(L"pumps.dll");
///     const auto drain = host.Find<int(int)>("Drain"); // exported as extern "C"
///     drain(80);
///
/// The constructor loads the module, sees that it fits, joins its log to the host's own, so that
/// the host's dumps show both, and starts it; the thread is called "Host" in them. When one of its
/// threads faults, a minidump that holds the flight recorders and their text are written, as
/// `CrashDump` tells, for example pumps-20261121-231805-042-4711.dmp and .log, and the fault goes
/// on. The destructor shuts the module down and lets go of it; nothing of the module may be used
/// any more.
///
/// A module fits that was made with an SDK of the same major and minor version and with the same
/// toolchain as the host, since standard types pass between them.
///
/// The three functions are found in the module by the names in varek/ExportedNames.h.
///
/// Threads: make and destroy it on one thread, none of the module's own.
class Host
{
public:
    /// Loads `module`, found as `LoadLibrary` finds it, and starts it. Raises
    /// "varek.Host:CannotLoad" with "module" and "winErrorCode", "NotAModule" with "module" and
    /// "function" when a function is missing, "DoesNotFit" with "module", "moduleSdk" and
    /// "hostSdk", and the `MException` of a failed start; nothing is loaded then.
    explicit Host(const std::wstring& module, const HostOptions& options = HostOptions());
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Shuts down, and lets go of the module. What fails goes to the standard error and to the
    /// debugger, and the module then stays loaded.
    ~Host();

    /// The module's own function of that exported name. Raises "varek.Host:NoSuchFunction" with
    /// "function".
    template <class Function>
    Function* Find(const char* name) const
    {
        return reinterpret_cast<Function*>(FindAddress(name));
    }

    /// Stops the module for good, ahead of the destructor. Raises the `MException` of a failed
    /// stop.
    void Shutdown();

    /// Writes the text dump of the host's flight recorder, in which the module's records stand too.
    /// Raises "varek.Host:CannotWrite" with "path".
    void WriteLog(const std::string& path) const;

private:
    struct Functions;
    struct Library {
        void operator()(void* module) const;
    };

    void* FindAddress(const char* name) const;
    void Check(const std::wstring& name) const;
    void Start(const std::wstring& name, const HostOptions& options);

    std::unique_ptr<void, Library> library;
    std::unique_ptr<Functions> functions;
};

} // namespace varek
