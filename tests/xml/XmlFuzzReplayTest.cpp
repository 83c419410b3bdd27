#include "fuzz/XmlHarness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <windows.h>

// The inputs of the fuzzer, played here. Every prefix is a document and operations too.
TEST(XmlFuzzReplay, EveryPrefixKeepsTheRules)
{
    const std::string folder = VAREK_XML_CORPUS "/";
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "*").c_str(), &found);
    int played = 0;
    while (FindNextFileA(search, &found)) {
        std::ifstream file(folder + found.cFileName, std::ios::binary);
        const std::string input{std::istreambuf_iterator<char>(file), {}};
        const auto bytes = reinterpret_cast<const std::uint8_t*>(input.data());
        played += input.empty() ? 0 : 1;
        for (std::size_t size = 0; size <= input.size(); ++size)
            EXPECT_EQ(PlayXmlInput(bytes, size), "") << found.cFileName << ", first " << size;
    }
    FindClose(search);
    EXPECT_LT(10, played);
}
