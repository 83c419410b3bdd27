#pragma once

#include "tests/module/TestModule.h"

#include <windows.h>

/// The test module as a host sees it: loaded, and called through its functions. It is freed, but
/// not shut down, at the end.
class LoadedModule
{
public:
    typedef std::function<void(const std::wstring&)> OnText;
    typedef std::function<void(_EXCEPTION_POINTERS*)> OnFault;

    LoadedModule() : module(LoadLibraryW(L"test-module.dll"))
    {
        const auto function = reinterpret_cast<void*>(GetProcAddress(module, "GetTestModule"));
        functions = reinterpret_cast<decltype(&GetTestModule)>(function)();
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule() { Free(); }

    const TestModule* operator->() const { return functions; }

    /// Registers callbacks that call what is given.
    void Register(const OnText& onText, const OnFault& onFault)
    {
        functions->RegisterFatalErrorHandlers(NewCallback<const std::wstring&>(onText),
                                              NewCallback<_EXCEPTION_POINTERS*>(onFault));
    }

    /// True when the module has left the process.
    bool Free()
    {
        if (module)
            FreeLibrary(module);
        module = nullptr;
        return !GetModuleHandleW(L"test-module.dll");
    }

private:
    template <class Parameter, class Body>
    static std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<Parameter>>
    NewCallback(const Body& body)
    {
        struct Callback : Varek::Runtime::CallbackFunctor1Param<Parameter> {
            explicit Callback(const Body& body) : body(body) {}
            void operator()(Parameter parameter) override { body(parameter); }
            Body body;
        };
        return std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<Parameter>>(
            body ? new Callback(body) : nullptr);
    }

    HMODULE module;
    const TestModule* functions;
};
