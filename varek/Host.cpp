#include "varek/Host.h"

#include "diagnostics/CrashDump.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLogger.h"
#include "module/Runtime.h"
#include "varek/Errors.h"
#include "varek/ExportedNames.h"

#include <algorithm>
#include <cwchar>
#include <fstream>

#include <windows.h>

namespace varek
{

namespace
{

typedef Varek::Runtime::CallbackFunctor1Param<const std::wstring&> TextCallback;
typedef Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*> FaultCallback;

// A host and its module are of one toolchain.
#ifdef _MSC_VER
const ExportedNames& names = nativeNames;
#else
const ExportedNames& names = mingwNames;
#endif

TracedLocation& Location()
{
    static TracedLocation location(L"varek", L"Host");
    return location;
}

/// Tells whoever may be looking. Takes no memory for texts of a line.
void Tell(const wchar_t* text)
{
    char bytes[2048];
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof bytes, nullptr, nullptr);
    DWORD written = 0;
    if (size > 1)
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), bytes, static_cast<DWORD>(size - 1), &written,
                  nullptr);
    OutputDebugStringW(text);
}

/// A chain can be longer than a line.
void TellAll(const std::wstring& text)
{
    const std::size_t piece = 500;
    for (std::size_t start = 0; start < text.size(); start += piece)
        Tell(text.substr(start, piece).c_str());
}

class FailureTeller : public TextCallback
{
public:
    FailureTeller(const std::wstring& module, const HostOptions& options)
        : module(module), onFailure(options.onFailure)
    {
    }

    void operator()(const std::wstring& chain) override
    {
        if (onFailure)
            onFailure(chain);
        else
            TellAll(L"a thread of " + module + L" has ended: " + chain + L"\n");
    }

private:
    const std::wstring module;
    const std::function<void(const std::wstring&)> onFailure;
};

class CrashWriter : public FaultCallback
{
public:
    CrashWriter(const std::wstring& prefix, const HostOptions& options)
        : crashDump(prefix.c_str()), onCrash(options.onCrash)
    {
    }

    void operator()(_EXCEPTION_POINTERS* pointers) override
    {
        const bool written = crashDump.WriteMinidump(pointers);
        wchar_t line[1200] = L"a thread of the module has crashed; no dump could be written\n";
        if (written)
            _snwprintf(line, 1200, L"a thread of the module has crashed; minidump in %ls\n",
                       crashDump.GetPath());
        crashDump.WriteText();
        if (onCrash)
            onCrash(pointers);
        else
            Tell(line);
    }

private:
    CrashDump crashDump;
    const std::function<void(_EXCEPTION_POINTERS*)> onCrash;
};

std::wstring WithoutFolderAndEnding(const std::wstring& path)
{
    const std::wstring name = path.substr(path.find_last_of(L"\\/:") + 1); // npos + 1 is 0
    return name.substr(0, name.rfind(L'.'));
}

/// The value of a string in the version resource, whose type is 16; empty when there is none.
std::wstring VersionString(HMODULE module, const std::wstring& key)
{
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16));
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    if (!loaded)
        return std::wstring();
    const auto* const start = static_cast<const wchar_t*>(LockResource(loaded));
    const wchar_t* const end = start + SizeofResource(module, found) / sizeof(wchar_t);
    const wchar_t* const value = std::search(start, end, key.c_str(), key.c_str() + key.size() + 1);
    const wchar_t* const text = std::find_if(std::min(value + key.size(), end), end,
                                             [](wchar_t unit) { return unit != L'\0'; });
    return std::wstring(text, std::find(text, end, L'\0'));
}

/// What is the same in all that fit together, as "0.1 by gcc" of version "0.1.4".
std::wstring SdkFamily(const std::wstring& version, const std::wstring& toolchain)
{
    return version.substr(0, version.find(L'.', version.find(L'.') + 1)) + L" by " + toolchain;
}

} // namespace

/// What the module offers.
struct Host::Functions {
    decltype(&Varek::Runtime::AttachMFlowLogger) attach;
    decltype(&Varek::Runtime::RegisterFatalErrorHandlers) registerHandlers;
    decltype(&Varek::Runtime::Shutdown) shutdown;
};

void Host::Library::operator()(void* module) const
{
    FreeLibrary(static_cast<HMODULE>(module));
}

Host::Host(const std::wstring& module, const HostOptions& options)
    : library(LoadLibraryW(module.c_str()))
{
    if (!library)
        Raise(Location(), L"CannotLoad").With(L"module", module).WithLastError().Throw();
    Check(module);
    Start(module, options);
}

// Whether it fits comes before any call into it.
void Host::Check(const std::wstring& module) const
{
    for (const char* name :
         {names.attachMFlowLogger, names.registerFatalErrorHandlers, names.shutdown})
        if (!GetProcAddress(static_cast<HMODULE>(library.get()), name))
            Raise(Location(), L"NotAModule")
                .With(L"module", module)
                .With(L"function", name)
                .Throw();
    const std::wstring version =
        VersionString(static_cast<HMODULE>(library.get()), L"VarekVersion");
    const std::wstring toolchain =
        VersionString(static_cast<HMODULE>(library.get()), L"VarekToolchain");
    if (SdkFamily(version, toolchain) != SdkFamily(VAREK_VERSION, VAREK_TOOLCHAIN))
        Raise(Location(), L"DoesNotFit")
            .With(L"module", module)
            .With(L"moduleSdk", version + L" by " + toolchain)
            .With(L"hostSdk", VAREK_VERSION L" by " VAREK_TOOLCHAIN)
            .Throw();
}

void Host::Start(const std::wstring& module, const HostOptions& options)
{
    functions.reset(new Functions());
    functions->attach = Find<decltype(Varek::Runtime::AttachMFlowLogger)>(names.attachMFlowLogger);
    functions->registerHandlers = Find<decltype(Varek::Runtime::RegisterFatalErrorHandlers)>(
        names.registerFatalErrorHandlers);
    functions->shutdown = Find<decltype(Varek::Runtime::Shutdown)>(names.shutdown);
    const std::wstring prefix =
        options.dumpPrefix.empty() ? WithoutFolderAndEnding(module) : options.dumpPrefix;
    std::auto_ptr<TextCallback> onFailure(new FailureTeller(module, options));
    std::auto_ptr<FaultCallback> onCrash(new CrashWriter(prefix, options));
    GetDiagnosticsRegistry()->RegisterThreadName(L"Host");
    functions->attach(MFlowLogger::GetInstance());
    functions->registerHandlers(onFailure, onCrash);
}

Host::~Host()
{
    try {
        Shutdown();
    } catch (std::exception& exception) {
        library.release();
        TellAll(FromUtf8("the module could not be shut down: " + What(exception) + "\n"));
    }
}

void* Host::FindAddress(const char* name) const
{
    const auto address = GetProcAddress(static_cast<HMODULE>(library.get()), name);
    if (!address)
        Raise(Location(), L"NoSuchFunction").With(L"function", name).Throw();
    return reinterpret_cast<void*>(address);
}

void Host::Shutdown()
{
    functions->shutdown();
}

void Host::WriteLog(const std::string& path) const
{
    std::ofstream file(path);
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(file);
    if (!file.flush())
        Raise(Location(), L"CannotWrite").With(L"path", path).Throw();
}

} // namespace varek
