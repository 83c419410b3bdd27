#include "fuzz/XmlHarness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <windows.h>

namespace
{

std::vector<std::string> CorpusFiles()
{
    const std::string folder = VAREK_XML_CORPUS "/";
    std::vector<std::string> files;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "*").c_str(), &found);
    do
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            files.push_back(folder + found.cFileName);
    while (FindNextFileA(search, &found));
    FindClose(search);
    return files;
}

} // namespace

// The inputs of the fuzzer, played here. Every prefix is a document and operations too.
TEST(XmlFuzzReplay, EveryPrefixKeepsTheRules)
{
    const std::vector<std::string> files = CorpusFiles();
    EXPECT_LT(10u, files.size());
    for (const std::string& name : files) {
        std::ifstream file(name, std::ios::binary);
        const std::vector<std::uint8_t> input{std::istreambuf_iterator<char>(file),
                                              std::istreambuf_iterator<char>()};
        ASSERT_FALSE(input.empty()) << name;
        for (std::size_t size = 0; size <= input.size(); ++size)
            EXPECT_EQ(PlayXmlInput(input.data(), size), "") << name << ", first " << size;
    }
}
