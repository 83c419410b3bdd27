#pragma once

#include "module/CallbackFunctor1Param.h"
#include "tests/module/TestModule.h"

#include <memory>
#include <string>
#include <vector>

class MFlowLogger;
struct _EXCEPTION_POINTERS;

typedef Varek::Runtime::CallbackFunctor1Param<const std::wstring&> TextCallback;
typedef Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*> FaultCallback;

/// A module as a host sees it: loaded by its file name, its functions found by name. It is freed,
/// but not shut down, at the end.
class LoadedModule
{
public:
    explicit LoadedModule(const wchar_t* file);
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule();

    void AttachMFlowLogger(MFlowLogger* logger);
    void RegisterFatalErrorHandlers(std::auto_ptr<TextCallback> onText,
                                    std::auto_ptr<FaultCallback> onFault);
    void Shutdown();

    /// Only in the test module.
    void Do(Place place, Deed deed);

    /// True when the module has left the process.
    bool Free();

    std::vector<std::string> ListExports() const;
    std::vector<std::string> ListImportedLibraries() const;

private:
    template <class Function>
    Function* Find(const char* function) const;

    template <class Data>
    const Data* At(unsigned long offset) const;

    unsigned long DirectoryOffset(int directory) const;

    const wchar_t* file;
    void* module;
};
