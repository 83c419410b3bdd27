#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include <windows.h>

#include <dbghelp.h>

TEST(BareModule, ExportsAndImportsWhatIsListedAndNothingElse)
{
    std::set<std::string> listed, found;
    std::ifstream list(VAREK_SYMBOLS);
    for (std::string line; std::getline(list, line);)
        if (line[0] != '#')
            listed.insert(line);

    const HMODULE module = LoadLibraryW(L"varek.dll");
    const char* const base = reinterpret_cast<const char*>(module);
    ULONG size = 0;
    const auto& exports = *static_cast<const IMAGE_EXPORT_DIRECTORY*>(
        ImageDirectoryEntryToData(module, TRUE, IMAGE_DIRECTORY_ENTRY_EXPORT, &size));
    const auto* library = static_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
        ImageDirectoryEntryToData(module, TRUE, IMAGE_DIRECTORY_ENTRY_IMPORT, &size));
    EXPECT_EQ(exports.NumberOfNames, exports.NumberOfFunctions);
    const DWORD* const names = reinterpret_cast<const DWORD*>(base + exports.AddressOfNames);
    for (DWORD i = 0; i < exports.NumberOfNames; ++i)
        found.insert(std::string("export ") + (base + names[i]));
    for (; library->Name != 0; ++library)
        found.insert(std::string("import ") + (base + library->Name));
    EXPECT_EQ(listed, found);
    FreeLibrary(module);
}
