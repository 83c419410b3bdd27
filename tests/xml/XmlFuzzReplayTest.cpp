#include "fuzz/XmlHarness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

// The inputs of the fuzzer, played here. Every prefix is a document and operations too.
TEST(XmlFuzzReplay, EveryPrefixKeepsTheRules)
{
    for (const char* name : {"attributes", "dissolved", "doctype", "far-attribute", "filed-values",
                             "findings", "never-closed", "no-content", "no-start-tag", "references",
                             "replaced", "spots", "unclosed-tags", "written"}) {
        std::ifstream file(std::string(VAREK_XML_CORPUS "/") + name, std::ios::binary);
        const std::vector<std::uint8_t> input{std::istreambuf_iterator<char>(file),
                                              std::istreambuf_iterator<char>()};
        ASSERT_FALSE(input.empty()) << name;
        for (std::size_t size = 0; size <= input.size(); ++size)
            EXPECT_EQ(PlayXmlInput(input.data(), size), "") << name << ", first " << size;
    }
}
