#include "fuzz/XmlHarness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

// The inputs of the fuzzer, played here.

namespace
{

std::vector<std::uint8_t> ReadInput(const std::string& name)
{
    std::ifstream file(VAREK_XML_CORPUS "/" + name, std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(file),
                                     std::istreambuf_iterator<char>());
}

class XmlFuzzReplay : public testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(XmlFuzzReplay, KeepsTheRules)
{
    const std::vector<std::uint8_t> input = ReadInput(GetParam());
    ASSERT_FALSE(input.empty());
    // Every prefix is a document and operations too.
    for (std::size_t size = 0; size <= input.size(); ++size)
        ASSERT_EQ(PlayXmlInput(input.data(), size), "") << "of the first " << size << " bytes";
}

INSTANTIATE_TEST_SUITE_P(Corpus, XmlFuzzReplay,
                         testing::Values("attributes", "dissolved", "doctype", "far-attribute",
                                         "far-instruction", "filed-values", "findings",
                                         "never-closed", "no-content", "no-start-tag", "references",
                                         "replaced", "spots", "unclosed-tags", "written"));
