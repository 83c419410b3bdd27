#pragma once

#include "tests/module/TestModule.h"

#include <windows.h>

/// The test module as a host sees it: loaded, and called through its functions. It is freed, but
/// not shut down, at the end.
struct LoadedModule : TestModule {
    LoadedModule() : module(LoadLibraryW(L"test-module.dll"))
    {
        const auto function = reinterpret_cast<void*>(GetProcAddress(module, "GetTestModule"));
        static_cast<TestModule&>(*this) = reinterpret_cast<decltype(&GetTestModule)>(function)();
    }
    ~LoadedModule() { Free(); }

    /// A callback that calls `body`, null for an empty one.
    template <class Parameter>
    static std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<Parameter>>
    NewCallback(const std::function<void(Parameter)>& body)
    {
        struct Callback : Varek::Runtime::CallbackFunctor1Param<Parameter> {
            explicit Callback(const std::function<void(Parameter)>& body) : body(body) {}
            void operator()(Parameter parameter) override { body(parameter); }
            std::function<void(Parameter)> body;
        };
        return std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<Parameter>>(
            body ? new Callback(body) : nullptr);
    }

    /// Registers callbacks that call what is given.
    void Register(const std::function<void(const std::wstring&)>& onText,
                  const std::function<void(_EXCEPTION_POINTERS*)>& onFault)
    {
        RegisterFatalErrorHandlers(NewCallback(onText), NewCallback(onFault));
    }

    /// True when the module has left the process.
    bool Free()
    {
        FreeLibrary(module);
        module = nullptr;
        return !GetModuleHandleW(L"test-module.dll");
    }

    HMODULE module;
};
