#include "tests/module/LoadedModule.h"

#include <windows.h>

LoadedModule::LoadedModule(const wchar_t* file) : file(file), module(LoadLibraryW(file)) {}

LoadedModule::~LoadedModule()
{
    Free();
}

// The boundary is C++, so an export's name holds the function's own name and more.
template <class Function>
Function* LoadedModule::Find(const char* function) const
{
    for (const std::string& name : ListExports())
        if (name.find(function) != std::string::npos) {
            const FARPROC found = GetProcAddress(static_cast<HMODULE>(module), name.c_str());
            return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
        }
    return nullptr;
}

void LoadedModule::AttachMFlowLogger(MFlowLogger* logger)
{
    Find<void(MFlowLogger*)>("AttachMFlowLogger")(logger);
}

void LoadedModule::RegisterFatalErrorHandlers(std::auto_ptr<TextCallback> onText,
                                              std::auto_ptr<FaultCallback> onFault)
{
    Find<void(std::auto_ptr<TextCallback>, std::auto_ptr<FaultCallback>)>(
        "RegisterFatalErrorHandlers")(onText, onFault);
}

void LoadedModule::Shutdown()
{
    Find<void()>("Shutdown")();
}

void LoadedModule::Do(Place place, Deed deed)
{
    Find<DoOnThread>("TestModuleDo")(place, deed);
}

bool LoadedModule::Free()
{
    if (module)
        FreeLibrary(static_cast<HMODULE>(module));
    module = nullptr;
    return !GetModuleHandleW(file);
}

template <class Data>
const Data* LoadedModule::At(unsigned long offset) const
{
    return reinterpret_cast<const Data*>(static_cast<const char*>(module) + offset);
}

unsigned long LoadedModule::DirectoryOffset(int directory) const
{
    const long headers = At<IMAGE_DOS_HEADER>(0)->e_lfanew;
    return At<IMAGE_NT_HEADERS>(static_cast<unsigned long>(headers))
        ->OptionalHeader.DataDirectory[directory]
        .VirtualAddress;
}

std::vector<std::string> LoadedModule::ListExports() const
{
    const IMAGE_EXPORT_DIRECTORY& exports =
        *At<IMAGE_EXPORT_DIRECTORY>(DirectoryOffset(IMAGE_DIRECTORY_ENTRY_EXPORT));
    const DWORD* const names = At<DWORD>(exports.AddressOfNames);
    std::vector<std::string> list(exports.NumberOfFunctions);
    for (DWORD i = 0; i < exports.NumberOfNames; ++i)
        list[i] = At<char>(names[i]);
    return list;
}

std::vector<std::string> LoadedModule::ListImportedLibraries() const
{
    std::vector<std::string> list;
    for (const IMAGE_IMPORT_DESCRIPTOR* library =
             At<IMAGE_IMPORT_DESCRIPTOR>(DirectoryOffset(IMAGE_DIRECTORY_ENTRY_IMPORT));
         library->Name != 0; ++library)
        list.push_back(At<char>(library->Name));
    return list;
}
