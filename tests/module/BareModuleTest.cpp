#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include <windows.h>

#include <dbghelp.h>

namespace
{

template <class Directory>
const Directory* Find(HMODULE module, USHORT directory)
{
    ULONG size = 0;
    return static_cast<const Directory*>(ImageDirectoryEntryToData(module, TRUE, directory, &size));
}

} // namespace

TEST(BareModule, ExportsAndImportsWhatIsListedAndNothingElse)
{
    std::set<std::string> listed, found;
    std::ifstream list(VAREK_SYMBOLS);
    for (std::string line; std::getline(list, line);)
        if (line[0] != '#')
            listed.insert(line);

    const HMODULE module = LoadLibraryW(L"varek.dll");
    const char* const base = reinterpret_cast<const char*>(module);
    const auto& exports = *Find<IMAGE_EXPORT_DIRECTORY>(module, IMAGE_DIRECTORY_ENTRY_EXPORT);
    EXPECT_EQ(exports.NumberOfNames, exports.NumberOfFunctions);
    const DWORD* const names = reinterpret_cast<const DWORD*>(base + exports.AddressOfNames);
    for (DWORD i = 0; i < exports.NumberOfNames; ++i)
        found.insert(std::string("export ") + (base + names[i]));
    for (const auto* library = Find<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
         library->Name != 0; ++library)
        found.insert(std::string("import ") + (base + library->Name));
    EXPECT_EQ(listed, found);
    FreeLibrary(module);
}
