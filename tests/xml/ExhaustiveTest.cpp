#include "fuzz/XmlEditGenerator.h"
#include "fuzz/XmlExhaustiveTexts.h"
#include "fuzz/XmlHarness.h"

#include <gtest/gtest.h>

// A part of what is gone through before anything is published.
TEST(XmlExhaustive, ShortTextsAsLiterally)
{
    XmlExhaustiveTexts texts;
    texts.All(4);
    texts.Framed(2);
    EXPECT_EQ(texts.Differing(), L"");
}

TEST(XmlExhaustive, TextsAtBoundariesAsLiterally)
{
    XmlExhaustiveTexts texts;
    texts.Edges(4096);
    EXPECT_EQ(texts.Differing(), L"");
}

TEST(XmlExhaustive, AfterAnyEditTheIndexIsThatOfAFreshParse)
{
    XmlEditGenerator generator(7);
    for (int i = 0; i < 300; ++i) {
        const std::string input = generator.Input(40);
        ASSERT_EQ(PlayXmlEdits(input), "") << input;
    }
}
